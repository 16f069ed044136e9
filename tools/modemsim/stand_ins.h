#ifndef AT_TOOLS_MODEMSIM_STAND_INS_H
#define AT_TOOLS_MODEMSIM_STAND_INS_H

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace modemsim {

// What stands in a redacted recording in place of private data: other characters of the same kind, as many of
// them, and always the same for the same data. They are made with a key that nobody keeps, so that the way
// back is guessing.
class StandIns {
  public:
    using Key = std::array<std::uint64_t, 2>;

    // A key from the system's source of randomness; nullopt when it has none.
    static std::optional<Key> RandomKey();

    explicit StandIns(const Key& key) : key_(key) {}

    // Digits only. From ten digits on the last nine are replaced by themselves, so that "+447700900123" and
    // "07700900123" still end alike. No two numbers of up to nine digits get the same stand-in while there
    // are others left.
    std::string Number(std::string_view digits);

    // What is dialled: runs of four digits and more are numbers, shorter ones (112, *100#) stay.
    std::string Dialled(std::string_view text);

    // Letters by letters, digits by digits, each in its own case; runs of four digits and more as Number()
    // has them. Addresses of the internet, hexadecimal texts and what is dialled keep their form. UTF-8 stays
    // UTF-8.
    std::string Text(std::string_view text);

    // Every letter and digit, and a short number too.
    std::string Secret(std::string_view text);

    // Hexadecimal digits, decimal ones by decimal ones; pairs FF, the padding of the SIM, stay.
    std::string Hex(std::string_view digits);

  private:
    // Pseudo-random numbers, the same for the same text.
    class Dice;

    std::string Tail(std::string_view digits);
    std::string Letters(char purpose, std::string_view text, bool numbers);
    std::string Address(std::string_view text);
    std::string Utf16Hex(std::string_view digits);

    Key key_;
    std::map<std::string, std::string, std::less<>> tails_;  // by what they replace
    std::map<std::string, std::string, std::less<>> taken_;  // what they replace, by themselves
};

bool IsDigit(char c);
bool IsHexText(std::string_view text);  // nothing but hexadecimal digits, and at least one

// True for "10.64.12.34" and for an address of 16 octets written so.
bool IsDottedAddress(std::string_view text);

}  // namespace modemsim

#endif
