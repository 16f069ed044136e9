#include "tools/modemsim/stand_ins.h"

#include <sys/random.h>

#include <algorithm>
#include <bit>

#include "tools/modemsim/words.h"

namespace modemsim {

namespace {

constexpr std::size_t kTail = 9;            // digits that a number has in every way of writing it
constexpr std::size_t kShortestNumber = 4;  // shorter ones are services, the same for everybody

// The keyed hash SipHash-2-4: fast, and without the key nobody can tell what was hashed.
class Sip {
  public:
    explicit Sip(const StandIns::Key& key)
        : v_{key[0] ^ 0x736f6d6570736575U, key[1] ^ 0x646f72616e646f6dU, key[0] ^ 0x6c7967656e657261U,
             key[1] ^ 0x7465646279746573U} {}

    void Add(std::string_view bytes) {
        for (const char c : bytes)
            Byte(static_cast<unsigned char>(c));
    }
    void Add(std::uint64_t number) {
        for (unsigned shift = 0; shift < 64; shift += 8)
            Byte(static_cast<unsigned char>(number >> shift));
    }
    std::uint64_t End() {
        word_ |= std::uint64_t{length_ & 0xFF} << 56;
        Block();
        v_[2] ^= 0xFF;
        for (int i = 0; i < 4; ++i)
            Round();
        return v_[0] ^ v_[1] ^ v_[2] ^ v_[3];
    }

  private:
    void Byte(unsigned char byte) {
        word_ |= std::uint64_t{byte} << (8 * (length_++ % 8));
        if (length_ % 8 == 0) Block();
    }
    void Block() {
        v_[3] ^= word_;
        Round();
        Round();
        v_[0] ^= word_;
        word_ = 0;
    }
    void Round() {
        v_[0] += v_[1];
        v_[2] += v_[3];
        v_[1] = std::rotl(v_[1], 13) ^ v_[0];
        v_[3] = std::rotl(v_[3], 16) ^ v_[2];
        v_[0] = std::rotl(v_[0], 32) + v_[3];
        v_[2] += v_[1];
        v_[3] = std::rotl(v_[3], 21) ^ v_[0];
        v_[1] = std::rotl(v_[1], 17) ^ v_[2];
        v_[2] = std::rotl(v_[2], 32);
    }

    std::uint64_t v_[4];
    std::uint64_t word_ = 0;
    std::uint64_t length_ = 0;
};

std::size_t DigitsAt(std::string_view text, std::size_t from) {
    const auto end = std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(), IsDigit);
    return static_cast<std::size_t>(end - text.begin()) - from;
}

// A number as it is dialled or shown, with the characters of a telephone's keys.
bool IsDialled(std::string_view text) {
    return std::any_of(text.begin(), text.end(), IsDigit) &&
           text.find_first_not_of("0123456789+*#pPwW,;/() -") == std::string_view::npos;
}

unsigned UnitAt(std::string_view digits, std::size_t at) {
    unsigned unit = 0;
    for (std::size_t i = 0; i < 4; ++i)
        unit = unit * 16 + static_cast<unsigned>(HexDigit(digits[at + i]));
    return unit;
}

// Text in units of 16 bits: the scripts that have letters, and punctuation.
bool IsUtf16Hex(std::string_view text) {
    if (text.size() < 8 || text.size() % 4 != 0 || !IsHexText(text)) return false;
    for (std::size_t i = 0; i < text.size(); i += 4) {
        const unsigned high = UnitAt(text, i) >> 8;
        if (high > 6 && high != 0x1E && high != 0x20) return false;
    }
    return true;
}

// "2001:db8::1"
bool IsColonAddress(std::string_view text) {
    return std::count(text.begin(), text.end(), ':') > 1 &&
           text.find_first_not_of("0123456789abcdefABCDEF:./") == std::string_view::npos;
}

bool Continues(std::string_view text, std::size_t at) {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
}

}  // namespace

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsHexText(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return HexDigit(c) >= 0; });
}

bool IsDottedAddress(std::string_view text) {
    std::size_t octets = 0;
    while (true) {
        const std::size_t digits = DigitsAt(text, 0);
        if (digits == 0 || digits > 3) return false;
        unsigned value = 0;
        for (std::size_t i = 0; i < digits; ++i)
            value = value * 10 + static_cast<unsigned>(text[i] - '0');
        if (value > 255) return false;
        ++octets;
        text.remove_prefix(digits);
        if (text.empty()) return octets == 4 || octets == 16 || octets == 32;
        if (text.front() != '.') return false;
        text.remove_prefix(1);
    }
}

std::optional<StandIns::Key> StandIns::RandomKey() {
    Key key;
    if (getrandom(key.data(), sizeof key, 0) != static_cast<ssize_t>(sizeof key)) return std::nullopt;
    return key;
}

class StandIns::Dice {
  public:
    Dice(const Key& key, char purpose, std::string_view text) : key_(key) {
        Sip sip(key_);
        sip.Add(std::string_view(&purpose, 1));
        sip.Add(text);
        seed_ = sip.End();
    }
    // Below `limit`, the same for the same place.
    unsigned At(std::size_t place, unsigned limit) const {
        Sip sip(key_);
        sip.Add(seed_);
        sip.Add(place);
        return static_cast<unsigned>(sip.End() % limit);
    }
    char Digit(std::size_t place) const { return static_cast<char>('0' + At(place, 10)); }

  private:
    const Key& key_;
    std::uint64_t seed_;
};

std::string StandIns::Tail(std::string_view digits) {
    const auto known = tails_.find(digits);
    if (known != tails_.end()) return known->second;
    constexpr std::size_t kTries = 1000;  // few short numbers are left then
    const Dice dice(key_, 't', digits);
    std::string tail(digits);
    for (std::size_t attempt = 0; attempt < kTries; ++attempt) {
        for (std::size_t i = 0; i < tail.size(); ++i)
            tail[i] = dice.Digit(attempt * kTail + i);
        if (tail != digits && taken_.find(tail) == taken_.end()) break;
    }
    taken_.emplace(tail, digits);
    tails_.emplace(digits, tail);
    return tail;
}

std::string StandIns::Number(std::string_view digits) {
    const std::size_t head = digits.size() - std::min(digits.size(), kTail);
    const Dice dice(key_, 'h', digits);
    std::string number;
    for (std::size_t i = 0; i < head; ++i)
        number += dice.Digit(i);
    return number + Tail(digits.substr(head));
}

std::string StandIns::Dialled(std::string_view text) {
    std::string result(text);
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t run = DigitsAt(text, i);
        if (run >= kShortestNumber) result.replace(i, run, Number(text.substr(i, run)));
        i += std::max<std::size_t>(run, 1);
    }
    return result;
}

std::string StandIns::Letters(char purpose, std::string_view text, bool numbers) {
    std::string result(text);
    const Dice dice(key_, purpose, text);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const auto byte = static_cast<unsigned char>(c);
        if (IsDigit(c)) {
            const std::size_t run = numbers ? DigitsAt(text, i) : 1;
            if (run >= kShortestNumber) {
                result.replace(i, run, Number(text.substr(i, run)));
                i += run - 1;
            } else {
                result[i] = dice.Digit(i);
            }
        } else if (c >= 'a' && c <= 'z') {
            result[i] = static_cast<char>('a' + dice.At(i, 26));
        } else if (c >= 'A' && c <= 'Z') {
            result[i] = static_cast<char>('A' + dice.At(i, 26));
        } else if (byte >= 0xC2 && byte <= 0xF4 && Continues(text, i + 1)) {
            // The first byte tells how many follow and stays. What follows two of the first bytes is bounded.
            for (bool first = true; Continues(text, i + 1); first = false) {
                ++i;
                unsigned low = 0xA0;
                unsigned count = 0x20;
                if (first && (byte == 0xED || byte == 0xF4)) {
                    low = 0x80;
                    count = 0x10;
                }
                result[i] = static_cast<char>(low + dice.At(i, count));
            }
        } else if (byte >= 0x80) {
            result[i] = static_cast<char>(0xE0 + dice.At(i, 0x10));
        }
    }
    return result;
}

std::string StandIns::Address(std::string_view text) {
    // "Any address", "every address": they name nobody.
    if (text.find_first_not_of("0.") == std::string_view::npos) return std::string(text);
    if (text.find_first_not_of("25.") == std::string_view::npos) return std::string(text);
    const Dice dice(key_, 'a', text);
    std::string result(text);
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t run = DigitsAt(text, i);
        for (std::size_t d = 0; d < run; ++d) {
            // 1 to 9, 10 to 99, 100 to 199
            const unsigned digit = d > 0 ? dice.At(i + d, 10) : 1 + dice.At(i, 9);
            result[i + d] = static_cast<char>('0' + (run == 3 && d == 0 ? 1 : digit));
        }
        i += std::max<std::size_t>(run, 1);
    }
    return result;
}

std::string StandIns::Utf16Hex(std::string_view digits) {
    std::string narrow;
    for (std::size_t i = 0; i < digits.size(); i += 4) {
        const unsigned unit = UnitAt(digits, i);
        narrow += unit < 0x80 ? static_cast<char>(unit) : '.';
    }
    narrow = IsDialled(narrow) ? Dialled(narrow) : Letters('u', narrow, true);
    const bool lower = digits.find_first_of("abcdef") != std::string_view::npos;
    const std::string_view alphabet = lower ? "0123456789abcdef" : "0123456789ABCDEF";
    const Dice dice(key_, 'u', digits);
    std::string result;
    for (std::size_t i = 0; i < digits.size(); i += 4) {
        unsigned unit = UnitAt(digits, i);
        const unsigned high = unit >> 8;
        if (unit < 0x80)
            unit = static_cast<unsigned char>(narrow[i / 4]);
        else if (high == 4)
            unit = 0x0410 + dice.At(i, 0x40);  // Cyrillic letters without those of other languages
        else if (high == 0)
            unit = 0xC0 + dice.At(i, 0x40);
        else if (high != 0x20)  // punctuation
            unit = (high << 8) + 0x80 + dice.At(i, 0x80);
        for (unsigned shift = 16; shift != 0;)
            result += alphabet[(unit >> (shift -= 4)) & 15];
    }
    return result;
}

std::string StandIns::Text(std::string_view text) {
    if (IsDottedAddress(text)) return Address(text);
    if (IsUtf16Hex(text)) return Utf16Hex(text);
    if (IsDialled(text)) return Dialled(text);
    if (IsColonAddress(text)) return Hex(text);
    // A word may consist of such letters alone; a text that was turned into digits does not.
    if (text.size() >= 8 && text.size() % 2 == 0 && IsHexText(text) &&
        std::any_of(text.begin(), text.end(), IsDigit))
        return Hex(text);
    return Letters('x', text, true);
}

std::string StandIns::Secret(std::string_view text) {
    return Letters('s', text, false);
}

std::string StandIns::Hex(std::string_view digits) {
    const Dice dice(key_, 'd', digits);
    std::string result(digits);
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const char c = digits[i];
        const std::size_t pair = i - i % 2;
        if (pair + 1 < digits.size() && (digits[pair] | 0x20) == 'f' && (digits[pair + 1] | 0x20) == 'f')
            continue;
        if (IsDigit(c))
            result[i] = dice.Digit(i);
        else if (HexDigit(c) >= 10)
            result[i] = static_cast<char>((c & ~7) + 1 + static_cast<char>(dice.At(i, 6)));
    }
    return result;
}

}  // namespace modemsim
