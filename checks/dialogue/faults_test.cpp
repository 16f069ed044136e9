#include <gtest/gtest.h>
#include <unistd.h>

#include "checks/dialogue/world.h"
#include "platform/platform.h"

// What breaks around the daemon while it is at work.

namespace {

TEST(Faults, PortThatClosesWhileItIsWritten) {
    World world([](const std::string&) { return std::string(); });
    world.modem.StopReading();

    // Dials are not waited for: their lines pile up in the port until a write blocks, and then in the queue.
    Module call(AT_MODULE_CALL);
    const std::string dial = call.Request(0x0401, AT_CMD_TYPE_EXEC, std::string(35, '5'));
    int accepted = 0;
    const auto server_is_stuck = [&] { return !WaitUntil([&] { return TrySendRaw(dial); }, 1.5); };
    while (accepted < 5000 && !server_is_stuck())
        ++accepted;
    ASSERT_LT(accepted, 5000) << "the port took everything";
    EXPECT_EQ(world.log.Count("error code:42505"), 0);

    world.modem.Unplug();
    EXPECT_TRUE(world.log.WaitFor("[error]:Send AT command Error!error code:42505"));
    EXPECT_TRUE(world.log.WaitFor("Postponed failure! Reset modem from usb host! "));
    EXPECT_TRUE(WaitUntil([] { return std::string(cfg_get("port_stat")) == "port_close"; }));
    EXPECT_STREQ(cfg_get("usb_reset"), "activated");

    // It goes on serving: the dials that waited are taken, each write fails at once.
    EXPECT_TRUE(world.log.WaitFor("[error]:Send AT command Error!error code:42505", 10, 26));
    EXPECT_TRUE(TrySendRaw(dial));
    EXPECT_TRUE(world.daemon.Running());
}

}  // namespace
