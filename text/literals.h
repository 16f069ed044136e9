#ifndef AT_TEXT_LITERALS_H
#define AT_TEXT_LITERALS_H

#include <stddef.h>
#include <stdint.h>

#include <array>

// Looking for many literals in one walk over a text. Most bytes are no part of any literal, and of those that
// are, few are followed by the right one: so the walk compares nothing but stops where two neighbouring bytes
// begin a literal, told by two bit masks per byte, one bit for each first character.

namespace literals {

// Not constant, so that a table that breaks the rule does not compile.
void LiteralIsTooShort();
void TooManyFirstCharacters();

// Set in both masks of a byte that a walk must stop at whatever precedes it.
inline constexpr uint32_t kAlways = uint32_t{1} << 31;

struct ByteMasks {
    uint32_t opens;    // the bit of the literals that begin with this byte, and kAlways
    uint32_t follows;  // the bits of the literals whose second byte this is
};

// An index over a table of literals of at least two bytes each, known at compile time.
template <size_t kCount>
struct Index {
    struct Entry {
        const char* text;
        uint8_t length;
        uint8_t number;  // its place in the table
        bool last_of_character;
    };
    std::array<ByteMasks, 256> masks{};
    std::array<uint8_t, 256> first{};  // by first character: 1 + place of its first entry, 0 for none
    std::array<Entry, kCount> entries{};
    size_t longest = 0;

    // The first entry whose literal begins with `character`, which begins one.
    constexpr const Entry* Entries(char character) const {
        return &entries[first[static_cast<unsigned char>(character)] - 1U];
    }
};

// The index of `table`, whose elements are texts. The walk stops also at each character of `stops` and at the
// end of the text.
template <typename Text, size_t kCount>
consteval Index<kCount> MakeIndex(const Text (&table)[kCount], const char* stops) {
    static_assert(kCount < 255);
    Index<kCount> index;
    uint32_t bit = 1;
    size_t used = 0;
    for (size_t character = 1; character < 256; ++character) {
        const size_t begin = used;
        for (size_t i = 0; i < kCount; ++i) {
            const char* text = table[i];
            if (static_cast<unsigned char>(text[0]) != character) continue;
            size_t length = 0;
            while (text[length] != '\0')
                ++length;
            if (length < 2) LiteralIsTooShort();
            if (length > index.longest) index.longest = length;
            index.masks[static_cast<unsigned char>(text[1])].follows |= bit;
            index.entries[used++] = {text, static_cast<uint8_t>(length), static_cast<uint8_t>(i), false};
        }
        if (used == begin) continue;
        if (bit == kAlways) TooManyFirstCharacters();
        index.masks[character].opens = bit;
        index.first[character] = static_cast<uint8_t>(begin + 1);
        index.entries[used - 1].last_of_character = true;
        bit <<= 1;
    }
    for (ByteMasks& masks : index.masks)
        masks.opens |= kAlways;
    index.masks[0].follows |= kAlways;
    for (; *stops != '\0'; ++stops)
        index.masks[static_cast<unsigned char>(*stops)].follows |= kAlways;
    return index;
}

// Walks from `at` to the next byte that the walk stops at, or that is the second one of a literal. `opens`
// holds the opens mask of the byte before it: kAlways at the start of a walk.
inline const char* Walk(const ByteMasks* masks, const char* at, uint32_t& opens) {
    uint32_t before = opens;
    for (;; ++at) {
        const ByteMasks& byte = masks[static_cast<unsigned char>(*at)];
        if ((before & byte.follows) != 0) break;
        before = byte.opens;
    }
    opens = before;
    return at;
}

// The closing double quote of the quoted text that `at` stands in, or the end of the text.
inline const char* SkipQuoted(const char* at) {
    while (*at != '"' && *at != '\0')
        ++at;
    return at;
}

}  // namespace literals

#endif
