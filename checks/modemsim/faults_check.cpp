// What the line to the modem does when it misbehaves, in virtual time.

#include "checks/modemsim/test_modem.h"

namespace modemsim {
namespace {

TEST(Faults, DelayHoldsUpTheLinesBehind) {
    TestModem modem;
    EXPECT_EQ(modem.Order("fault delay 3s"), "");
    modem.Core().Receive("AT\rAT\r", modem.Now());
    EXPECT_EQ(modem.Until(60'000), (std::vector<Sent>{{3000, kOk}, {6000, kOk}}));
    EXPECT_EQ(modem.State()["faults"]["delay_ms"], 3000);
    EXPECT_EQ(modem.Order("fault off"), "");
    EXPECT_EQ(modem.Ask("AT\r", 0), kOk);
    EXPECT_EQ(modem.State()["faults"], nlohmann::json::object());
}

TEST(Faults, LateAnswerIsOvertaken) {
    TestModem modem;
    EXPECT_EQ(modem.Order("fault late 3s"), "");
    modem.Core().Receive("AT+CPIN?\rAT\r", modem.Now());
    EXPECT_EQ(modem.Until(60'000), (std::vector<Sent>{{0, kOk}, {3000, "\r\n+CPIN: READY\r\n" + kOk}}));
}

TEST(Faults, LateStepIsOvertakenToo) {
    TestModem modem("use modem\non AT+CPIN?\n    fault late 3s\n    modem\n");
    modem.Core().Receive("AT+CPIN?\rAT\r", modem.Now());
    EXPECT_EQ(modem.Until(60'000), (std::vector<Sent>{{0, kOk}, {3000, "\r\n+CPIN: READY\r\n" + kOk}}));
}

TEST(Faults, SplitGlueGarbageEchoAndMute) {
    TestModem modem;
    modem.Order("fault split 1,3 gap 5ms");
    modem.Core().Receive("AT\r", modem.Now());
    EXPECT_EQ(modem.Until(100), (std::vector<Sent>{{0, "\r"}, {5, "\nOK"}, {10, "\r\n"}}));
    modem.Order("fault off");
    modem.Order("fault glue 200ms");
    modem.Core().Receive("AT\r", modem.Now());
    modem.Order("raw +ZNITZ: 26,11,21,9,0,0,0,0");
    EXPECT_EQ(modem.Until(1000), (std::vector<Sent>{{300, kOk + "\r\n+ZNITZ: 26,11,21,9,0,0,0,0\r\n"}}));
    modem.Order("fault off");
    modem.Order("fault garbage 4");
    const std::string noisy = modem.Ask("AT\r");
    EXPECT_EQ(noisy.size(), kOk.size() + 4);
    EXPECT_TRUE(noisy.ends_with(kOk));
    modem.Order("fault off");
    modem.Order("fault echo on");
    EXPECT_EQ(modem.Ask("AT\r"), "AT\r" + kOk);
    modem.Order("fault off");
    modem.Order("fault mute 2s");
    EXPECT_EQ(modem.Ask("AT\r", 2100), "");
    EXPECT_EQ(modem.Ask("AT\r"), kOk);
    modem.Order("fault mute");
    EXPECT_EQ(modem.Ask("AT\r", 3'600'000), "");
    modem.Order("fault off");
    EXPECT_EQ(modem.Ask("AT\r"), kOk);
}

TEST(Faults, StormIsCounted) {
    TestModem modem;
    EXPECT_EQ(modem.Order("fault storm 500"), "");
    EXPECT_EQ(modem.Until(0).size(), 500U);
    EXPECT_EQ(modem.Order("fault storm 3 1s"), "");
    EXPECT_EQ(modem.Until(10'000).size(), 3U);
}

TEST(Faults, UnpluggedModemHearsAndSaysNothingAndComesBackAsNew) {
    TestModem modem;
    modem.Answer("AT+CMGD=1");
    modem.Ask("ATD07700900123;\r");
    modem.Core().Receive("AT+COPS=?\r", modem.Now());
    EXPECT_EQ(modem.Order("unplug"), "");
    EXPECT_FALSE(modem.Core().PluggedIn());
    EXPECT_EQ(modem.Ask("AT\r"), "");
    EXPECT_EQ(modem.Order("ring 121"), "the modem is not plugged in; 'replug' comes first");
    EXPECT_EQ(modem.Order("unplug"), "the modem is unplugged already; 'replug' plugs it in");
    EXPECT_EQ(modem.Order("replug"), "");
    EXPECT_EQ(modem.Order("replug"), "the modem is plugged in");
    EXPECT_EQ(modem.Answer("AT+CREG?"), Lines({"+CREG: 2,2"}));
    EXPECT_NE(modem.After(2).find("+CREG: 1,"), std::string::npos);
    EXPECT_EQ(modem.Answer("AT+CLCC"), "OK");
    EXPECT_EQ(modem.Answer("AT+CMGR=1"), "+CMS ERROR: 321");
    modem.Order("unplug 3s");
    modem.After(2);
    EXPECT_FALSE(modem.Core().PluggedIn());
    modem.After(1);
    EXPECT_TRUE(modem.Core().PluggedIn());
}

TEST(Faults, OrdersForTheModemNeedOne) {
    TestModem modem("on AT\n    | OK\n");
    EXPECT_EQ(modem.Order("ring 121"), "this scenario has no modem with a memory behind it ('use modem')");
    EXPECT_EQ(modem.Order("fault delay 1s"), "");
    EXPECT_EQ(modem.Order("send \"\\r\\n+X\\x41\\r\\n\""), "");
    EXPECT_EQ(modem.Until(0), (std::vector<Sent>{{0, "\r\n+XA\r\n"}}));
}

}  // namespace
}  // namespace modemsim
