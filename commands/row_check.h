#ifndef AT_COMMANDS_ROW_CHECK_H
#define AT_COMMANDS_ROW_CHECK_H

#include "commands/row.h"

// What the compiler refuses about a row. The faults are bits, so that a check can ask for them one by one.

enum RowFault : unsigned {
    kFaultPosition = 1 << 0,
    kFaultName = 1 << 1,
    kFaultOverlap = 1 << 2,
    kFaultRequestSize = 1 << 3,
    kFaultAnswerSize = 1 << 4,
    kFaultPrintFormat = 1 << 5,
    kFaultTooLong = 1 << 6,
    kFaultScanFormat = 1 << 7,
    kFaultKind = 1 << 8,
    kFaultLogFormat = 1 << 9,
    kFaultTypes = 1 << 10,
    kFaultTwice = 1 << 11,
};

constexpr size_t TextLength(const char* text) {
    size_t length = 0;
    while (text[length] != '\0')
        ++length;
    return length;
}

// Fields in rising order, none reaching into the next or behind the record; entries behind the fields.
constexpr bool FieldsOverlap(const Record& record) {
    size_t end = 0;
    for (size_t i = 0; i < record.count; ++i) {
        if (record.fields[i].offset < end || record.fields[i].size == 0) return true;
        end = size_t{record.fields[i].offset} + record.fields[i].size;
    }
    if (record.entry != nullptr) {
        if (record.entry_offset < end || FieldsOverlap(*record.entry)) return true;
        end = record.entry_offset + size_t{record.entry_count} * record.entry->size;
    }
    return end > record.size;
}

constexpr int LongestText(const Record& record, const char* format, const Args& args) {
    std::array<FieldRef, kMaxArgs> refs = {};
    const size_t count = ArgCount(format, args);
    if (count > kMaxArgs) return -1;
    for (size_t i = 0; i < count; ++i)
        refs[i] = ArgRef(record, args, i);
    return LongestPrint(format, {refs.data(), count});
}

constexpr unsigned EncodeFaults(const EncodeSide& encode) {
    unsigned faults = 0;
    const bool takes_record = encode.kind == EncodeKind::record || encode.kind == EncodeKind::copy;
    if (takes_record && encode.record == nullptr) return kFaultKind;
    if (takes_record && encode.forms[0].format == nullptr) faults |= kFaultKind;
    if ((encode.kind == EncodeKind::custom) != (encode.function != nullptr)) faults |= kFaultKind;
    if (encode.record == nullptr) return faults;
    const Record& record = *encode.record;
    if (encode.kind == EncodeKind::copy && (record.count != 1 || record.fields[0].size != record.size ||
                                            !SameText(encode.forms[0].format, "%s")))
        faults |= kFaultKind;
    if (FieldsOverlap(record)) faults |= kFaultOverlap;
    if (record.size == 0 || record.size > AT_REQUEST_PARAS_SIZE) faults |= kFaultRequestSize;
    for (const Form& form : encode.forms) {
        if (form.format == nullptr) continue;
        const int longest = LongestText(record, form.format, form.args);
        if (longest < 0) faults |= kFaultPrintFormat;
        if (longest >= kParaTextSize && !encode.may_be_cut) faults |= kFaultTooLong;
    }
    return faults;
}

constexpr unsigned AnswerFaults(const Answer& answer) {
    unsigned faults = 0;
    if (answer.record == nullptr) return answer.format != nullptr ? kFaultScanFormat : 0U;
    const Record& record = *answer.record;
    if (FieldsOverlap(record)) faults |= kFaultOverlap;
    const bool whole_travels = answer.file == nullptr && answer.carried == 0;
    if (record.size == 0 || answer.carried > AT_RESPONSE_PARAS_SIZE) faults |= kFaultAnswerSize;
    if (whole_travels && record.size > AT_RESPONSE_PARAS_SIZE) faults |= kFaultAnswerSize;
    if (answer.format != nullptr) {
        // The format of a list reads its entries.
        const Record& scanned = record.entry != nullptr ? *record.entry : record;
        std::array<FieldRef, kMaxArgs> refs = {};
        const size_t count = ArgCount(answer.format, answer.args);
        if (count > kMaxArgs) return faults | kFaultScanFormat;
        for (size_t i = 0; i < count; ++i)
            refs[i] = ArgRef(scanned, answer.args, i);
        if (!ScanFits(answer.format, {refs.data(), count})) faults |= kFaultScanFormat;
    }
    if (answer.from == From::whole && (answer.format != nullptr || record.fields[0].type != FieldType::text))
        faults |= kFaultScanFormat;
    // Each line of a list is normalised before it is read.
    if (record.entry != nullptr && answer.from != From::normalised) faults |= kFaultScanFormat;
    if (answer.log.format != nullptr && LongestText(record, answer.log.format, answer.log.args) < 0)
        faults |= kFaultLogFormat;
    return faults;
}

constexpr unsigned DecodeFaults(const DecodeSide& decode) {
    unsigned faults = 0;
    Types served = 0;
    for (const Answer& answer : decode.answers) {
        if (answer.types == 0) {
            if (answer.record != nullptr) faults |= kFaultTypes;
            continue;
        }
        if ((served & answer.types) != 0 && decode.kind != DecodeKind::custom) faults |= kFaultTypes;
        const bool by_hand = answer.file != nullptr || answer.carried != 0 || answer.told_as_0;
        if (by_hand && decode.kind != DecodeKind::custom) faults |= kFaultKind;
        if (answer.told_as_0 && (answer.record == nullptr || answer.length != 0)) faults |= kFaultKind;
        served |= answer.types;
        faults |= AnswerFaults(answer);
    }
    if (decode.kind == DecodeKind::answers && served == 0) faults |= kFaultTypes;
    if ((decode.kind == DecodeKind::custom) != (decode.function != nullptr)) faults |= kFaultKind;
    return faults;
}

constexpr unsigned RowFaults(const Row& row, int rows) {
    unsigned faults = EncodeFaults(row.encode) | DecodeFaults(row.decode);
    if (row.position < 1 || row.position > rows) faults |= kFaultPosition;
    if (TextLength(row.name) >= sizeof(AT_CMD_LINE_T::strCmdName)) faults |= kFaultName;
    return faults;
}

// A row's name as part of a type, so that the compiler's message shows it.
struct RowName {
    char text[64] = {};
    consteval RowName(const char* name) {
        for (size_t i = 0; i < sizeof text - 1 && name[i] != '\0'; ++i)
            text[i] = name[i];
    }
};

template <RowName Name, unsigned Faults>
struct Accept {
    static_assert((Faults & kFaultPosition) == 0, "this row's position lies outside the table");
    static_assert((Faults & kFaultTwice) == 0,
                  "this row's position, id or name stands in another row already");
    static_assert((Faults & kFaultName) == 0, "this row's name does not fit the line under construction");
    static_assert((Faults & kFaultOverlap) == 0, "fields of this row's record overlap or reach behind it");
    static_assert((Faults & kFaultRequestSize) == 0, "this row's request record does not fit a message");
    static_assert((Faults & kFaultAnswerSize) == 0, "this row's answer record does not fit a message");
    static_assert((Faults & kFaultPrintFormat) == 0,
                  "a format of this row's encoder does not fit the fields it prints");
    static_assert((Faults & kFaultTooLong) == 0,
                  "this row can make 512 characters of parameter text or more");
    static_assert((Faults & kFaultScanFormat) == 0,
                  "a format of this row's decoder does not fit the fields it fills");
    static_assert((Faults & kFaultLogFormat) == 0,
                  "a log format of this row does not fit the fields it prints");
    static_assert((Faults & kFaultKind) == 0, "this row's kind and what stands beside it do not go together");
    static_assert((Faults & kFaultTypes) == 0, "this row's answers serve no type, or one type twice");
    static constexpr bool kOk = Faults == 0;
};

#endif
