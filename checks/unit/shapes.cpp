#include "checks/unit/shapes.h"

#include <algorithm>

std::string I32(int32_t value) {
    return Integers({value});
}

std::string Integers(const std::vector<int32_t>& values) {
    Bytes bytes;
    for (int32_t value : values)
        bytes.I32(value);
    return bytes.data;
}

namespace {

// "10,11,12" and the numbers.
std::string Numbers(size_t count, int32_t first, const char* separator = ",") {
    std::string text;
    for (size_t i = 0; i < count; ++i)
        text += (i == 0 ? "" : separator) + std::to_string(first + static_cast<int32_t>(i));
    return text;
}

std::string Repeated(size_t count, const std::string& text, const char* separator = ",") {
    std::string all;
    for (size_t i = 0; i < count; ++i)
        all += (i == 0 ? "" : separator) + text;
    return all;
}

std::vector<int32_t> Rising(size_t given, size_t count, int32_t first) {
    std::vector<int32_t> values(count);
    for (size_t i = 0; i < given; ++i)
        values[i] = first + static_cast<int32_t>(i);
    return values;
}

void ExpectNothingBehind(const Decoded& got, size_t size) {
    EXPECT_EQ(got.paras.find_first_not_of('\xa5', size), std::string::npos) << "written behind the record";
}

}  // namespace

void ExpectPrints(uint16_t id, const std::string& record, const std::string& text) {
    EXPECT_EQ(Encoded(id, SET, record), text);
    EXPECT_EQ(Encoded(id, SET, record.substr(1)), "") << "one byte short";
    EXPECT_EQ(Encoded(id, SET, record + "1"), "") << "one byte long";
    EXPECT_EQ(Encoded(id, SET, record, 0), "");
    EXPECT_EQ(Encoded(id, SET, record, 65535), "");
    for (uint8_t type : {EXEC, READ, TEST_})
        EXPECT_EQ(Encoded(id, type, record), "") << "type " << int{type};
}

void ExpectPrintsIntegers(uint16_t id, size_t count) {
    ExpectPrints(id, Integers(Rising(count, count, 10)), Numbers(count, 10));
    ExpectPrints(id, Integers(std::vector<int32_t>(count, INT32_MIN)), Repeated(count, "-2147483648"));
    ExpectPrints(id, Integers(std::vector<int32_t>(count, INT32_MAX)), Repeated(count, "2147483647"));
    ExpectPrints(id, Integers(std::vector<int32_t>(count, -1)), Repeated(count, "-1"));
}

void ExpectPrintsNothing(uint16_t id) {
    for (uint8_t type : {EXEC, SET, READ, TEST_})
        EXPECT_EQ(Encoded(id, type, std::string(32, '1')), "") << "type " << int{type};
}

void ExpectReadsIntegers(uint16_t id, const TypeList& types, size_t count, Reading reading) {
    const size_t size = 4 * count;
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        for (uint8_t type : types) {
            SCOPED_TRACE("type " + std::to_string(type) + ", data card mode \"" + mode + "\"");
            const auto read = [&](const std::string& text) { return Decode(id, type, text).Record(); };
            const std::string zeros(size, '\0');
            for (size_t given = 1; given <= count; ++given)
                EXPECT_EQ(read(Numbers(given, -3)), Integers(Rising(given, count, -3))) << given << " values";
            EXPECT_EQ(read(Numbers(count + 1, 7)), Integers(Rising(count, count, 7))) << "one value too many";
            EXPECT_EQ(read(Repeated(count, "99999999999")), Integers(std::vector<int32_t>(count, INT32_MAX)));
            EXPECT_EQ(read(Repeated(count, "-99999999999")),
                      Integers(std::vector<int32_t>(count, INT32_MIN)));
            EXPECT_EQ(read(Repeated(count, "2147483647")), Integers(std::vector<int32_t>(count, INT32_MAX)));
            EXPECT_EQ(read(Repeated(count, "-2147483648")), Integers(std::vector<int32_t>(count, INT32_MIN)));
            EXPECT_EQ(read(""), zeros);
            EXPECT_EQ(read("OK"), zeros);
            // Quotation marks go when a line is normalised, and end the reading of raw text.
            EXPECT_EQ(read(Repeated(count, "\"5\"")),
                      reading == Reading::raw ? zeros : Integers(std::vector<int32_t>(count, 5)));
            // A comma matches itself in raw text only; blanks need a format that is separated by them.
            if (count > 1) {
                EXPECT_EQ(read(Numbers(count, 20, " ")), reading == Reading::raw
                                                             ? Integers(Rising(1, count, 20))
                                                             : Integers(Rising(count, count, 20)));
            }
            ExpectNothingBehind(Decode(id, type, Numbers(count, 1)), size);
        }
    }
}

void ExpectReadsTexts(uint16_t id, const TypeList& types, const std::vector<size_t>& widths) {
    size_t size = 0;
    for (size_t width : widths)
        size += width + 4;
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        for (uint8_t type : types) {
            SCOPED_TRACE("type " + std::to_string(type) + ", data card mode \"" + mode + "\"");
            const auto read = [&](const std::string& text) { return Decode(id, type, text).Record(); };
            const auto same_in_all = [&](const std::string& word) {
                Bytes bytes;
                for (size_t width : widths)
                    bytes.Text(word, width + 4);
                return bytes.data;
            };
            EXPECT_EQ(read(Repeated(widths.size(), "\"a b\"")), same_in_all("a b"));
            EXPECT_EQ(read(Repeated(widths.size(), "\"a,\tb\"")), same_in_all("a,\tb"));
            EXPECT_EQ(read(Repeated(widths.size(), "bare")), same_in_all("bare"));
            EXPECT_EQ(read(Repeated(widths.size(), "\"\"")), same_in_all(""));
            EXPECT_EQ(read(""), std::string(size, '\0'));
            EXPECT_EQ(read("\"one\"").substr(0, widths[0] + 4), Bytes().Text("one", widths[0] + 4).data);
            EXPECT_EQ(read("\"one\"").substr(widths[0] + 4), std::string(size - widths[0] - 4, '\0'));
            Bytes full;
            std::string text;
            for (size_t width : widths) {
                text += (text.empty() ? "\"" : ",\"") + std::string(width, 'w') + "\"";
                full.Text(std::string(width, 'w'), width + 4);
            }
            EXPECT_EQ(read(text), full.data) << "every text as long as its width";
            text.insert(text.size() - 1, "x");
            EXPECT_EQ(read(text), full.data) << "the last text longer than its width";
            const Decoded got = Decode(id, type, std::string(1200, 'w'));
            EXPECT_EQ(got.Record().substr(0, widths[0] + 4),
                      Bytes().Text(std::string(widths[0], 'w'), widths[0] + 4).data);
            ExpectNothingBehind(got, size);
        }
    }
}

void ExpectCopiesTheText(uint16_t id, const TypeList& types, size_t size, int length) {
    StartWith(kModule);
    for (uint8_t type : types) {
        SCOPED_TRACE("type " + std::to_string(type));
        for (const std::string& text :
             {std::string(), std::string("OK"), std::string("\"a,b\", \t;\""), std::string(size - 2, 'w'),
              std::string(size - 1, 'w'), std::string(size, 'w'), std::string(2000, 'w')}) {
            const Decoded got = Decode(id, type, text);
            EXPECT_EQ(got.length, length);
            EXPECT_EQ(got.paras.substr(0, size), Bytes().Text(text.substr(0, size - 1), size).data);
            ExpectNothingBehind(got, size);
        }
    }
}

void ExpectNoParameters(uint16_t id, uint8_t type) {
    for (const char* text : {"OK", "", "1,2,3"}) {
        const Decoded got = Decode(id, type, text);
        EXPECT_EQ(got.length, 0) << text;
        ExpectNothingBehind(got, 0);
    }
}

void ExpectServesOnly(uint16_t id, const TypeList& types) {
    for (uint8_t type = 0; type <= 5; ++type) {
        if (std::find(types.begin(), types.end(), type) != types.end()) continue;
        if (types == kEvery) continue;
        for (const char* text : {"OK", "", "1,2,3", "\"a\",\"b\""})
            EXPECT_TRUE(Decode(id, type, text).Untouched()) << "type " << int{type} << " on " << text;
    }
}
