#ifndef AT_CHECKS_UNIT_VECTORS_H
#define AT_CHECKS_UNIT_VECTORS_H

#include <gtest/gtest.h>
#include <stdint.h>

#include <map>
#include <string>

#include "codec/at_table.h"

// Vectors of encoders and decoders. What is expected is written down by hand, byte by byte, and not taken
// from the rows or the structs.

// A record under construction.
struct Bytes {
    std::string data;
    Bytes& I32(int32_t value);
    Bytes& U64(uint64_t value);
    Bytes& F32(float value);
    Bytes& Text(const std::string& text, size_t size);  // zero-padded to `size`
    Bytes& Zeros(size_t size);
};

// The parameter text that the encoder of `id` makes of a request ("(not sendable)" for a report). usParaLen
// is the record's size unless `length` says otherwise.
std::string Encoded(uint16_t id, uint8_t type, const std::string& record = "", int length = -1);

// An encoder of records: nothing but a set whose length is exactly that of `record` prints anything.
void ExpectSetOfThisSizeOnly(uint16_t id, const std::string& record);
// The same with nothing but one integer to print, the limits included.
void ExpectPrintsOneInteger(uint16_t id);

// What a decoder left.
struct Decoded {
    int length = -1;    // usParaLen; 0x5a5a when it was not touched
    std::string paras;  // all of aucParas; 0xa5 where it was not touched
    // The first `length` bytes of aucParas, at most 634.
    std::string Record() const { return paras.substr(0, static_cast<size_t>(length)); }
    bool Untouched() const;
};
inline constexpr int kUntouchedLength = 0x5a5a;

// The decoder of `id` on a parameter text, under a command type and a result class.
Decoded Decode(uint16_t id, uint8_t type, const std::string& text, uint8_t result = 1);

// A decoder that reads one integer under each of `types`, and serves no other.
void ExpectReadsOneInteger(uint16_t id, std::initializer_list<uint8_t> types);
// A decoder that changes nothing, whatever the type.
void ExpectReadsNothing(uint16_t id);

// List files in the place of those of the router.
struct ListFiles {
    std::map<std::string, int> open;               // path, descriptor of what was written
    std::string refused;                           // opening this one fails
    std::string full;                              // writing this one fails
    std::string Content(const std::string& path);  // "(none)" when it was not opened
    void Reset();
};
ListFiles& Files();

// Sets the data card mode and starts with an empty store, log and file system.
void StartWith(const char* data_card_mode);
inline constexpr char kModule[] = "KVX_LTE";
inline constexpr char kOtherCard[] = "";

// A test that is a vector of the encoder or the decoder of `id`: EveryRowHasAVector counts them.
std::map<uint16_t, int>& EncodeVectors();
std::map<uint16_t, int>& DecodeVectors();
#define ENCODE_VECTOR(id, suite, name)                                            \
    [[maybe_unused]] static const int suite##name##Count = ++EncodeVectors()[id]; \
    TEST(suite, name)
#define DECODE_VECTOR(id, suite, name)                                            \
    [[maybe_unused]] static const int suite##name##Count = ++DecodeVectors()[id]; \
    TEST(suite, name)

inline constexpr uint8_t EXEC = AT_CMD_TYPE_EXEC, SET = AT_CMD_TYPE_SET, READ = AT_CMD_TYPE_READ,
                         TEST_ = AT_CMD_TYPE_TEST;

#endif
