#include "checks/dialogue/conversation.h"
#include "platform/platform.h"

// Registration, the data connection, network time and what the modem reports of the SIM and its toolkit.

namespace {

std::string Creg(int state, const std::string& lac = "", const std::string& cell = "") {
    return I32({state}) + Text(lac, 16) + Text(cell, 16);
}
std::string Cgreg(int state, const std::string& lac, const std::string& cell, int act, const std::string& rac,
                  int sub_act) {
    return Creg(state, lac, cell) + I32({act}) + Text(rac, 16) + I32({sub_act});
}
std::string Cereg(int state, const std::string& tac, const std::string& cell, int act, int sub_act) {
    return Creg(state, tac, cell) + I32({act, sub_act});
}
std::string Addresses(const std::string& address, const std::string& gateway, const std::string& dns1,
                      const std::string& dns2) {
    return I32({1, 5}) + Text("IP", 10) + Text(address, 60) + Text(gateway, 60) + Text(dns1, 60) +
           Text(dns2, 60) + Text("", 2);
}

class NetworkTalks : public Conversation {};

TEST_F(NetworkTalks, RegistrationIsLostAndFound) {
    Say("\r\n+CREG: 2\r\n");
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, Creg(2)));
    Say("\r\n+CREG: 1,\"1A2B\",\"00C3D4E5\"\r\n");
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, Creg(1, "1A2B", "00C3D4E5")));
    Say("\r\n+CGREG: 1,\"1A2B\",\"00C3D4E5\",7,\"01\",2\r\n");
    EXPECT_EQ(Next(sim), Report(sim, 0x0553, 6, Cgreg(1, "1A2B", "00C3D4E5", 7, "01", 2)));
    Say("\r\n+CEREG: 5,\"0F0E\",\"01020304\",7,1\r\n");
    EXPECT_EQ(Next(sim), Report(sim, 0x0552, 6, Cereg(5, "0F0E", "01020304", 7, 1)));
}

TEST_F(NetworkTalks, RegistrationsInOneReadComeInTheirOrder) {
    Say("\r\n+CREG: 1\r\n\r\n+CGREG: 1\r\n+CEREG: 1\r\n\r\n+CREG: 5\r\n");
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, Creg(1)));
    EXPECT_EQ(Next(sim), Report(sim, 0x0553, 6, Cgreg(1, "", "", 0, "", 0)));
    EXPECT_EQ(Next(sim), Report(sim, 0x0552, 6, Cereg(1, "", "", 0, 0)));
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, Creg(5)));
}

TEST_F(NetworkTalks, RegistrationBeforeAnAnswerDoesNotSwallowIt) {
    TheModem().SetAnswer(
        Answers({{"AT+CFUN?", "\r\n+CEREG: 1,\"0F0E\",\"01020304\",7\r\n\r\n+CFUN: 1\r\n\r\nOK\r\n"}}));
    other.Ask(0x0544, kRead);
    EXPECT_EQ(Next(sim), Report(sim, 0x0552, 6, Cereg(1, "0F0E", "01020304", 7, 0)));
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 1, I32({1})));
}

TEST_F(NetworkTalks, RegistrationWaitingInTheBufferDoesNotSwallowTheNextAnswer) {
    SayAlone("\r\n+CREG: 1\r\n");
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, Creg(1)));
    other.Ask(0x0603, kExec);
    EXPECT_EQ(Next(other), Answer(other, 0x0603, kExec, 1, Text("356938035643809", 32)));
}

TEST_F(NetworkTalks, RegistrationBetweenTwoAnswersBelongsToNeither) {
    TheModem().SetAnswer(
        Answers({{"AT+CFUN?", "\r\n+CFUN: 1\r\n\r\nOK\r\n\r\n+CGREG: 2\r\n"},
                 {"AT+CPIN?", "\r\n+CREG: 2\r\n\r\n+CPIN: READY\r\n\r\nOK\r\n\r\n+CEREG: 2\r\n"}}));
    other.Ask(0x0544, kRead);
    other.Ask(0x0301, kRead);
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 1, I32({1})));
    EXPECT_EQ(Next(other), Answer(other, 0x0301, kRead, 1, Text("READY", 32)));
    EXPECT_EQ(Next(sim), Report(sim, 0x0553, 6, Cgreg(2, "", "", 0, "", 0)));
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, Creg(2)));
    EXPECT_EQ(Next(sim), Report(sim, 0x0552, 6, Cereg(2, "", "", 0, 0)));
}

TEST_F(NetworkTalks, RegistrationInsideAnAnswerDoesNotEndIt) {
    for (const bool other_card : {false, true}) {
        SCOPED_TRACE(other_card);
        cfg_set("data_card_mode", other_card ? "OTHER_CARD" : "KVX_LTE");
        TheModem().SetAnswer(Answers({{"AT+CFUN?", "\r\n+CFUN: 1\r\n\r\n+CREG: 3\r\n\r\nOK\r\n"},
                                      {"AT+CGSN", "\r\n356938035643809\r\n\r\n+CGREG: 3\r\n\r\nOK\r\n"}}));
        other.Ask(0x0544, kRead);
        EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 1, I32({1})));
        EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, Creg(3)));
        other.Ask(0x0603, kExec);
        EXPECT_EQ(Next(other), Answer(other, 0x0603, kExec, 1, Text("356938035643809", 32)));
        EXPECT_EQ(Next(sim), Report(sim, 0x0553, 6, Cgreg(3, "", "", 0, "", 0)));
    }
    cfg_set("data_card_mode", "KVX_LTE");
}

TEST_F(NetworkTalks, RegistrationThatIsAskedForIsTheAnswer) {
    TheModem().SetAnswer(
        Answers({{"AT+CREG?", "\r\n+CGREG: 1\r\n\r\n+CREG: 2,1,\"1A2B\",\"00C3D4E5\"\r\n\r\nOK\r\n"}}));
    sim.Ask(0x052D, kRead);
    EXPECT_EQ(Next(sim), Report(sim, 0x0553, 6, Cgreg(1, "", "", 0, "", 0)));
    EXPECT_EQ(Next(sim),
              Answer(sim, 0x052D, kRead, 1, I32({2, 1}) + Text("1A2B", 16) + Text("00C3D4E5", 16)));
}

TEST_F(NetworkTalks, LateRegistrationAnswerIsAReportAndItsOkIsNobodys) {
    Say("\r\n+CREG: 0,1\r\n\r\nOK\r\n");
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, Creg(0, "1")));
    SayAlone("\r\n+CEREG: 1\r\n");
    SayAlone("\r\nOK\r\n");
    EXPECT_EQ(Next(sim), Report(sim, 0x0552, 6, Cereg(1, "", "", 0, 0)));
}

TEST_F(NetworkTalks, RegistrationsOfAnOtherCardAreTheSame) {
    const OtherCard card;
    Say("\r\n+CREG: 1,\"1A2B\",\"00C3D4E5\"\r\n\r\n+CGREG: 1,\"1A2B\",\"00C3D4E5\",7,\"01\",2\r\n");
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, Creg(1, "1A2B", "00C3D4E5")));
    EXPECT_EQ(Next(sim), Report(sim, 0x0553, 6, Cgreg(1, "1A2B", "00C3D4E5", 7, "01", 2)));
    Say("\r\n+CEREG: 5,\"0F0E\",\"01020304\",7,1\r\n");
    EXPECT_EQ(Next(sim), Report(sim, 0x0552, 6, Cereg(5, "0F0E", "01020304", 7, 1)));
}

TEST_F(NetworkTalks, SkippedFieldIsWordInOtherCardsAndNothingInModules) {
    Say("\r\n+CREG: 1,,\"00C3D4E5\"\r\n");
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, Creg(1, "00C3D4E5")));
    const OtherCard card;
    Say("\r\n+CREG: 1,,\"00C3D4E5\"\r\n");
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, Creg(1, "9", "00C3D4E5")));
}

// ---- The data connection

TEST_F(NetworkTalks, ConnectionComesUpWithItsAddressesAndGoesDown) {
    cfg_set("wan_ipaddr", "10.1.1.1");
    Say("\r\n+ZCONSTAT: 1,5\r\n");
    EXPECT_EQ(Next(data), Report(data, 0x0625, 1, I32({1})));
    EXPECT_TRUE(Log().WaitFor("ZCONSTAT stat:1"));
    Say("\r\n+ZGIPDNS: 1,5,\"IP\",\"10.0.0.2\",\"10.0.0.1\",\"8.8.8.8\",\"8.8.4.4\"\r\n");
    EXPECT_EQ(Next(data), Report(data, 0x0627, 1, Addresses("10.0.0.2", "10.0.0.1", "8.8.8.8", "8.8.4.4")));
    Say("\r\n+CGEV: NW DEACT \"IP\",\"10.0.0.2\",5\r\n\r\n+ZCONSTAT: 0,5\r\n");
    EXPECT_EQ(Next(data), Report(data, 0x0625, 1, I32({0})));
    Settle();
    EXPECT_EQ(ConfigValue("wan_ipaddr"), "10.1.1.1") << "the connection manager acts on it, not the server";
}

TEST_F(NetworkTalks, EmptyAddressesStayEmpty) {
    Say("\r\n+ZGIPDNS: 1,5,\"IP\",\"10.0.0.2\",\"\",\"8.8.8.8\",\"\"\r\n");
    EXPECT_EQ(Next(data), Report(data, 0x0627, 1, Addresses("10.0.0.2", "", "8.8.8.8", "")));
}

TEST_F(NetworkTalks, ConnectionOfAnOtherCardIsReportedTheSame) {
    const OtherCard card;
    Say("\r\n+ZCONSTAT: 1,5\r\n"
        "\r\n+ZGIPDNS: 1,5,\"IP\",\"10.0.0.2\",\"10.0.0.1\",\"8.8.8.8\",\"8.8.4.4\"\r\n"
        "\r\n+ZCONSTAT: 0,5\r\n");
    EXPECT_EQ(Next(data), Report(data, 0x0625, 1, I32({1})));
    EXPECT_EQ(Next(data), Report(data, 0x0627, 1, Addresses("10.0.0.2", "10.0.0.1", "8.8.8.8", "8.8.4.4")));
    EXPECT_EQ(Next(data), Report(data, 0x0625, 1, I32({0})));
}

TEST_F(NetworkTalks, ConnectionReportsInsideAnActivationAreNotItsAnswer) {
    TheModem().SetAnswer(
        Answers({{"AT+CFUN?",
                  "\r\n+ZCONSTAT: 1,5\r\n\r\n+CFUN: 1\r\n"
                  "\r\n+ZGIPDNS: 1,5,\"IP\",\"10.0.0.2\",\"10.0.0.1\",\"8.8.8.8\",\"8.8.4.4\"\r\n"
                  "\r\nOK\r\n"}}));
    data.Ask(0x0544, kRead);
    EXPECT_EQ(Next(data), Report(data, 0x0625, 1, I32({1})));
    EXPECT_EQ(Next(data), Report(data, 0x0627, 1, Addresses("10.0.0.2", "10.0.0.1", "8.8.8.8", "8.8.4.4")));
    EXPECT_EQ(Next(data), Answer(data, 0x0544, kRead, 1, I32({1})));
}

// ---- Time, signal, card

TEST_F(NetworkTalks, NetworkTimeReachesItsModule) {
    for (const bool other_card : {false, true}) {
        SCOPED_TRACE(other_card);
        cfg_set("data_card_mode", other_card ? "OTHER_CARD" : "KVX_LTE");
        Say("\r\n+ZNITZ: 2024,11,21,14,30,59,4,1\r\n");
        EXPECT_EQ(Next(time), Report(time, 0x063E, 1, I32({2024, 11, 21, 14, 30, 59, 4, 1})));
    }
    cfg_set("data_card_mode", "KVX_LTE");
}

TEST_F(NetworkTalks, SignalLevelAndCardNumberReachTheSimModule) {
    for (const bool other_card : {false, true}) {
        SCOPED_TRACE(other_card);
        cfg_set("data_card_mode", other_card ? "OTHER_CARD" : "KVX_LTE");
        Say("\r\n^HRSSILVL:85\r\n");
        EXPECT_EQ(Next(sim), Report(sim, 0x0550, 1, Text("85", 8)));
        Say("\r\n+ZICCID: 89860012345678901234\r\n");
        EXPECT_EQ(Next(sim), Report(sim, 0x0629, 6, Text("89860012345678901234", 64)));
        Say("\r\n+ZSIMREFRESH\r\n");
        EXPECT_EQ(Next(sim), Report(sim, 0x0646, 6, "+ZSIMREFRESH"));
    }
    cfg_set("data_card_mode", "KVX_LTE");
}

// ---- The toolkit

class ToolkitTalks : public Conversation {};

TEST_F(ToolkitTalks, MenuIsOpenedAnsweredAndClosed) {
    TheModem().SetAnswer(Answers({{"AT+ZSTM", "\r\nOK\r\n"}}));
    toolkit.Ask(0x0701, kExec);
    EXPECT_EQ(Next(toolkit), Answer(toolkit, 0x0701, kExec, 1, "OK"));
    EXPECT_EQ(TheModem().Bytes(), "AT+ZSTM\r");
    Say("\r\n+ZSTI: \"Services\",2\r\n");
    EXPECT_EQ(Next(toolkit), Report(toolkit, 0x0702, 2, "\"Services\",2"));
    Say("\r\n+ZPSTM: 1,\"News\"\r\n");
    EXPECT_EQ(Next(toolkit), Report(toolkit, 0x0709, 2, "1,\"News\""));
    Say("\r\n+ZDIST: 0,\"Welcome to the menu of cards\"\r\n");
    EXPECT_EQ(Next(toolkit), Report(toolkit, 0x0706, 2, "0,\"Welcome to the menu of cards\""));
    Say("\r\n+ZGINP: 1,\"Name\"\r\n");
    EXPECT_EQ(Next(toolkit), Report(toolkit, 0x070A, 2, "1,\"Name\""));
    Say("\r\n+ZGINK: 1,\"Key\"\r\n");
    EXPECT_EQ(Next(toolkit), Report(toolkit, 0x070C, 2, "1,\"Key\""));
    Say("\r\n+ZSMSR: 1\r\n");
    EXPECT_EQ(Next(toolkit), Report(toolkit, 0x0705, 2, "1"));
    Say("\r\n+ZMTime: 12,30\r\n");
    EXPECT_EQ(Next(toolkit), Report(toolkit, 0x0710, 2, "12,30"));
    Say("\r\n+ZFDIST: 3\r\n");
    EXPECT_EQ(Next(toolkit), Report(toolkit, 0x0711, 2, "3"));
    Say("\r\n+ZUnsupport: 4\r\n");
    EXPECT_EQ(Next(toolkit), Report(toolkit, 0x0711, 2, "rt: 4")) << "as many characters go as of +ZFDIST";
    Say("\r\n+ZEND\r\n");
    EXPECT_EQ(Next(toolkit), Report(toolkit, 0x0708, 1, "+ZEND"));
}

TEST_F(ToolkitTalks, EventsInOneReadAndInsideAnAnswerComeInTheirOrder) {
    TheModem().SetAnswer(Answers(
        {{"AT+CFUN?",
          "\r\n+ZSTI: 1\r\n\r\n+ZPSTM: 2\r\n\r\n+CFUN: 1\r\n\r\n+ZDIST: 3\r\n\r\nOK\r\n\r\n+ZEND\r\n"}}));
    other.Ask(0x0544, kRead);
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 1, I32({1})));
    EXPECT_EQ(Next(toolkit), Report(toolkit, 0x0702, 2, "1"));
    EXPECT_EQ(Next(toolkit), Report(toolkit, 0x0709, 2, "2"));
    EXPECT_EQ(Next(toolkit), Report(toolkit, 0x0706, 2, "3"));
    EXPECT_EQ(Next(toolkit), Report(toolkit, 0x0708, 1, "+ZEND"));
}

TEST_F(ToolkitTalks, EventsOfAnOtherCardAreNotDecodedButForTheEnd) {
    const OtherCard card;
    Say("\r\n+ZSTI: 1\r\n\r\n+ZPSTM: 2\r\n\r\n+ZDIST: 3\r\n\r\n+ZMTime: 4\r\n\r\n+ZEND\r\n");
    EXPECT_EQ(Next(toolkit), Report(toolkit, 0x0708, 1, "+ZEND"));
}

TEST_F(ToolkitTalks, ProactiveCommandReachesTheSimModule) {
    for (const bool other_card : {false, true}) {
        SCOPED_TRACE(other_card);
        cfg_set("data_card_mode", other_card ? "OTHER_CARD" : "KVX_LTE");
        Say("\r\n+ZUPCI: 35,1,2,3,\"Enter your code\"\r\n");
        EXPECT_EQ(Next(sim), Report(sim, 0x0630, 6, I32({35, 1, 2, 3}) + Text("Enter your code", 512)));
        Say("\r\n+ZUPCI: 37,1,2,3,\"Other text\"\r\n");
        EXPECT_EQ(Next(sim), Report(sim, 0x0630, 6, I32({37, 0, 0, 0}) + Text("", 512)));
        Say("\r\n+ZUEND: 2\r\n");
        EXPECT_EQ(Next(sim), Report(sim, 0x0632, 6, I32({2})));
    }
    cfg_set("data_card_mode", "KVX_LTE");
}

}  // namespace
