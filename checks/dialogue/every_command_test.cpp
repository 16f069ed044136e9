#include <gtest/gtest.h>

#include <string>

#include "checks/dialogue/target.h"
#include "checks/dialogue/usage.h"
#include "checks/dialogue/world.h"
#include "commands/catalog.h"

// Each command of the table once in every type, through the real daemon and back, with records and answers
// that are as large as they get.

namespace {

// On a small C library a thread has 128 KB unless it asks for more; half of them may be used.
constexpr size_t kStackLimit = 64 * 1024;

constexpr int kLines = 8;

// What a modem says to a line that it likes very much: many lines of numbers, texts and one long text.
std::string LongAnswer(const std::string& line) {
    // Nobody waits for a dial, so what comes with its OK would be taken for reports; the modem's own "!"
    // commands have their text in the name.
    for (const char* start : {"ATD", "AT+CDV", "AT!"})
        if (line.rfind(start, 0) == 0) return "\r\nOK\r\n";
    std::string name = line.substr(line.rfind("AT", 0) == 0 ? 2 : 0);
    name = name.substr(0, name.find_first_of("=?"));
    std::string answer;
    for (int i = 0; i < kLines; ++i) {
        answer += "\r\n" + name + ": 1,2,\"" + std::string(40, 'A') +
                  "\",3,\"12345678\",4,\"24/11/21,10:20:30+32\"";
        for (int number = 5; number < 25; ++number)
            answer += "," + std::to_string(number);
        answer += "\r\n" + std::string(300, '7');
    }
    return answer + "\r\n\r\nOK\r\n";
}

// A record of the size that the command takes: integers that say little, texts that are full.
std::string FullRecord(const Row& row, bool textual) {
    const size_t size = row.encode.record != nullptr ? row.encode.record->size : 0;
    std::string record(size, textual ? '7' : '\0');
    for (size_t i = 0; size != 0 && i < row.encode.record->count; ++i) {
        const Field& field = row.encode.record->fields[i];
        if (field.type == FieldType::i32)
            PutInteger<int32_t>(record, field.offset, textual ? 1 : 0);
        else if (field.size > 0 && field.type != FieldType::bytes)
            record[field.offset + field.size - 1U] = '\0';
    }
    return record;
}

TEST(EveryCommand, IsServedWithinTheStackOfASmallCLibrary) {
    World world(LongAnswer);
    Module module(0x1234);
    Module call(AT_MODULE_CALL);
    int answered = 0;
    for (const Row& row : kCatalog) {
        if (row.encode.kind == EncodeKind::absent) continue;
        for (uint8_t type = AT_CMD_TYPE_EXEC; type <= AT_CMD_TYPE_TEST; ++type)
            for (bool textual : {false, true}) {
                if (textual && (type != AT_CMD_TYPE_SET || row.encode.record == nullptr)) continue;
                world.log.Forget();
                module.Ask(row.id, type, FullRecord(row, textual));
                Received answer;
                bool refused =
                    false;  // some encoders make no line of some types, and then there is no answer
                ASSERT_TRUE(WaitUntil(
                    [&] {
                        if (module.Receive(answer, 0)) return true;
                        return refused = world.log.Count("[error]:Parse AT Message error!") > 0;
                    },
                    20))
                    << row.name << " type " << int{type};
                if (refused) continue;
                EXPECT_EQ(answer.id, row.id) << row.name << " type " << int{type};
                ++answered;
                while (call.Receive(answer, 0)) {
                }
            }
    }
    EXPECT_GT(answered, 600);
    ASSERT_TRUE(world.daemon.Running());
    if (TargetIsEmulated()) return;

    const size_t used = StackUsed(world.daemon.Pid());
    printf("stack of the threads: %zu bytes of %zu\n", used, kStackLimit);
    EXPECT_GT(used, 0U);
    EXPECT_LE(used, kStackLimit);
}

}  // namespace
