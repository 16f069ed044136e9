#ifndef AT_CHECKS_FUZZ_TARGETS_H
#define AT_CHECKS_FUZZ_TARGETS_H

#include <stddef.h>
#include <stdint.h>

#include <string>

// What is fed with arbitrary bytes. Each body returns, or ends the process when a postcondition does not
// hold. They are the same under the fuzzer and in the replay of the corpus.
void FuzzFraming(const uint8_t* data, size_t size);   // first byte: length of the pieces
void FuzzParse(const uint8_t* data, size_t size);     // card mode, row and type that are pending, text
void FuzzDecode(const uint8_t* data, size_t size);    // row, type and mode, parameter text
void FuzzReport(const uint8_t* data, size_t size);    // what is pending, report text
void FuzzGenerate(const uint8_t* data, size_t size);  // row, type, request record
void FuzzInifile(const uint8_t* data, size_t size);   // a file
void FuzzDelivery(const uint8_t* data, size_t size);  // mode and pieces, row and type, what the modem says

// Ends the process, with a word on what does not hold.
void Require(bool holds, const char* what);

// A server at rest, with one of the module's own cards or another one.
void Rest(bool module_card);
extern unsigned g_messages_sent;

// The bytes behind the header, without NULs, which end what is read.
std::string TextOf(const uint8_t* data, size_t size, size_t header);

// An object with canaries on both sides.
template <typename T>
struct Guarded {
    uint8_t before[64];
    T object;
    uint8_t after[64];
    Guarded() {
        for (uint8_t& byte : before)
            byte = 0xC5;
        for (uint8_t& byte : after)
            byte = 0xC5;
    }
    void Check() const {
        for (const uint8_t byte : before)
            Require(byte == 0xC5, "the bytes in front of the record are intact");
        for (const uint8_t byte : after)
            Require(byte == 0xC5, "the bytes behind the record are intact");
    }
};

#endif
