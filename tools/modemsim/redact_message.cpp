#include "tools/modemsim/redact_message.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "tools/modemsim/words.h"

namespace modemsim {

namespace {

using Octets = std::vector<std::uint8_t>;

enum Coding { kSevenBit, kOctets, kUnits };

Coding CodingOf(unsigned scheme) {
    if ((scheme & 0xF0) == 0xE0) return kUnits;                                   // waiting, 16-bit text
    if ((scheme & 0xF0) == 0xF0) return (scheme & 4) != 0 ? kOctets : kSevenBit;  // a class of messages
    if ((scheme & 0xC0) != 0) return kSevenBit;
    if ((scheme & 0x20) != 0) return kOctets;  // compressed
    const unsigned alphabet = (scheme >> 2) & 3;
    return alphabet == 1 ? kOctets : alphabet == 2 ? kUnits : kSevenBit;
}

// Letters of the 7-bit alphabet that stand elsewhere than in ASCII.
bool IsForeignLetter(unsigned septet) {
    return (septet >= 0x04 && septet <= 0x09) || septet == 0x0B || septet == 0x0C || septet == 0x0E ||
           septet == 0x0F || (septet >= 0x1C && septet <= 0x1F) || (septet >= 0x5B && septet <= 0x5E) ||
           (septet >= 0x7B && septet <= 0x7F);
}

// Walks over the octets of a message, and replaces what it passes. Every step fails at the end of it.
class Message {
  public:
    Message(Octets octets, StandIns& stand_ins) : octets_(std::move(octets)), stand_ins_(stand_ins) {}

    bool Redact();
    const Octets& Result() const { return octets_; }

  private:
    std::optional<unsigned> Octet() {
        if (at_ == octets_.size()) return std::nullopt;
        return octets_[at_++];
    }
    bool Skip(std::size_t count) {
        if (octets_.size() - at_ < count) return false;
        at_ += count;
        return true;
    }
    bool ServiceCentre();
    bool Address();
    bool Digits(std::size_t octets);
    void SevenBitText(std::size_t bit, std::size_t septets);
    bool Text(bool header, unsigned scheme);
    bool Received(unsigned first);
    bool Submitted(unsigned first);
    bool StatusReport();

    Octets octets_;
    StandIns& stand_ins_;
    std::size_t at_ = 0;
};

// A number, two digits in each octet with the first one low.
bool Message::Digits(std::size_t octets) {
    if (octets_.size() - at_ < octets) return false;
    std::string digits;
    for (std::size_t i = 0; i < octets; ++i) {
        const unsigned octet = octets_[at_ + i];
        for (const unsigned nibble : {octet & 15, octet >> 4})
            digits += nibble < 10 ? static_cast<char>('0' + nibble) : '*';
    }
    digits = stand_ins_.Dialled(digits);
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (digits[i] == '*') continue;
        std::uint8_t& octet = octets_[at_ + i / 2];
        const auto digit = static_cast<unsigned>(digits[i] - '0');
        octet =
            static_cast<std::uint8_t>(i % 2 == 0 ? (octet & 0xF0U) | digit : (octet & 0x0FU) | digit << 4);
    }
    return Skip(octets);
}

bool Message::ServiceCentre() {
    const auto length = Octet();
    if (!length || *length > 12) return false;
    return *length == 0 || (Skip(1) && Digits(*length - 1));
}

bool Message::Address() {
    const auto length = Octet();
    const auto type = Octet();
    if (!length || !type || *length > 20) return false;
    const std::size_t octets = (*length + 1) / 2;
    if ((*type & 0x70) != 0x50) return Digits(octets);
    // A name: the length counts half octets, of which seven bits each are a letter.
    if (octets_.size() - at_ < octets) return false;
    SevenBitText(at_ * 8, *length * 4 / 7);
    return Skip(octets);
}

void Message::SevenBitText(std::size_t bit, std::size_t septets) {
    const auto get = [&](std::size_t at) {
        unsigned value = octets_[at / 8];
        if (at / 8 + 1 < octets_.size()) value |= static_cast<unsigned>(octets_[at / 8 + 1]) << 8;
        return (value >> (at % 8)) & 0x7F;
    };
    std::string text;
    for (std::size_t i = 0; i < septets; ++i) {
        const unsigned septet = get(bit + 7 * i);
        text += IsForeignLetter(septet) ? 'e' : static_cast<char>(septet);
    }
    text = stand_ins_.Text(text);
    for (std::size_t i = 0; i < septets; ++i) {
        const std::size_t at = bit + 7 * i;
        const unsigned mask = 0x7FU << (at % 8);
        const unsigned value = (static_cast<unsigned>(text[i]) & 0x7FU) << (at % 8);
        octets_[at / 8] = static_cast<std::uint8_t>((octets_[at / 8] & ~mask) | value);
        if ((mask >> 8) != 0) {
            std::uint8_t& next = octets_[at / 8 + 1];
            next = static_cast<std::uint8_t>((next & ~(mask >> 8)) | value >> 8);
        }
    }
}

bool Message::Text(bool header, unsigned scheme) {
    const auto length = Octet();
    if (!length) return false;
    const Coding coding = CodingOf(scheme);
    const std::size_t octets = coding == kSevenBit ? (*length * 7 + 7) / 8 : *length;
    if (octets_.size() - at_ < octets) return false;
    std::size_t head = 0;  // octets
    if (header && octets > 0) head = octets_[at_] + std::size_t{1};
    if (head > octets) return false;
    if (coding == kSevenBit) {
        const std::size_t head_septets = (head * 8 + 6) / 7;
        if (head_septets > *length) return false;
        SevenBitText(at_ * 8 + head_septets * 7, *length - head_septets);
        return Skip(octets);
    }
    Skip(head);
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string digits;
    for (std::size_t i = head; i < octets; ++i) {
        digits += kDigits[octets_[at_ + i - head] >> 4];
        digits += kDigits[octets_[at_ + i - head] & 15];
    }
    digits = coding == kUnits ? stand_ins_.Text(digits) : stand_ins_.Hex(digits);
    for (std::size_t i = 0; i < digits.size(); i += 2)
        octets_[at_++] = static_cast<std::uint8_t>(HexDigit(digits[i]) * 16 + HexDigit(digits[i + 1]));
    return true;
}

bool Message::Received(unsigned first) {
    constexpr std::size_t time_stamp = 7;
    if (!Address() || !Skip(1)) return false;
    const auto scheme = Octet();
    return scheme && Skip(time_stamp) && Text((first & 0x40) != 0, *scheme);
}

bool Message::Submitted(unsigned first) {
    if (!Skip(1) || !Address() || !Skip(1)) return false;
    const auto scheme = Octet();
    const unsigned validity = (first >> 3) & 3;
    return scheme && Skip(validity == 0 ? 0 : validity == 2 ? 1 : 7) && Text((first & 0x40) != 0, *scheme);
}

bool Message::StatusReport() {
    return Skip(1) && Address() && Skip(7 + 7 + 1);
}

bool Message::Redact() {
    if (!ServiceCentre()) return false;
    const auto first = Octet();
    if (!first) return false;
    const unsigned type = *first & 3;
    const bool read = type == 0   ? Received(*first)
                      : type == 1 ? Submitted(*first)
                      : type == 2 ? StatusReport()
                                  : false;
    // Of what stands behind it nothing is known; much of it means that this was something else.
    return read && octets_.size() - at_ <= 4;
}

}  // namespace

std::string RedactMessage(std::string_view digits, StandIns& stand_ins) {
    Octets octets;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        octets.push_back(static_cast<std::uint8_t>(HexDigit(digits[i]) * 16 + HexDigit(digits[i + 1])));
    Message message(std::move(octets), stand_ins);
    if (digits.size() % 2 != 0 || !message.Redact()) return stand_ins.Hex(digits);
    const bool lower = digits.find_first_of("abcdef") != std::string_view::npos;
    const std::string_view alphabet = lower ? "0123456789abcdef" : "0123456789ABCDEF";
    std::string result;
    for (const std::uint8_t octet : message.Result()) {
        result += alphabet[octet >> 4];
        result += alphabet[octet & 15];
    }
    return result;
}

}  // namespace modemsim
