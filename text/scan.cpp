#include "text/scan.h"

#include <stdlib.h>
#include <string.h>

namespace {

bool IsBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

int HexValue(char c) {
    if (IsDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

const char* SkipBlanks(const char* text) {
    while (IsBlank(*text))
        ++text;
    return text;
}

// How many characters of the input a conversion may take.
unsigned Limit(const Conversion& conversion) {
    return conversion.width == 0 ? ~0U : conversion.width;
}

// Each Scan... returns what follows the match, or null on a mismatch.

const char* ScanDecimal(const char* text, unsigned limit, int32_t& value) {
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+') {
        ++text;
        --limit;
    }
    if (limit == 0 || !IsDigit(*text)) return nullptr;
    const uint32_t largest = negative ? 0x80000000U : 0x7fffffffU;
    uint32_t magnitude = 0;
    for (; limit != 0 && IsDigit(*text); ++text, --limit) {
        const uint32_t digit = static_cast<uint32_t>(*text - '0');
        if (magnitude > (largest - digit) / 10)
            magnitude = largest;
        else
            magnitude = magnitude * 10 + digit;
    }
    value = static_cast<int32_t>(negative ? 0U - magnitude : magnitude);
    return text;
}

// `bits` is 32 or 64. A sign is read as sscanf reads it: the negated value, as unsigned.
const char* ScanHex(const char* text, unsigned limit, unsigned bits, uint64_t& value) {
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+') {
        ++text;
        --limit;
    }
    if (limit > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X') && HexValue(text[2]) >= 0) {
        text += 2;
        limit -= 2;
    }
    if (limit == 0 || HexValue(*text) < 0) return nullptr;
    const uint64_t top = 0xfULL << (bits - 4);
    const uint64_t largest = bits == 64 ? ~0ULL : 0xffffffffULL;
    bool over = false;
    value = 0;
    for (; limit != 0 && HexValue(*text) >= 0; ++text, --limit) {
        if ((value & top) != 0) over = true;
        value = value << 4 | static_cast<uint64_t>(HexValue(*text));
    }
    if (over)
        value = largest;
    else if (negative)
        value = 0 - value;
    return text;
}

bool InSet(const Conversion& conversion, char c) {
    return (memchr(conversion.set, c, conversion.set_size) != nullptr) != conversion.negated;
}

// What a text conversion takes: its length.
size_t TextLength(const char* text, const Conversion& conversion) {
    const unsigned limit = Limit(conversion);
    size_t length = 0;
    while (length < limit && text[length] != '\0') {
        if (conversion.kind == 's' && IsBlank(text[length])) break;
        if (conversion.kind == '[' && !InSet(conversion, text[length])) break;
        ++length;
    }
    return length;
}

const char* ScanText(const char* text, const Conversion& conversion, const FieldRef& field, char* out) {
    const size_t length = TextLength(text, conversion);
    if (length == 0) return nullptr;
    if (field.size == 0) return text + length;
    size_t kept = field.type == FieldType::text ? field.size - size_t{1} : field.size;
    if (kept > length) kept = length;
    memcpy(out, text, kept);
    if (kept < field.size) out[kept] = '\0';
    return text + length;
}

const char* ScanBytes(const char* text, const Conversion& conversion, const FieldRef& field, char* out) {
    const size_t wanted = conversion.width == 0 ? 1 : conversion.width;
    if (strnlen(text, wanted) < wanted) return nullptr;
    memcpy(out, text, wanted < field.size ? wanted : field.size);
    return text + wanted;
}

const char* ScanField(const char* text, const Conversion& conversion, const FieldRef& field, char* out) {
    if (conversion.kind != 'c' && conversion.kind != '[') text = SkipBlanks(text);
    if (*text == '\0') return nullptr;
    const bool is_text = field.type == FieldType::text || field.type == FieldType::bytes;
    switch (conversion.kind) {
        case 'd': {
            int32_t value = 0;
            if (field.type != FieldType::i32) return nullptr;
            text = ScanDecimal(text, Limit(conversion), value);
            if (text != nullptr) memcpy(out, &value, sizeof value);
            return text;
        }
        case 'x':
        case 'l': {
            uint64_t value = 0;
            const bool is_long = conversion.kind == 'l';
            if (field.type != (is_long ? FieldType::u64 : FieldType::i32)) return nullptr;
            text = ScanHex(text, Limit(conversion), is_long ? 64 : 32, value);
            const uint32_t low = static_cast<uint32_t>(value);
            if (text == nullptr) return nullptr;
            if (is_long)
                memcpy(out, &value, sizeof value);
            else
                memcpy(out, &low, sizeof low);
            return text;
        }
        case 'f': {
            if (field.type != FieldType::f32) return nullptr;
            char* end = nullptr;
            const float value = strtof(text, &end);
            if (end == text) return nullptr;
            memcpy(out, &value, sizeof value);
            return end;
        }
        case 'c':
            return is_text ? ScanBytes(text, conversion, field, out) : nullptr;
        default:
            return is_text ? ScanText(text, conversion, field, out) : nullptr;
    }
}

// Output that is cut at its end.
struct Printer {
    std::span<char> out;
    size_t length = 0;

    void Add(char c) {
        if (length + 1 < out.size()) out[length++] = c;
    }
    void Add(const char* text, size_t size) {
        const size_t room = out.size() - 1 - length;
        if (size > room) size = room;
        memcpy(out.data() + length, text, size);
        length += size;
    }
    void AddDecimal(int32_t value) {
        char digits[10];
        size_t count = 0;
        uint32_t rest = value < 0 ? 0U - static_cast<uint32_t>(value) : static_cast<uint32_t>(value);
        do {
            digits[count++] = static_cast<char>('0' + rest % 10);
            rest /= 10;
        } while (rest != 0);
        if (value < 0) Add('-');
        while (count != 0)
            Add(digits[--count]);
    }
    void AddHex(uint64_t value) {
        int shift = 60;
        while (shift > 0 && (value >> shift & 0xf) == 0)
            shift -= 4;
        for (; shift >= 0; shift -= 4)
            Add("0123456789abcdef"[value >> shift & 0xf]);
    }
};

void PrintField(Printer& printer, char kind, const FieldRef& field, const char* at) {
    const bool is_text = field.type == FieldType::text || field.type == FieldType::bytes;
    if (field.type == FieldType::i32 && kind == 'd') {
        int32_t value;
        memcpy(&value, at, sizeof value);
        printer.AddDecimal(value);
    } else if (field.type == FieldType::i32 && kind == 'x') {
        uint32_t value;
        memcpy(&value, at, sizeof value);
        printer.AddHex(value);
    } else if (field.type == FieldType::u64 && kind == 'l') {
        uint64_t value;
        memcpy(&value, at, sizeof value);
        printer.AddHex(value);
    } else if (is_text && kind == 's') {
        printer.Add(at, strnlen(at, field.size));
    } else if (is_text && kind == 'c') {
        printer.Add(*at);
    }
}

}  // namespace

int ScanRecord(const char* text, const char* format, std::span<const FieldRef> fields, void* record) {
    if (text == nullptr || format == nullptr || record == nullptr) return 0;
    size_t done = 0;
    while (*format != '\0') {
        if (IsBlank(*format)) {
            text = SkipBlanks(text);
            ++format;
            continue;
        }
        if (*format != '%') {
            if (*text != *format) break;
            ++text;
            ++format;
            continue;
        }
        Conversion conversion;
        format = ReadConversion(format, conversion);
        if (conversion.kind == '%') {
            text = SkipBlanks(text);
            if (*text != '%') break;
            ++text;
            continue;
        }
        if (conversion.kind == 0 || done == fields.size()) break;
        const FieldRef& field = fields[done];
        text = ScanField(text, conversion, field, static_cast<char*>(record) + field.offset);
        if (text == nullptr) break;
        ++done;
    }
    return static_cast<int>(done);
}

size_t PrintRecord(std::span<char> out, const char* format, std::span<const FieldRef> fields,
                   const void* record) {
    if (out.empty()) return 0;
    Printer printer{out};
    size_t next = 0;
    while (format != nullptr && *format != '\0') {
        if (*format != '%') {
            printer.Add(*format++);
            continue;
        }
        Conversion conversion;
        format = ReadConversion(format, conversion);
        if (conversion.kind == '%') {
            printer.Add('%');
            continue;
        }
        if (conversion.kind == 0 || next == fields.size()) break;
        const FieldRef& field = fields[next++];
        PrintField(printer, conversion.kind, field, static_cast<const char*>(record) + field.offset);
    }
    out[printer.length] = '\0';
    return printer.length;
}
