#include <unistd.h>

#include "checks/dialogue/conversation.h"
#include "checks/dialogue/usage.h"
#include "platform/platform.h"

// The modem's port breaks, fills up or goes away while the daemon is at work.

namespace {

const std::string kNotWritten = "[error]:Send AT command Error!error code:42505";

class PortFaults : public testing::Test {
  protected:
    World world_{PlainAnswer};
    Module call_{AT_MODULE_CALL};
    Module sim_{AT_MODULE_SIM};
    Module module_{0x1234};
    const Usage before_ = UsageOf(world_.daemon.Pid());

    void TearDown() override {
        if (!world_.daemon.Running()) return;
        EXPECT_EQ(UsageOf(world_.daemon.Pid()).descriptors, before_.descriptors);
    }

    void ExpectCalm() { EXPECT_LT(BusyShare(world_.daemon.Pid(), 1), kSpinning); }

    void ExpectWriteToFail() {
        world_.log.Forget();
        module_.Ask(0x0604, kExec);
        EXPECT_TRUE(world_.log.WaitFor(kNotWritten));
    }

    // The request cannot be written; its time-out answers it.
    void ExpectRequestToFail() {
        ExpectWriteToFail();
        EXPECT_TRUE(world_.log.WaitFor("Postponed failure! Reset modem from usb host! "));
        EXPECT_TRUE(WaitUntil([] { return ConfigValue("usb_reset") == "activated"; }));
        EXPECT_EQ(ConfigValue("port_stat"), "port_close");
        ExpectCalm();
        Received answer;
        ASSERT_TRUE(module_.Receive(answer, 20)) << "the time-out answers what could not be sent";
        EXPECT_EQ(answer.result, 5);
        EXPECT_EQ(answer.id, 0x0604);
    }

    // Whoever supervises the daemon starts it again for the modem that came back.
    void ExpectRestartToServe() {
        world_.daemon.Kill();
        world_.log.Forget();
        world_.daemon.Start();
        ASSERT_TRUE(world_.log.WaitFor("AT response thread  is running ...", 20));
        EXPECT_EQ(ConfigValue("port_stat"), "port_open");
        EXPECT_EQ(ConfigValue("usb_reset"), "inactivated");
        EXPECT_EQ(module_.Exchange(0x0604, kExec).I32(0), 20);
        EXPECT_EQ(UsageOf(world_.daemon.Pid()).descriptors, before_.descriptors);
    }

    // Dials are not waited for: their lines pile up in the port until a write blocks, and then in the queue.
    // How many were sent until then.
    int FillThePort() {
        world_.modem.StopReading();
        const std::string dial = call_.Request(0x0401, kExec, std::string(35, '5'));
        int accepted = 0;
        const auto server_is_stuck = [&] { return !WaitUntil([&] { return TrySendRaw(dial); }, 1.5); };
        while (accepted < 5000 && !server_is_stuck())
            ++accepted;
        EXPECT_LT(accepted, 5000) << "the port took everything";
        EXPECT_EQ(world_.log.Count(kNotWritten), 0);
        return accepted;
    }
};

TEST_F(PortFaults, ModemUnpluggedWhileIdleFailsTheNextWriteUntilTheDaemonIsStartedAgain) {
    EXPECT_EQ(module_.Exchange(0x0604, kExec).I32(0), 20);
    world_.modem.Unplug();
    ExpectCalm();
    EXPECT_EQ(world_.log.Count(kNotWritten), 0);
    EXPECT_EQ(ConfigValue("port_stat"), "port_open") << "only a write tells";
    ExpectRequestToFail();

    world_.modem.Plug();
    world_.modem.ForgetLines();
    ExpectWriteToFail();
    EXPECT_EQ(world_.modem.Bytes(), "") << "the port that was opened at the start stays";
    ExpectRestartToServe();
}

TEST_F(PortFaults, ModemUnpluggedDuringAnAnswerLeavesNothingOfIt) {
    world_.modem.SetAnswer(Silence);
    module_.Ask(0x0604, kExec);
    ASSERT_TRUE(world_.modem.WaitForLine("AT+CSQ"));
    world_.modem.Say("\r\n+CSQ: 3");
    ASSERT_TRUE(world_.log.WaitFor("RecvLen(chars) ="));
    world_.modem.Unplug();
    ExpectCalm();
    Received answer;
    ASSERT_TRUE(module_.Receive(answer, 20));
    EXPECT_EQ(answer.result, 5);
    EXPECT_EQ(answer.id, 0x0604);
    EXPECT_TRUE(world_.log.WaitFor("Waiting for AT response time out(timeout=1000)!!discard..."));
    EXPECT_EQ(ConfigValue("port_stat"), "port_open");
    ExpectWriteToFail();

    world_.modem.SetAnswer(PlainAnswer);
    world_.modem.Plug();
    ExpectRestartToServe();
}

TEST_F(PortFaults, ModemUnpluggedDuringAWrite) {
    world_.modem.SetAnswer(Silence);
    FillThePort();
    world_.modem.Unplug();
    EXPECT_TRUE(world_.log.WaitFor(kNotWritten));
    EXPECT_TRUE(world_.log.WaitFor("Postponed failure! Reset modem from usb host! "));
    EXPECT_TRUE(WaitUntil([] { return ConfigValue("port_stat") == "port_close"; }));
    EXPECT_EQ(ConfigValue("usb_reset"), "activated");

    // It goes on serving: the dials that waited are taken, each write fails at once.
    EXPECT_TRUE(world_.log.WaitFor(kNotWritten, 10, 26));
    EXPECT_TRUE(TrySendRaw(call_.Request(0x0401, kExec, "5550123")));
    EXPECT_TRUE(world_.daemon.Running());
    ExpectCalm();
    world_.modem.SetAnswer(PlainAnswer);
    world_.modem.Plug();
    ExpectRestartToServe();
}

TEST_F(PortFaults, ModemThatDoesNotReadForAWhileGetsEveryLineInTheEnd) {
    world_.modem.SetAnswer(Silence);
    const int dials = FillThePort();
    ExpectCalm();
    // Only the side that writes is held.
    world_.modem.Say("\r\n+CREG: 1\r\n\r\nRING\r\n");
    EXPECT_EQ(Next(sim_), Report(sim_, 0x052D, 6, I32({1}) + Text("", 32)));
    EXPECT_EQ(Next(call_), Report(call_, 0x0407, 1, "RING"));

    world_.modem.StartReading();
    EXPECT_TRUE(WaitUntil([&] { return world_.modem.Lines().size() == static_cast<size_t>(dials); }, 20))
        << world_.modem.Lines().size() << " of " << dials;
    for (const std::string& line : world_.modem.Lines())
        ASSERT_EQ(line, "ATD" + std::string(35, '5') + ";");
    world_.modem.SetAnswer(PlainAnswer);
    EXPECT_EQ(module_.Exchange(0x0604, kExec).I32(0), 20);
    EXPECT_EQ(world_.log.Count(kNotWritten), 0);
    EXPECT_EQ(ConfigValue("port_stat"), "port_open");
}

}  // namespace
