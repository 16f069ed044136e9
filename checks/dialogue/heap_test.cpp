#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdio>

#include "checks/dialogue/world.h"
#include "platform/platform.h"

// After start-up the daemon takes nothing from the heap, whatever it serves.

namespace {

uint64_t HeapCalls() {
    uint64_t count = 0;
    FILE* file = fopen("/tmp/heap_calls", "rb");
    if (file == nullptr) return 0;
    if (fread(&count, sizeof count, 1, file) != 1) count = 0;
    fclose(file);
    return count;
}

TEST(Heap, IsNotUsedAfterStartUp) {
    const char* counter = getenv("HEAP_COUNTER");
    if (counter == nullptr) GTEST_SKIP() << "sanitizers have a heap of their own";
    setenv("LD_PRELOAD", counter, 1);
    World world(PlainAnswer);
    unsetenv("LD_PRELOAD");
    const uint64_t at_start = HeapCalls();
    ASSERT_GT(at_start, 0U) << "the counter counts nothing";

    Module module(0x1234);
    Module call(AT_MODULE_CALL);
    Module sim(AT_MODULE_SIM);
    Module sms(AT_MODULE_SMS);
    const auto serve = [&] {
        EXPECT_EQ(module.Exchange(0x0604, AT_CMD_TYPE_EXEC).I32(0), 20);
        EXPECT_EQ(module.Exchange(0x052D, AT_CMD_TYPE_READ).I32(4), 1);
        EXPECT_EQ(module.Exchange(0x0603, AT_CMD_TYPE_EXEC).Text(), "356938035643809");
        EXPECT_EQ(module.Exchange(0x0103, AT_CMD_TYPE_SET, std::string(29, 'A')).result, 2);
        world.modem.Say("\r\n+CREG: 1\r\n\r\nRING\r\n\r\n+CMTI: \"SM\",3\r\n");
        Received report;
        EXPECT_TRUE(sim.Receive(report));
        EXPECT_TRUE(call.Receive(report));
        EXPECT_TRUE(sms.Receive(report));
    };
    serve();
    const uint64_t warm = HeapCalls();
    for (int i = 0; i < 20; ++i)
        serve();
    EXPECT_EQ(HeapCalls(), warm) << "calls of malloc, calloc and realloc; " << at_start
                                 << " until start-up was over";
}

}  // namespace
