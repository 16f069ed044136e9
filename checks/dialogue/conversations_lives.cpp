#include <stdio.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <unistd.h>

#include "checks/dialogue/conversation.h"
#include "platform/platform.h"

// What can happen once in the life of a daemon only: each check has a daemon of its own.

namespace {

const std::string kWatchDogStarted = "==========>>>>TIMER_AT_STATE_DETECT<<<<===========";

class LifeTalks : public testing::Test, protected Router {
  protected:
    void SetUp() override { unlink("/etc_rw/config/AT_Test.ini"); }
    void TearDown() override {
        EXPECT_EQ(Leftovers(), "");
        cfg_set("WatchDog_Setting_Option", "");
        cfg_set("led_modem_updating", "");
        unlink("/etc_rw/config/AT_Test.ini");
    }

    // +ZDOGREF, which some module sends at regular times.
    void Refresh(World& world, int times) {
        world.modem.SetAnswer(Answers({{"AT+ZDOGREF", "\r\nOK\r\n"}}));
        for (int i = 0; i < times; ++i)
            EXPECT_EQ(other.Exchange(0x062E, kExec).result, 1);
    }
};

TEST_F(LifeTalks, SecondRefreshStartsTheWatchDogAndNoOtherDoes) {
    cfg_set("WatchDog_Setting_Option", "on");
    World world(PlainAnswer);
    Refresh(world, 1);
    EXPECT_EQ(world.log.Count(kWatchDogStarted), 0);
    Refresh(world, 1);
    EXPECT_TRUE(world.log.WaitFor(kWatchDogStarted));
    Refresh(world, 2);
    EXPECT_EQ(world.log.Count(kWatchDogStarted), 1);
}

TEST_F(LifeTalks, WatchDogSwitchedOnAfterTheSecondRefreshIsNeverStarted) {
    World world(PlainAnswer);
    Refresh(world, 2);
    cfg_set("WatchDog_Setting_Option", "on");
    Refresh(world, 2);
    EXPECT_EQ(world.log.Count(kWatchDogStarted), 0);
}

TEST_F(LifeTalks, WatchDogIsNotStartedDuringAnUpdateOfTheModem) {
    cfg_set("WatchDog_Setting_Option", "on");
    cfg_set("led_modem_updating", "1");
    World world(PlainAnswer);
    Refresh(world, 3);
    EXPECT_EQ(world.log.Count(kWatchDogStarted), 0);
}

TEST_F(LifeTalks, ResponderAnswersFromItsListAndAddsEachReportOnce) {
    World world([](const std::string&) { return "\r\nERROR\r\n"; });
    EXPECT_EQ(ConfigValue("AT_Test"), "off");
    other.Ask(0x0604, kExec);
    EXPECT_EQ(Next(other), Answer(other, 0x0604, kExec, 2, ""));
    cfg_set("AT_Test", "on");

    other.Ask(0x0604, kExec);
    // Without the blank behind the name the values are not found; the end of the text shows behind them.
    EXPECT_EQ(Next(other), Answer(other, 0x0604, kExec, 1, I32({0, 0}) + "60", 8));
    EXPECT_EQ(Next(sms), Report(sms, 0x0110, 1, Text("SM", 12) + I32({8})));

    // What was announced can be read.
    sms.Ask(0x0107, kSet, I32({8}));
    Received message;
    ASSERT_TRUE(sms.Receive(message, 10));
    EXPECT_EQ(message.result, 1);
    EXPECT_EQ(message.para_len, 752);
    EXPECT_EQ(message.paras.substr(0, 48), I32({0, 0}) + Text("", 36) + I32({60}));
    EXPECT_EQ(message.Text(48).size(), 2U * (60 + 8)) << "the service centre's address is not counted";
    EXPECT_EQ(Next(sms), Report(sms, 0x0112, 1, Text("SR", 12) + I32({51})));

    sms.Ask(0x0107, kSet, I32({51}));
    // The page is seen from the answer in front of it, too.
    for (const char* which : {"from the answer", "by itself"}) {
        SCOPED_TRACE(which);
        if (which[0] == 'b') {
            ASSERT_TRUE(sms.Receive(message, 10));
            EXPECT_EQ(message.id, 0x0107);
            EXPECT_EQ(message.paras.substr(0, 48), I32({0, 5}) + Text("", 36) + I32({26}));
        }
        ASSERT_TRUE(sms.Receive(message, 10));
        EXPECT_EQ(message.id, 0x0115);
        EXPECT_EQ(message.I32(0), 100);
        EXPECT_EQ(message.Text(4).size(), 200U);
    }

    other.Ask(0x0544, kRead);
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 2, ""))
        << "the list has no answer: the modem's stays";
    EXPECT_EQ(Next(sms), Report(sms, 0x0118, 1, I32({1})));

    // No report is left. An other card takes values without a blank.
    const OtherCard card;
    other.Ask(0x0604, kExec);
    EXPECT_EQ(Next(other), Answer(other, 0x0604, kExec, 1, I32({20, 0})));
    cfg_set("AT_Test", "off");
    other.Ask(0x0604, kExec);
    EXPECT_EQ(Next(other), Answer(other, 0x0604, kExec, 2, ""));
}

TEST_F(LifeTalks, ResponderAnswersFromItsFile) {
    FILE* file = fopen("/etc_rw/config/AT_Test.ini", "w");
    ASSERT_NE(file, nullptr);
    fputs(
        "# answers for a modem that is not there\n"
        "[AT_TEST]\n"
        "AT_ITEM_REQUEST_NUM=2\n"
        "AT_ITEM_AUTO_NUM=3\n"
        "[REQUESTRES]\n"
        "AT_ITEM1=AT+CFUN?::\\r\\n+CFUN: 7\\r\\n\\r\\nOK\\r\\n\n"
        "AT_ITEM2=AT+CSQ::\\r\\n+CSQ: 5,99\\r\\n\\r\\nOK\\r\\n\n"
        "[AUTORES]\n"
        "AT_ITEM1=\\r\\n+CREG: 5\\r\\n\n"
        "AT_ITEM2=\n"
        "AT_ITEM3=\\r\\n+CMTI: \"ME\",2\\r\\n\n",
        file);
    fclose(file);
    World world([](const std::string&) { return "\r\nERROR\r\n"; });
    cfg_set("AT_Test", "on");
    other.Ask(0x0604, kExec);
    EXPECT_EQ(Next(other), Answer(other, 0x0604, kExec, 1, I32({5, 0})));
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, I32({5}) + Text("", 32)));
    EXPECT_TRUE(world.log.WaitFor("Open AT_Test.ini file success and make AT Res from ini file!"));
    other.Ask(0x0544, kRead);
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 1, I32({7})));
    EXPECT_EQ(Next(sms), Report(sms, 0x0110, 1, Text("ME", 12) + I32({2}))) << "an empty item is skipped";
    other.Ask(0x0301, kRead);
    EXPECT_EQ(Next(other), Answer(other, 0x0301, kRead, 2, ""));
    cfg_set("AT_Test", "off");
}

TEST_F(LifeTalks, RequestsThatWaitOutliveAKilledServer) {
    World world(Silence);
    other.Ask(0x0604, kExec);
    ASSERT_TRUE(world.modem.WaitForLine("AT+CSQ"));
    other.Ask(0x0544, kRead);
    sim.Ask(0x0301, kRead);
    world.daemon.Kill();
    ASSERT_FALSE(world.daemon.Running());
    call.Ask(0x0404, kExec);
    msqid_ds state{};
    ASSERT_EQ(msgctl(ServerQueue(), IPC_STAT, &state), 0);
    EXPECT_EQ(state.msg_qnum, 3U);

    world.modem.ForgetLines();
    world.modem.SetAnswer(PlainAnswer);
    world.daemon.Start();
    EXPECT_EQ(Next(other, 20), Answer(other, 0x0544, kRead, 1, I32({1})));
    EXPECT_EQ(Next(sim), Answer(sim, 0x0301, kRead, 1, Text("READY", 32)));
    EXPECT_EQ(Next(call), Answer(call, 0x0404, kExec, 1, "OK"));
    EXPECT_EQ(world.modem.Bytes(), "AT+CFUN?\rAT+CPIN?\rATA\r") << "what was in flight went with the server";
}

TEST_F(LifeTalks, HalfALineOfAKilledServerIsNotMissed) {
    World world(PlainAnswer);
    world.modem.Say("\r\n+CRE");
    ASSERT_TRUE(world.log.WaitFor("RecvLen(chars) ="));
    world.daemon.Kill();
    world.log.Forget();
    world.daemon.Start();
    ASSERT_TRUE(world.log.WaitFor("AT response thread  is running ...", 20));
    world.modem.Say("G: 1\r\n\r\n+CREG: 5\r\n");
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, I32({5}) + Text("", 32)));
}

}  // namespace
