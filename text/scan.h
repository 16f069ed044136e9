#ifndef AT_TEXT_SCAN_H
#define AT_TEXT_SCAN_H

#include <stddef.h>
#include <stdint.h>

#include <span>
#include <type_traits>

// Reading a text by a format into a record, and printing a record by a format: what sscanf and snprintf would
// do, but driven by a list of fields, so that a command is a line of data, and bounded whatever the text
// holds. Records are plain bytes: fields are moved by memcpy and need no alignment.

enum class FieldType : uint8_t {
    i32,    // 32-bit signed integer: %d, %x
    u64,    // 64-bit unsigned integer: %llx
    f32,    // 32-bit float: %f
    text,   // char array, NUL-terminated: %s, %[...]
    bytes,  // char array that may be full, without a NUL: %s, %c
};

struct FieldRef {
    uint16_t offset;  // from the start of the record, bytes
    uint16_t size;    // bytes, a text's NUL included
    FieldType type;
};

template <typename T>
constexpr FieldType FieldTypeOf() {
    if constexpr (std::is_same_v<T, int32_t> || std::is_same_v<T, uint32_t>)
        return FieldType::i32;
    else if constexpr (std::is_same_v<T, uint64_t>)
        return FieldType::u64;
    else if constexpr (std::is_same_v<T, float>)
        return FieldType::f32;
    else {
        static_assert(std::is_array_v<T> && std::is_same_v<std::remove_extent_t<T>, char>,
                      "fields are int32_t, uint64_t, float or char arrays");
        return FieldType::text;
    }
}

// The field `member` of the plain struct `Record`, which no brace-enclosed comma may name.
#define AT_FIELD_REF(Record, member)                                                                    \
    FieldRef {                                                                                          \
        static_cast<uint16_t>(offsetof(Record, member)), static_cast<uint16_t>(sizeof(Record::member)), \
            FieldTypeOf<decltype(Record::member)>()                                                     \
    }

// Reads `text` by `format` into the fields of `record`, one field for each conversion, in order. Formats are
// read as sscanf reads them: white space matches any run of white space, also none; any other character
// matches itself; reading stops at the first mismatch and at the end of the text. Conversions: %d, %x, %llx,
// %f, %c, %s, %[...] (listed characters, no ranges), each but %f with an optional width, and %%. Integers
// saturate. A text is cut to its array (a text keeps its NUL) while the format's width says how much of the
// input it takes. Fields that are not reached are left alone: zero the record first. Returns the number of
// fields written (0 for null arguments and for an empty text).
int ScanRecord(const char* text, const char* format, std::span<const FieldRef> fields, void* record);

// Prints fields of `record` into `out` by `format`, one field for each conversion: %d, %x, %llx, %s, %c and
// %%. The result is cut at out.size() - 1 characters and always terminated. A text without its NUL ends with
// its array. Returns the length of the result.
size_t PrintRecord(std::span<char> out, const char* format, std::span<const FieldRef> fields,
                   const void* record);

// One conversion of a format, for the two functions above and for checks at compile time.
struct Conversion {
    char kind = 0;       // 'd', 'x', 'l' (%llx), 'f', 'c', 's', '[', '%', or 0: not a conversion we know
    unsigned width = 0;  // 0: none given
    const char* set = nullptr;  // of %[...]: behind the "[" and the "^"
    size_t set_size = 0;
    bool negated = false;
};

// Reads the conversion that begins at `format` ('%'); returns what follows it.
constexpr const char* ReadConversion(const char* format, Conversion& conversion) {
    const char* at = format + 1;
    conversion = Conversion();
    while (*at >= '0' && *at <= '9')
        conversion.width = conversion.width * 10 + static_cast<unsigned>(*at++ - '0');
    switch (*at) {
        case 'd':
        case 'x':
        case 'f':
        case 'c':
        case 's':
        case '%':
            conversion.kind = *at;
            return at + 1;
        case 'l':
            if (at[1] != 'l' || at[2] != 'x') return at;
            conversion.kind = 'l';
            return at + 3;
        case '[':
            ++at;
            conversion.negated = *at == '^';
            if (conversion.negated) ++at;
            conversion.set = at;
            if (*at == ']') ++at;
            while (*at != '\0' && *at != ']')
                ++at;
            if (*at == '\0') return at;
            conversion.set_size = static_cast<size_t>(at - conversion.set);
            conversion.kind = '[';
            return at + 1;
        default:
            return at;
    }
}

// How many fields a format reads or prints; -1 when it holds a conversion that is not known.
constexpr int CountConversions(const char* format) {
    int count = 0;
    while (*format != '\0') {
        if (*format != '%') {
            ++format;
            continue;
        }
        Conversion conversion;
        format = ReadConversion(format, conversion);
        if (conversion.kind == 0) return -1;
        if (conversion.kind != '%') ++count;
    }
    return count;
}

// True when the format reads exactly these fields: as many conversions, each of a kind that its field can
// hold, each text with a width that fits its array.
constexpr bool ScanFits(const char* format, std::span<const FieldRef> fields) {
    if (CountConversions(format) != static_cast<int>(fields.size())) return false;
    size_t next = 0;
    while (*format != '\0') {
        if (*format != '%') {
            ++format;
            continue;
        }
        Conversion conversion;
        format = ReadConversion(format, conversion);
        if (conversion.kind == '%') continue;
        const FieldRef& field = fields[next++];
        bool fits = false;
        switch (conversion.kind) {
            case 'd':
            case 'x':
                fits = field.type == FieldType::i32;
                break;
            case 'l':
                fits = field.type == FieldType::u64;
                break;
            case 'f':
                fits = field.type == FieldType::f32;
                break;
            case 'c':
                fits = field.type == FieldType::bytes &&
                       field.size >= (conversion.width == 0 ? 1 : conversion.width);
                break;
            default:
                fits = conversion.width != 0 &&
                       ((field.type == FieldType::text && conversion.width < field.size) ||
                        (field.type == FieldType::bytes && conversion.width <= field.size));
        }
        if (!fits) return false;
    }
    return true;
}

// The longest text that PrintRecord can make of these fields; -1 when the format does not fit them.
constexpr int LongestPrint(const char* format, std::span<const FieldRef> fields) {
    if (CountConversions(format) != static_cast<int>(fields.size())) return -1;
    int length = 0;
    size_t next = 0;
    while (*format != '\0') {
        if (*format != '%') {
            ++format;
            ++length;
            continue;
        }
        Conversion conversion;
        format = ReadConversion(format, conversion);
        if (conversion.kind == '%') {
            ++length;
            continue;
        }
        if (conversion.width != 0) return -1;
        const FieldRef& field = fields[next++];
        const bool is_text = field.type == FieldType::text || field.type == FieldType::bytes;
        if (conversion.kind == 'd' && field.type == FieldType::i32)
            length += 11;
        else if (conversion.kind == 'x' && field.type == FieldType::i32)
            length += 8;
        else if (conversion.kind == 'l' && field.type == FieldType::u64)
            length += 16;
        else if (conversion.kind == 's' && is_text)
            length += field.size;
        else if (conversion.kind == 'c' && is_text)
            length += 1;
        else
            return -1;
    }
    return length;
}

#endif
