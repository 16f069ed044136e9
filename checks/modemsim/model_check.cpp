// The modem with a memory, in virtual time: what it is told it knows later.

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "checks/modemsim/test_modem.h"
#include "tools/modemsim/model/pdu.h"

namespace modemsim {
namespace {

// ---- the rule: what a scenario says comes first

TEST(Model, RulesComeBeforeTheModemAndTheModemBeforeError) {
    TestModem modem("use modem\non AT+CSQ\n    | mine\n");
    EXPECT_EQ(modem.Answer("AT+CSQ"), "mine");
    EXPECT_EQ(modem.Answer("AT+CPIN?"), Lines({"+CPIN: READY"}));
    EXPECT_EQ(modem.Answer("AT+NOSUCH"), "ERROR");
    EXPECT_EQ(modem.Answer("rubbish"), "ERROR");
    TestModem wide("use modem\non *\n    | wide\n");
    EXPECT_EQ(wide.Answer("AT+CPIN?"), "wide");
}

TEST(Model, RuleHandsALineToTheModem) {
    TestModem modem("use modem\non AT+CPIN?\n    wait 2s\n    modem\n");
    EXPECT_EQ(modem.Ask("AT+CPIN?\r", 1999), "");
    EXPECT_EQ(modem.Ask("", 1), "\r\n+CPIN: READY\r\n" + kOk);
}

TEST(Model, SameSeedSameStory) {
    const auto story = [](const std::string& seed) {
        TestModem modem("use modem\nseed " + seed + "\ndo signal move 1s\nfault garbage 3\n");
        return modem.After(60);
    };
    EXPECT_EQ(story("5"), story("5"));
    EXPECT_NE(story("5"), story("6"));
}

TEST(Model, ErrorsAreToldAsAskedFor) {
    TestModem modem;
    EXPECT_EQ(modem.Answer("AT+CPBR=300"), "+CME ERROR: 21");
    EXPECT_EQ(modem.Answer("AT+CMEE=2"), "OK");
    EXPECT_EQ(modem.Answer("AT+CPBR=300"), "+CME ERROR: invalid index");
    EXPECT_EQ(modem.Answer("AT+CMEE=0"), "OK");
    EXPECT_EQ(modem.Answer("AT+CPBR=300"), "ERROR");
    EXPECT_EQ(modem.Answer("AT+CMEE=3"), "ERROR");
}

// Whatever the host writes: an answer comes, and it has an end.
TEST(Model, EveryLineGetsAnAnswer) {
    const std::vector<std::string> names = {
        "",       "E",      "Z",       "&F",     "I",      "A",       "H",        "D",        "+CGMI",
        "+CMEE",  "+CSCS",  "+CPIN",   "+CPWD",  "+CLCK",  "+CRSM",   "+CPINC",   "^CPIN",    "%PINNUM",
        "+CIMI",  "+CREG",  "+CFUN",   "+COPS",  "+CSQ",   "+ZRSSI",  "+CIND",    "^SYSINFO", "+CGDCONT",
        "+CGATT", "+CGACT", "+ZGACT",  "+CPMS",  "+CMGL",  "+CMGR",   "+CMGD",    "+CMGS",    "+CMGW",
        "+CNMI",  "+CMGF",  "+CSCA",   "+CPBS",  "+CPBR",  "+CPBW",   "+ZCPBR",   "+ZCPBW",   "+CHUP",
        "+CLCC",  "+CHLD",  "+VTS",    "+CLVL",  "+CLIP",  "+CCFC",   "+CCWA",    "+CUSD",    "+ZSTM",
        "+ZSELM", "+ZSELI", "+ZBK",    "+ZINPR", "+ZINKR", "+ZDISTR", "+CGPADDR", "$QCPDPP",  "+ZPINPUK",
        "+CNUM",  "+CLIR",  "+NOSUCH", "!"};
    const std::vector<std::string> forms = {"", "?", "=?", "=", "=", "=", "="};
    const std::vector<std::string> values = {
        "",        "0",  "1",     "2",           "3",    "19",          "99",
        "255",     "-1", "x",     "\"SC\"",      "\"\"", "\"IP\"",      "\"1234\"",
        "\"a,b\"", "\"", "*101#", "99999999999", "\xFF", "07700900123", ";"};
    const std::vector<std::string> orders = {
        "ring 121",     "hangup",          "sim pull",     "sim insert",    "sim lock",
        "network lose", "network restore", "network roam", "message 121 x", "data drop",
        "unplug",       "replug",          "answer",       "busy"};
    std::mt19937 random(3);
    int good = 0;
    const auto one = [&](const std::vector<std::string>& of) { return of[random() % of.size()]; };
    TestModem modem;
    for (int i = 0; i < 5000; ++i) {
        if (random() % 16 == 0) modem.Order(one(orders));
        if (!modem.Core().PluggedIn()) modem.Order("replug");
        const std::string form = one(forms);
        std::string line = "AT" + one(names) + form;
        for (std::size_t n = form == "=" ? random() % 6 : 0; n > 0; --n)
            line += one(values) + (n > 1 ? "," : "");
        std::string answer = modem.Ask(line + "\r", 10'000);
        if (answer.find("\r\n> ") != std::string::npos) {
            modem.Core().Receive(std::string(random() % 60, "0123456789ABCDEF"[random() % 16]) + "\x1A",
                                 modem.Now());
            answer = modem.Ask("", 5000);
        }
        const bool ends =
            answer.find("OK") != std::string::npos || answer.find("ERROR") != std::string::npos ||
            answer.find("NO CARRIER") != std::string::npos || answer.find("CONNECT") != std::string::npos;
        ASSERT_TRUE(ends) << line << " gave " << answer;
        if (answer.find("OK") != std::string::npos) ++good;
    }
    // Most lines are wrong, but not all.
    EXPECT_GT(good, 1000);
}

// ---- the card

TEST(Sim, WrongPinsUseUpTheTriesAndThePukGivesThemBack) {
    TestModem modem;
    EXPECT_EQ(modem.Order("sim lock"), "");
    EXPECT_EQ(modem.Answer("AT+CPIN=\"1111\""), "+CME ERROR: 16");
    EXPECT_EQ(modem.Answer("AT+CPINC"), Lines({"+CPINC: 2,3,10,10"}));
    EXPECT_EQ(modem.Answer("AT^CPIN?"), Lines({"^CPIN: SIM PIN,2,10,2,10,3"}));
    modem.Answer("AT+CPIN=\"1111\"");
    EXPECT_EQ(modem.Answer("AT+CPIN=\"1111\""), "+CME ERROR: 16");
    EXPECT_EQ(modem.Answer("AT+CPIN?"), Lines({"+CPIN: SIM PUK"}));
    EXPECT_EQ(modem.Answer("AT+CPIN=\"1234\""), "+CME ERROR: 12");
    EXPECT_EQ(modem.Answer("AT+CPIN=\"00000000\",\"4321\""), "+CME ERROR: 16");
    EXPECT_EQ(modem.Answer("AT+ZPINPUK=?"), Lines({"+ZPINPUK: 0,9"}));
    EXPECT_EQ(modem.Answer("AT+CPIN=\"12345678\",\"4321\""), "OK");
    EXPECT_NE(modem.After(2).find("\r\n+ZURDY: 1,1\r\n"), std::string::npos);
    EXPECT_EQ(modem.Answer("AT+CPINC"), Lines({"+CPINC: 3,3,10,10"}));
    EXPECT_EQ(modem.Answer("AT+CLCK=\"SC\",0,\"4321\""), "OK");
    EXPECT_EQ(modem.Answer("AT+CLCK=\"SC\",2"), Lines({"+CLCK: 0"}));
}

TEST(Sim, TenWrongPuksEndTheCard) {
    TestModem modem;
    modem.Order("sim lock");
    for (int i = 0; i < 3; ++i)
        modem.Answer("AT+CPIN=\"1111\"");
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(modem.Answer("AT+CPIN=\"00000000\",\"4321\""), "+CME ERROR: 16");
    EXPECT_EQ(modem.Answer("AT+CPIN=\"00000000\",\"4321\""), "+CME ERROR: 13");
    EXPECT_EQ(modem.Answer("AT+CPIN?"), "+CME ERROR: 13");
    EXPECT_EQ(modem.Answer("AT+CPIN=\"12345678\",\"4321\""), "+CME ERROR: 13");
}

TEST(Sim, PinIsChangedWhileItIsAskedFor) {
    TestModem modem;
    EXPECT_EQ(modem.Answer("AT+CPWD=\"SC\",\"1234\",\"9876\""), "+CME ERROR: 3");
    EXPECT_EQ(modem.Answer("AT+CLCK=\"SC\",1,\"1234\""), "OK");
    EXPECT_EQ(modem.Answer("AT+CPWD=\"SC\",\"1111\",\"9876\""), "+CME ERROR: 16");
    EXPECT_EQ(modem.Answer("AT+CPWD=\"SC\",\"1234\",\"98x6\""), "+CME ERROR: 50");
    EXPECT_EQ(modem.Answer("AT+CPWD=\"SC\",\"1234\",\"9876\""), "OK");
    modem.Order("unplug");
    modem.Order("replug");
    EXPECT_EQ(modem.Answer("AT+CPIN?"), Lines({"+CPIN: SIM PIN"}));
    EXPECT_EQ(modem.Answer("AT+CPIN=\"9876\""), "OK");
}

TEST(Sim, WithoutACardNothingIsRead) {
    TestModem modem;
    EXPECT_EQ(modem.Order("sim pull"), "");
    EXPECT_EQ(modem.After(1),
              "\r\n+ZUSIMR: 0\r\n\r\n+CREG: 0\r\n\r\n+CGREG: 0\r\n\r\n+CEREG: 0\r\n\r\n+ZCONSTAT: 0\r\n");
    EXPECT_EQ(modem.Order("sim pull"), "there is no SIM in the modem; 'sim insert' puts it back");
    EXPECT_EQ(modem.Answer("AT+CPIN?"), "+CME ERROR: 10");
    EXPECT_EQ(modem.Answer("AT+CIMI"), "+CME ERROR: 10");
    EXPECT_EQ(modem.Answer("AT+CMGL=4"), "+CMS ERROR: 310");
    EXPECT_EQ(modem.Answer("AT+CPBR=1"), "+CME ERROR: 10");
    EXPECT_EQ(modem.Answer("ATD121;"), "+CME ERROR: 10");
    EXPECT_EQ(modem.Order("sim insert"), "");
    EXPECT_NE(modem.After(3).find("+CREG: 1,"), std::string::npos);
    EXPECT_EQ(modem.Answer("AT+CIMI"), Lines({"001010123456789"}));
    EXPECT_EQ(modem.Answer("AT+CRSM=176,28486,0,0,17"),
              Lines({"+CRSM: 144,0,\"01546573746E6574FFFFFFFFFFFFFFFFFF\""}));
    EXPECT_EQ(modem.Answer("AT+CRSM=176,1,0,0,17"), Lines({"+CRSM: 106,130"}));
}

// ---- network

TEST(Network, LostAndFound) {
    TestModem modem;
    EXPECT_EQ(modem.Order("network lose"), "");
    EXPECT_EQ(modem.After(5), "\r\n+CREG: 2\r\n\r\n+CGREG: 2\r\n\r\n+CEREG: 2\r\n\r\n+ZCONSTAT: 0\r\n");
    EXPECT_EQ(modem.Answer("AT+CREG?"), Lines({"+CREG: 2,2"}));
    EXPECT_EQ(modem.Answer("AT+CSQ"), Lines({"+CSQ: 99,99"}));
    EXPECT_EQ(modem.Answer("AT+COPS?"), Lines({"+COPS: 0"}));
    EXPECT_EQ(modem.Answer("AT+CGATT?"), Lines({"+CGATT: 0"}));
    EXPECT_EQ(modem.Answer("ATD121;"), "+CME ERROR: 30");
    EXPECT_EQ(modem.Answer("AT+CMGS=19"), "+CMS ERROR: 331");
    EXPECT_EQ(modem.Answer("AT+CREG=0"), "OK");
    EXPECT_EQ(modem.Order("network restore"), "");
    EXPECT_EQ(
        modem.After(5),
        "\r\n+CGREG: 1,\"1A2B\",\"00C3D4E5\",7,\"01\",0\r\n\r\n+CEREG: 1,\"1A2B\",\"00C3D4E5\",7,0\r\n");
    EXPECT_EQ(modem.Order("network restore"), "the network is there already");
}

TEST(Network, OperatorIsChosenByHand) {
    TestModem modem;
    EXPECT_EQ(modem.Ask("AT+COPS=?\r", 3900), "");
    EXPECT_NE(modem.Ask("", 200).find("(1,\"Testnet Two\",\"TN2\",\"00102\",7),(3,\"Border Net\""),
              std::string::npos);
    EXPECT_EQ(modem.Answer("AT+COPS=1,2,\"00199\""), "+CME ERROR: 32");
    EXPECT_EQ(modem.Answer("AT+COPS=1,2,\"99999\""), "+CME ERROR: 30");
    EXPECT_EQ(modem.Answer("AT+COPS=1,2,\"00102\",7"), "OK");
    EXPECT_NE(modem.After(2).find("\r\n+CREG: 5,\"2B3C\",\"00D4E5F6\"\r\n"), std::string::npos);
    EXPECT_EQ(modem.Answer("AT+COPS?"), Lines({"+COPS: 1,2,\"00102\",7"}));
    EXPECT_NE(modem.Answer("AT+COPS=?").find("(2,\"Testnet Two\""), std::string::npos);
    EXPECT_EQ(modem.Answer("AT+COPS=0"), "OK");
    EXPECT_NE(modem.After(2).find("+CREG: 1,"), std::string::npos);
}

TEST(Network, RadioOffIsNoNetwork) {
    TestModem modem;
    EXPECT_EQ(modem.Answer("AT+CFUN=0"), "OK");
    EXPECT_NE(modem.After(1).find("\r\n+CREG: 0\r\n"), std::string::npos);
    EXPECT_EQ(modem.Answer("AT+CSQ"), Lines({"+CSQ: 99,99"}));
    EXPECT_EQ(modem.Answer("AT+CFUN=1"), "OK");
    EXPECT_NE(modem.After(2).find("\r\n+CREG: 1,\"1A2B\",\"00C3D4E5\"\r\n"), std::string::npos);
    EXPECT_EQ(modem.Answer("AT+CFUN=9"), "+CME ERROR: 50");
}

TEST(Network, SignalMovesWithEveryLookUntilItIsSet) {
    TestModem modem;
    EXPECT_EQ(modem.Answer("AT+CSQ"), Lines({"+CSQ: 21,99"}));
    std::set<std::string> seen;
    for (int i = 0; i < 30; ++i)
        seen.insert(modem.Answer("AT+CSQ"));
    EXPECT_GE(seen.size(), 3U);
    EXPECT_EQ(modem.Order("signal 4"), "");
    EXPECT_EQ(modem.After(1), "\r\n^HRSSILVL:4\r\n");
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(modem.Answer("AT+CSQ"), Lines({"+CSQ: 4,99"}));
    EXPECT_EQ(modem.Answer("AT+ZRSSI"), Lines({"+ZRSSI: -129,-8,-12,3.5"}));
    EXPECT_EQ(modem.Order("signal move 2s"), "");
    EXPECT_EQ(modem.Until(modem.State()["milliseconds"].get<std::int64_t>() + 11'000).size(), 5U);
}

// ---- messages

constexpr char kPdu[] = "0011000B917744770009F10000AA05E8329BFD06";     // "hello" to another number
constexpr char kToSelf[] = "0031000C914477000910110000AA05E8329BFD06";  // to the own one, with a report

TEST(Messages, ArePutReadListedAndDeleted) {
    TestModem modem;
    EXPECT_EQ(modem.Ask("AT+CMGW=19,2\r"), "\r\n> ");
    EXPECT_EQ(modem.Ask(std::string(kPdu) + "\x1A"), "\r\n+CMGW: 6\r\n" + kOk);
    EXPECT_EQ(modem.Answer("AT+CMGR=6"), Lines({"+CMGR: 2,,19", kPdu}));
    EXPECT_NE(modem.Answer("AT+CMGL=2").find("+CMGL: 6,2,,19\r\n"), std::string::npos);
    EXPECT_EQ(modem.Answer("AT+CPMS?"), Lines({"+CPMS: \"SM\",6,50,\"SM\",6,50,\"SM\",6,50"}));
    EXPECT_EQ(modem.Answer("AT+CMGD=6, 0"), "OK");
    EXPECT_EQ(modem.Answer("AT+CMGR=6"), "+CMS ERROR: 321");
    EXPECT_EQ(modem.Answer("AT+CMGD=1,4"), "OK");
    EXPECT_EQ(modem.Answer("AT+CMGL=4"), "OK");
    EXPECT_EQ(modem.Answer("AT+CMGD=99, 0"), "+CMS ERROR: 321");
    EXPECT_EQ(modem.Answer("AT+CPMS=\"ME\",\"ME\",\"SM\""), Lines({"+CPMS: 0,100,0,100,0,50"}));
    EXPECT_EQ(modem.Answer("AT+CPMS=\"XX\""), "+CMS ERROR: 305");
}

TEST(Messages, DeleteByKind) {
    // Of 1 unread, 2 read, 4 sent, 5 unsent.
    const std::vector<std::size_t> left = {3, 2, 1, 0};
    for (std::size_t flag = 1; flag <= left.size(); ++flag) {
        TestModem modem;
        modem.Answer("AT+CMGD=3");
        EXPECT_EQ(modem.Answer("AT+CMGD=1," + std::to_string(flag)), "OK");
        EXPECT_EQ(modem.State()["messages"]["SM"].size(), left[flag - 1]) << flag;
    }
}

TEST(Messages, OnlySoundOnesAreSent) {
    TestModem modem;
    for (const char* bad : {"", "xyz", "0011", "0011000B917744770009F10000AA05E8329BFD0600", "04"}) {
        EXPECT_EQ(modem.Ask("AT+CMGS=19\r"), "\r\n> ");
        EXPECT_EQ(modem.Ask(std::string(bad) + "\x1A"), "\r\n+CMS ERROR: 304\r\n") << bad;
    }
    EXPECT_EQ(modem.Ask("AT+CMGS=19\r"), "\r\n> ");
    EXPECT_EQ(modem.Ask(std::string(kPdu) + "\x1B"), kOk);
    EXPECT_EQ(modem.State()["messages"]["sent_to"].size(), 0U);
    EXPECT_EQ(modem.Ask("AT+CMGS=19\r"), "\r\n> ");
    EXPECT_EQ(modem.Ask(std::string(kPdu) + "\x1A"), "\r\n+CMGS: 17\r\n" + kOk);
    EXPECT_EQ(modem.State()["messages"]["sent_to"][0], "+77447700901");
}

TEST(Messages, OneToTheOwnNumberComesBack) {
    TestModem modem;
    EXPECT_EQ(modem.Answer("AT+CNMI=2,1,0,1,0"), "OK");
    EXPECT_EQ(modem.Ask("AT+CMGS=19\r"), "\r\n> ");
    const std::string text = modem.Ask(std::string(kToSelf) + "\x1A");
    EXPECT_NE(text.find("\r\n+CMTI: \"SM\",6\r\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\r\n+CDS: 25\r\n079144770009000006110C9144770009101162111290"), std::string::npos)
        << text;
    EXPECT_NE(modem.Answer("AT+CMGR=6").find("+CMGR: 0,,24\r\n0791447700090000040C914477000910110000"),
              std::string::npos);
}

TEST(Messages, DeliveredOnesWaitUnread) {
    TestModem modem;
    EXPECT_EQ(modem.Order("message +447700900123 Hello"), "");
    EXPECT_EQ(modem.After(1), "\r\n+CMTI: \"SM\",6\r\n");
    const std::string pdu =
        "0791447700090000040C914477000910320000621112900000000"
        "5C8329BFD06";
    EXPECT_EQ(modem.Answer("AT+CMGR=6"), Lines({"+CMGR: 0,,24", pdu}));
    EXPECT_EQ(modem.Answer("AT+CMGR=6"), Lines({"+CMGR: 1,,24", pdu}));
    EXPECT_EQ(modem.Answer("AT+CNMI=2,0,0,0,0"), "OK");
    EXPECT_EQ(modem.Order("message 121 Quiet"), "");
    EXPECT_EQ(modem.After(1), "");
}

TEST(Messages, FullStoreTakesNone) {
    TestModem modem;
    for (int i = 6; i <= 50; ++i)
        EXPECT_EQ(modem.Order("message 121 x"), "");
    EXPECT_EQ(modem.Order("message 121 x"), "the store for messages that come in (AT+CPMS) is full");
    EXPECT_EQ(modem.Answer("AT+CMGW=19,2"), "+CMS ERROR: 322");
    EXPECT_EQ(modem.Answer("AT+CMGD=50"), "OK");
    EXPECT_EQ(modem.Order("message 121 x"), "");
}

std::size_t Octets(const Pdu& pdu) {
    return pdu.hex.size() / 2 - 8;
}

TEST(Messages, TextsAreCodedAsTheyNeed) {
    const auto pdus = [](const std::string& text) {
        std::string reason;
        const auto made = DeliverPdus("121", text, "26/11/21,09:00:00", 7, reason);
        EXPECT_TRUE(made) << reason;
        return made.value_or(std::vector<Pdu>());
    };
    // A coding of 0 for the default alphabet, the euro sign in two septets; of 8 when a character is missing
    // there.
    EXPECT_TRUE(pdus("@\xE2\x82\xAC")
                    .at(0)
                    .hex.ends_with("03"
                                   "804D19"));
    EXPECT_NE(pdus("\xD0\xA9")
                  .at(0)
                  .hex.find("0008"
                            "62111290000000"
                            "020429"),
              std::string::npos);
    EXPECT_EQ(pdus(std::string(160, 'x')).size(), 1U);
    const auto parts = pdus(std::string(161, 'x'));
    ASSERT_EQ(parts.size(), 2U);
    EXPECT_NE(parts[1].hex.find("0F"
                                "050003070202"),
              std::string::npos)
        << parts[1].hex;
    for (const Pdu& pdu : parts)
        EXPECT_EQ(pdu.length, Octets(pdu));
    std::string reason;
    EXPECT_FALSE(DeliverPdus("121", std::string(1531, 'x'), "26/11/21,09:00:00", 7, reason));
    EXPECT_EQ(reason, "the text is longer than 10 messages");
    EXPECT_FALSE(DeliverPdus("121", "\xC3", "26/11/21,09:00:00", 7, reason));
    EXPECT_EQ(reason, "the text is not valid UTF-8");
}

// ---- phonebook

TEST(Phonebook, EntriesAreKept) {
    TestModem modem;
    EXPECT_EQ(modem.Answer("AT+CPBW=,\"07700900555\",129,\"Gate, North\""), "OK");
    EXPECT_EQ(modem.Answer("AT+CPBR=3"), Lines({"+CPBR: 3,\"07700900555\",129,\"Gate, North\""}));
    EXPECT_EQ(modem.Answer("AT+ZCPBW=4,\"+441\",145,\"Long\",\"2\",\"b\",\"c@d\""), "OK");
    EXPECT_EQ(modem.Answer("AT+ZCPBR=3,4"), Lines({"+ZCPBR: 3,\"07700900555\",\"Gate, North\",\"\",\"\",\"\"",
                                                   "+ZCPBR: 4,\"+441\",\"Long\",\"2\",\"b\",\"c@d\""}));
    EXPECT_EQ(modem.Answer("AT+CPBS?"), Lines({"+CPBS: \"SM\",6,250"}));
    EXPECT_EQ(modem.Answer("AT+CPBW=3"), "OK");
    EXPECT_EQ(modem.Answer("AT+CPBR=3"), "OK");
    EXPECT_EQ(modem.Answer("AT+CPBW=251,\"1\",,\"x\""), "+CME ERROR: 21");
    EXPECT_EQ(modem.Answer("AT+CPBW=,,,"), "+CME ERROR: 50");
    EXPECT_EQ(modem.Answer("AT+CPBS=\"ME\""), "OK");
    EXPECT_EQ(modem.Answer("AT+CPBR=1,500"), "OK");
    EXPECT_EQ(modem.Answer("AT+ZCPBR=?"), Lines({"+ZCPBR: (1-500),40,16,40,40,60"}));
}

// ---- calls

TEST(Calls, OutgoingOneTakesItsCourse) {
    TestModem modem;
    EXPECT_EQ(modem.Answer("ATD07700900123;"), "OK");
    EXPECT_EQ(modem.Answer("AT+CLCC"), Lines({"+CLCC: 1,0,2,0,0,\"07700900123\",129,0,0"}));
    EXPECT_EQ(modem.After(2), "\r\nRINGBACK\r\n");
    EXPECT_EQ(modem.Answer("AT+CLCC"), Lines({"+CLCC: 1,0,3,0,0,\"07700900123\",129,0,0"}));
    EXPECT_EQ(modem.After(3), "\r\nVOICE CONNECT\r\n");
    EXPECT_EQ(modem.Answer("AT+CLCC?"), Lines({"+CLCC: 1,0,0,0,0,\"07700900123\",129,0,0"}));
    EXPECT_EQ(modem.Answer("ATD121;"), "+CME ERROR: 3");
    EXPECT_EQ(modem.Answer("AT+VTS=1"), "OK");
    EXPECT_EQ(modem.Answer("AT+CHUP"), "OK");
    EXPECT_EQ(modem.After(5), "\r\nHANGUP: 16\r\n");
    EXPECT_EQ(modem.Answer("AT+CLCC"), "OK");
    EXPECT_EQ(modem.Answer("AT+VTS=1"), "+CME ERROR: 3");
    EXPECT_EQ(modem.Ask("AT+CHUP\r"), kOk);
}

TEST(Calls, OneThatIsHungUpEarlyNeverConnects) {
    TestModem modem;
    EXPECT_EQ(modem.Ask("ATD07700900123;\r", 1500), kOk + "\r\nRINGBACK\r\n");
    EXPECT_EQ(modem.Ask("ATH\r"), kOk + "\r\nHANGUP: 16\r\n");
}

TEST(Calls, OtherPartyDoesAsItIsTold) {
    TestModem modem;
    EXPECT_EQ(modem.Order("answer"), "the modem has dialled nobody who could answer");
    EXPECT_EQ(modem.Order("hangup"), "there is no call that could end");
    modem.Ask("ATD07700900998;\r", 1500);
    EXPECT_EQ(modem.Order("answer"), "");
    EXPECT_EQ(modem.After(60), "\r\nVOICE CONNECT\r\n");
    EXPECT_EQ(modem.Order("hangup"), "");
    EXPECT_EQ(modem.After(60), "\r\nVOICE NO CARRIER: 16\r\n");
    modem.Ask("ATD07700900123;\r", 1500);
    EXPECT_EQ(modem.Order("busy"), "");
    EXPECT_EQ(modem.After(60), "\r\nBUSY\r\n");
    EXPECT_EQ(modem.Ask("ATD07700900998;\r"), kOk + "\r\nRINGBACK\r\n\r\nNO ANSWER\r\n");
    EXPECT_EQ(modem.Ask("ATD07700900999;\r"), kOk + "\r\nBUSY\r\n");
}

TEST(Calls, IncomingOneRingsUntilItIsTaken) {
    TestModem modem;
    const std::string ring = "\r\nRING\r\n\r\n+CLIP: \"+447700900123\",145,,,,0\r\n";
    EXPECT_EQ(modem.Order("ring +447700900123"), "");
    EXPECT_EQ(modem.After(4), ring + ring);
    EXPECT_EQ(modem.Answer("AT+CLCC"), Lines({"+CLCC: 1,1,4,0,0,\"+447700900123\",145,0,0"}));
    EXPECT_EQ(modem.Ask("ATA\r"), kOk + "\r\nVOICE CONNECT\r\n");
    EXPECT_EQ(modem.Answer("AT+CHUP"), "OK");
    modem.After(1);
    EXPECT_EQ(modem.Answer("ATA"), "NO CARRIER");
    EXPECT_EQ(modem.Answer("AT+CLIP=0"), "OK");
    EXPECT_EQ(modem.Order("ring +447700900123"), "");
    const std::string text = modem.After(60);
    EXPECT_TRUE(text.starts_with("\r\nRING\r\n\r\nRING\r\n")) << text;
    EXPECT_TRUE(text.ends_with("\r\nRING\r\n\r\nSTOPRING\r\n")) << text;
}

TEST(Calls, SecondOneWaitsAndIsSwapped) {
    TestModem modem;
    modem.Ask("ATD07700900123;\r");
    EXPECT_EQ(modem.Order("ring 121"), "");
    EXPECT_EQ(modem.After(1), "\r\n+CCWA: \"121\",129,1\r\n");
    EXPECT_EQ(modem.Answer("AT+CHLD=2"), "OK");
    EXPECT_EQ(modem.Answer("AT+CLCC"),
              Lines({"+CLCC: 1,0,1,0,0,\"07700900123\",129,0,0", "+CLCC: 2,1,0,0,0,\"121\",129,0,0"}));
    EXPECT_EQ(modem.Answer("AT+CHLD=3"), "OK");
    EXPECT_EQ(modem.Answer("AT+CLCC"),
              Lines({"+CLCC: 1,0,0,0,1,\"07700900123\",129,0,0", "+CLCC: 2,1,0,0,1,\"121\",129,0,0"}));
    modem.Ask("AT+CHUP\r");
    EXPECT_EQ(modem.Answer("AT+CCWA=1,0"), "OK");
    modem.Ask("ATD07700900123;\r");
    EXPECT_EQ(modem.Order("ring 121"),
              "the modem is in a call, and a second one cannot wait: the caller hears that it is busy");
}

TEST(Calls, DivertedOnesDoNotRing) {
    TestModem modem;
    EXPECT_EQ(modem.Answer("AT+CCFC=3,2"), Lines({"+CCFC: 1,1,\"+447700900121\",145"}));
    EXPECT_EQ(modem.Answer("AT+CCFC=0,3,+447700900500,145,1"), "OK");
    EXPECT_EQ(modem.Answer("AT+CCFC=0,2"), Lines({"+CCFC: 1,1,\"+447700900500\",145"}));
    EXPECT_EQ(modem.Order("ring 121"),
              "all calls are diverted to +447700900500 (AT+CCFC): the modem does not ring");
    EXPECT_EQ(modem.Answer("AT+CCFC=0,0"), "OK");
    EXPECT_EQ(modem.Order("ring 121"), "");
    EXPECT_EQ(modem.Answer("AT+CCFC=2,3,121,129,1,0,0,30"), "OK");
    EXPECT_EQ(modem.Answer("AT+CCFC=2,2"), Lines({"+CCFC: 1,1,\"121\",129,,,30"}));
}

TEST(Calls, EndWithTheNetwork) {
    TestModem modem;
    modem.Ask("ATD07700900123;\r");
    modem.Order("network lose");
    EXPECT_NE(modem.After(1).find("\r\nVOICE NO CARRIER: 16\r\n"), std::string::npos);
    EXPECT_EQ(modem.State()["calls"].size(), 0U);
}

// ---- data

TEST(Data, ContextGetsAddresses) {
    TestModem modem;
    EXPECT_EQ(modem.Answer("AT+CGDCONT=3,\"IPV4V6\",\"new.example\",,0,0"), "OK");
    EXPECT_NE(modem.Answer("AT+CGDCONT?").find("+CGDCONT: 3,\"IPV4V6\",\"new.example\",\"\",0,0\r\n"),
              std::string::npos);
    EXPECT_EQ(
        modem.Ask("AT+ZGACT=1,3\r"),
        kOk +
            "\r\n+ZGIPDNS: 3,1,\"IP\",\"10.64.14.34\",\"10.64.14.33\",\"192.0.2.53\",\"198.51.100.53\"\r\n"
            "\r\n+ZGIPDNS: 3,1,\"IPV6\",\"2001:db8:64:3::22\",\"2001:db8:64:3::1\",\"2001:db8::53\","
            "\"2001:db8:1::53\"\r\n\r\n+ZCONSTAT: 1\r\n");
    EXPECT_EQ(modem.Answer("AT+CGPADDR=3"), Lines({"+CGPADDR: 3,\"10.64.14.34\",\"2001:db8:64:3::22\""}));
    EXPECT_EQ(modem.Answer("AT+CGDCONT=3"), "+CME ERROR: 3");
    EXPECT_EQ(modem.Ask("AT+ZGACT=0,3\r"), kOk + "\r\n+ZCONSTAT: 0\r\n");
    EXPECT_EQ(modem.Answer("AT+CGACT?"), Lines({"+CGACT: 1,1", "+CGACT: 2,0", "+CGACT: 3,0"}));
    EXPECT_EQ(modem.Answer("AT+CGDCONT=3"), "OK");
    EXPECT_EQ(modem.Answer("AT+ZGACT=1,3"), "+CME ERROR: 50");
    EXPECT_EQ(modem.Answer("AT+CGDCONT=3,\"IPX\",\"a\""), "+CME ERROR: 50");
}

TEST(Data, NetworkRefusesAndDrops) {
    TestModem modem;
    EXPECT_EQ(modem.Answer("AT+CGDCONT=3,\"IP\",\"refused.example\",,0,0"), "OK");
    EXPECT_EQ(modem.Answer("AT+CGACT=1,3"), "+CME ERROR: 33");
    EXPECT_EQ(modem.Order("data drop"), "");
    EXPECT_EQ(modem.After(1), "\r\n+ZCONSTAT: 0\r\n");
    EXPECT_EQ(modem.Order("data drop"), "no context is active: there is no connection to drop");
    EXPECT_EQ(modem.Answer("AT+CGATT=0"), "OK");
    EXPECT_EQ(modem.Answer("AT+CGACT=1,1"), "+CME ERROR: 30");
    EXPECT_EQ(modem.Answer("AT+CGATT=1"), "OK");
    EXPECT_EQ(modem.Answer("ATD*99#"), "CONNECT 150000000");
    EXPECT_EQ(modem.State()["contexts"][0]["active"], true);
}

// ---- USSD and the card's menu

TEST(Ussd, MenuIsWalkedThrough) {
    TestModem modem;
    EXPECT_EQ(modem.Ask("AT+CUSD=1,*100#,15\r"),
              kOk + "\r\n+CUSD: 0,\"Your balance is 12.34. Thank you, and goodbye.\",15\r\n");
    EXPECT_EQ(modem.Ask("AT+CUSD=1,*101#,15\r", 10'000),
              kOk + "\r\n+CUSD: 1,\"Testnet: 1 Balance, 2 Data left, 3 Language\",15\r\n");
    EXPECT_EQ(modem.State()["ussd"]["dialogue"], "*101#");
    EXPECT_EQ(modem.Ask("AT+CUSD=1,2,15\r", 10'000),
              kOk + "\r\n+CUSD: 1,\"Data left: 1 This month, 2 Today\",15\r\n");
    EXPECT_EQ(modem.Ask("AT+CUSD=1,2,15\r"), kOk + "\r\n+CUSD: 0,\"412 MB until midnight.\",15\r\n");
    EXPECT_EQ(modem.Ask("AT+CUSD=1,2,15\r"), kOk + "\r\n+CUSD: 4\r\n");
    modem.Ask("AT+CUSD=1,*101#,15\r", 10'000);
    EXPECT_EQ(modem.After(60), "\r\n+CUSD: 2\r\n");
    modem.Ask("AT+CUSD=1,*101#,15\r", 10'000);
    EXPECT_EQ(modem.Ask("AT+CUSD=2\r"), kOk);
    EXPECT_EQ(modem.Order("ussd Roaming costs extra"), "");
    EXPECT_EQ(modem.After(1), "\r\n+CUSD: 0,\"Roaming costs extra\",15\r\n");
}

TEST(Toolkit, MenuIsWalkedThrough) {
    TestModem modem;
    EXPECT_EQ(modem.Answer("AT+ZSELM=1"), "+CME ERROR: 3");
    EXPECT_NE(modem.Answer("AT+ZSTM").find("+ZSTM: \"Testnet services\",1,\"Balance\""), std::string::npos);
    EXPECT_EQ(modem.Ask("AT+ZSELM=1\r"), kOk + "\r\n+ZDIST: \"Your balance is 12.34\"\r\n");
    EXPECT_EQ(modem.Ask("AT+ZDISTR\r"), kOk + "\r\n+ZEND\r\n");
    modem.Answer("AT+ZSTM");
    EXPECT_EQ(modem.Ask("AT+ZSELM=2\r"), kOk + "\r\n+ZPSTM: \"News\",1,\"Weather\",2,\"Sport\"\r\n");
    EXPECT_NE(modem.Ask("AT+ZBK=0\r").find("+ZSTI: \"Testnet services\""), std::string::npos);
    EXPECT_EQ(modem.Ask("AT+ZSELM=3\r"), kOk + "\r\n+ZGINP: \"Your greeting\",1,20\r\n");
    EXPECT_EQ(modem.Ask("AT+ZINPR=1,Hello\r"), kOk + "\r\n+ZDIST: \"Greeting sent: Hello\"\r\n");
    EXPECT_EQ(modem.Ask("AT+ZBK=0\r"), kOk + "\r\n+ZEND\r\n");
    modem.Answer("AT+ZSTM");
    modem.Ask("AT+ZSELM=4\r");
    EXPECT_EQ(modem.Ask("AT+ZINKR=1,1\r"), kOk + "\r\n+ZDIST: \"All deleted\"\r\n");
}

}  // namespace
}  // namespace modemsim
