// The scenarios that are shipped, and the examples of the page that describes the format.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>

#include "checks/modemsim/posix_regex.h"
#include "checks/modemsim/virtual_modem.h"
#include "tools/modemsim/find.h"

namespace modemsim {
namespace {

const std::string kPlainOk = "\r\nOK\r\n";

Scenario Shipped(const std::string& name) {
    ParseResult result = LoadScenario(FindScenario(name));
    for (const Problem& problem : result.problems)
        ADD_FAILURE() << problem.Text();
    return result.scenario;
}

// Check digit of a number by the rule that IMEIs follow.
bool CheckDigitFits(const std::string& digits) {
    int sum = 0;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        int digit = digits[digits.size() - 1 - i] - '0';
        if (i % 2 == 1) digit = digit * 2 > 9 ? digit * 2 - 9 : digit * 2;
        sum += digit;
    }
    return sum % 10 == 0;
}

TEST(Shipped, EveryScenarioParses) {
    const std::vector<std::string> names = ShippedScenarios();
    EXPECT_GE(names.size(), 10U);
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        EXPECT_GE(Shipped(name).RuleCount(), 1U);
    }
}

TEST(Shipped, NameAndFileNameAndPathAreFound) {
    const std::string path = FindScenario("silent");
    EXPECT_TRUE(path.ends_with("/silent.modem")) << path;
    EXPECT_EQ(FindScenario("silent.modem"), path);
    EXPECT_EQ(FindScenario(path), path);
    EXPECT_EQ(FindScenario("nobody"), "nobody");
    EXPECT_EQ(FindScenario("./silent"), "./silent");
}

TEST(Shipped, DefaultModemAnswersEveryCommandOfItsRange) {
    const std::vector<std::string> lines = {"AT",
                                            "AT+CSQ",
                                            "AT+CGSN",
                                            "AT+CIMI",
                                            "AT+CMGF=0",
                                            "AT+CMGF?",
                                            "AT+CPIN?",
                                            "AT+CPMS=\"SM\",\"SM\",\"SM\"",
                                            "AT+CPMS?",
                                            "AT+CREG?",
                                            "AT+CGREG?",
                                            "AT+CEREG?",
                                            "AT+CFUN?",
                                            "AT+CFUN=1",
                                            "AT+CLVL=5",
                                            "AT+CLVL?",
                                            "AT+CLCC",
                                            "AT+COPS?",
                                            "AT+COPS=?",
                                            "AT+COPS=1,2,\"00101\",7",
                                            "AT+CMGD=3, 0",
                                            "AT+CMGL=4",
                                            "AT+CMGL=0",
                                            "AT+CMGR=2",
                                            "ATD07700900123;",
                                            "AT+VTS=1",
                                            "AT+CHUP",
                                            "AT+ZVN",
                                            "AT+ZRTEMP",
                                            "AT+ZSTM",
                                            "AT+CPBR=1",
                                            "AT+CPBR=1,100",
                                            "AT+CPBR=?",
                                            "AT+CPBR=77",
                                            "AT+CUSD=1,\"*100#\",15",
                                            "AT+CUSD=2",
                                            "AT+CGDCONT?",
                                            "AT+CGDCONT=1,\"IP\",\"internet.example\",,0,0",
                                            "AT+CGATT?",
                                            "AT+CGATT=1",
                                            "AT+GMR",
                                            "AT+CGMM",
                                            "AT+CGMI",
                                            "AT+ZRSSI",
                                            "AT+ZRSSI?",
                                            "AT+CCFC=3,2",
                                            "AT+CCFC=0,3,07700900123,129",
                                            "AT+CCWA=1,2",
                                            "AT+CCWA=1,1",
                                            "AT+CLIP=1",
                                            "AT+CLIP?"};
    VirtualModem modem(Shipped("default"));
    for (const std::string& line : lines) {
        const std::string answer = modem.Ask(line + "\r");
        EXPECT_NE(answer.find("\r\nOK\r\n"), std::string::npos) << line << " gave " << answer;
        EXPECT_EQ(answer.find("ERROR"), std::string::npos) << line << " gave " << answer;
    }
    EXPECT_EQ(modem.Ask("AT+NOSUCH\r"), "\r\nERROR\r\n");
    EXPECT_EQ(modem.Ask("AT+CMGR=99\r"), "\r\n+CMS ERROR: 321\r\n");
}

TEST(Shipped, DefaultModemSendsMessages) {
    VirtualModem modem(Shipped("default"));
    const std::string pdu = "0011000B917744770009F10000AA05E8329BFD06\x1A";
    EXPECT_EQ(modem.Ask("AT+CMGS=19\r"), "\r\n> ");
    EXPECT_EQ(modem.Ask(pdu), "\r\n+CMGS: 17\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Ask("AT+CMGS=19\r"), "\r\n> ");
    EXPECT_EQ(modem.Ask(pdu), "\r\n+CMGS: 18\r\n\r\nOK\r\n");
}

TEST(Shipped, DefaultOperatorSearchTakesSeconds) {
    VirtualModem modem(Shipped("default"));
    EXPECT_EQ(modem.Ask("AT+COPS=?\r", 3000), "");
    EXPECT_NE(modem.Ask("", 2000).find("\r\n+COPS: (2,\"Testnet One\",\"TN1\",\"00101\",7),("),
              std::string::npos);
}

TEST(Shipped, DefaultCallIsAnsweredUnlessHungUp) {
    VirtualModem modem(Shipped("default"));
    EXPECT_EQ(modem.Ask("ATD07700900123;\r"), "\r\nOK\r\n\r\nRINGBACK\r\n\r\nVOICE CONNECT\r\n");
    modem.Ask("AT+CHUP\r");
    EXPECT_EQ(modem.Ask("ATD07700900123;\r", 2000), "\r\nOK\r\n\r\nRINGBACK\r\n");
    EXPECT_EQ(modem.Ask("AT+CHUP\r"), "\r\nOK\r\n\r\nHANGUP: 16\r\n");
}

TEST(Shipped, DefaultIdentityIsWellFormed) {
    VirtualModem modem(Shipped("default"));
    const std::string imei = modem.Ask("AT+CGSN\r").substr(2, 15);
    EXPECT_TRUE(imei.starts_with("00"));  // the range set aside for tests
    EXPECT_TRUE(CheckDigitFits(imei)) << imei;
    EXPECT_TRUE(modem.Ask("AT+CIMI\r").starts_with("\r\n00101"));
}

// Each header's length counts the bytes behind the service centre's address, and the fields inside add up to
// it.
TEST(Shipped, DefaultMessagesAreValid) {
    VirtualModem modem(Shipped("default"));
    const std::string text = modem.Ask("AT+CMGL=4\r");
    const Regex entry("\\+CMGL: ([0-9]+,)?([0-3]),(\"[^\"]*\")?,([0-9]+)\r\n([0-9A-F]+)\r\n");
    std::set<std::string> pdus;
    std::size_t from = 0;
    for (auto match = entry.Next(text, from); !match.empty(); match = entry.Next(text, from)) {
        const std::string& stat = match[2];
        const std::string& pdu = match[5];
        pdus.insert(pdu);
        SCOPED_TRACE(pdu);
        ASSERT_EQ(pdu.size() % 2, 0U);
        const auto byte = [&](std::size_t i) { return std::stoul(pdu.substr(i * 2, 2), nullptr, 16); };
        const std::size_t start = byte(0) + 1;
        const std::size_t size = pdu.size() / 2;
        EXPECT_EQ(size - start, std::stoul(match[4]));
        const bool stored_by_us = stat == "2" || stat == "3";
        EXPECT_EQ(byte(start) & 3U, stored_by_us ? 1U : 0U);
        // Address, then protocol and coding, then the time stamp (received) or the validity (ours), then the
        // text.
        std::size_t at = start + (stored_by_us ? 2 : 1);
        at += 2 + (byte(at) + 1) / 2;
        const bool wide = byte(at + 1) == 8;
        at += 2 + (stored_by_us ? 1 : 7);
        const std::size_t units = byte(at);
        EXPECT_EQ(size - at - 1, wide ? units : (units * 7 + 7) / 8);
    }
    EXPECT_EQ(pdus.size(), 5U);
}

TEST(Shipped, DefaultLinesFitTheReaders) {
    VirtualModem modem(Shipped("default"));
    const std::string text =
        modem.Ask("AT+CMGL=4\rAT+CPBR=1,250\rAT+ZCPBR=1,250\rAT+COPS=?\rAT+ZCELLINFO?\r");
    std::size_t start = 0;
    for (std::size_t end = text.find("\r\n"); end != std::string::npos; end = text.find("\r\n", start)) {
        EXPECT_LT(end - start, 1000U) << text.substr(start, 60);
        start = end + 2;
    }
}

TEST(Shipped, SilentModemSaysNothing) {
    VirtualModem modem(Shipped("silent"));
    EXPECT_EQ(modem.Ask("AT\rAT+CSQ\r", 600'000), "");
}

TEST(Shipped, SlowModemTakesSeconds) {
    VirtualModem modem(Shipped("slow"));
    EXPECT_EQ(modem.Ask("AT\r", 1999), "");
    EXPECT_EQ(modem.Ask("", 100), "\r\nOK\r\n");
}

TEST(Shipped, SplitModemSendsSingleBytes) {
    VirtualModem modem(Shipped("split"));
    modem.Core().Receive("AT+CMGL=4\r", modem.Now());
    const std::vector<Sent> sent = modem.Until(60'000);
    EXPECT_GT(sent.size(), 700U);
    for (const Sent& piece : sent)
        ASSERT_EQ(piece.bytes.size(), 1U);
}

TEST(Shipped, EchoModemEchoesUntilTold) {
    VirtualModem modem(Shipped("echo"));
    EXPECT_EQ(modem.Ask("AT\r"), "AT\r\r\nOK\r\n");
    modem.Ask("ATE0\r");
    EXPECT_EQ(modem.Ask("AT\r"), "\r\nOK\r\n");
}

TEST(Shipped, ReportsModemSpeaksAfterTheFirstLine) {
    VirtualModem modem(Shipped("reports"));
    EXPECT_EQ(modem.TextUntil(20'000), "");
    const std::string text = modem.Ask("AT\r", 30'000);
    for (const char* part : {"\r\n+CMTI: \"SM\",6\r\n", "\r\n+CREG: 2\r\n", "\r\n+CREG: 1,\"1A2B\",",
                             "\r\n+ZNITZ: ", "\r\nRING\r\n\r\n+CLIP: \"+447700900123\"", "\r\nSTOPRING\r\n",
                             "\r\n+CDS: 25\r\n0791"})
        EXPECT_NE(text.find(part), std::string::npos) << part;
    EXPECT_EQ(modem.Ask("ATD07700900999;\r"), "\r\nOK\r\n\r\nBUSY\r\n");
}

TEST(Shipped, ReportsModemStopsRingingWhenAnswered) {
    VirtualModem modem(Shipped("reports"));
    EXPECT_NE(modem.Ask("AT\r", 3500).find("RING"), std::string::npos);
    const std::string text = modem.Ask("ATA\r", 30'000);
    EXPECT_EQ(text.find("RING"), std::string::npos) << text;
    EXPECT_NE(text.find("VOICE CONNECT"), std::string::npos) << text;
}

TEST(Shipped, LockedModemWantsItsPinFirst) {
    VirtualModem modem(Shipped("locked"));
    modem.TextUntil(1000);
    EXPECT_EQ(modem.Ask("AT+CPIN?\r"), "\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Ask("AT+CMGL=4\r"), "\r\n+CMS ERROR: 311\r\n");
    EXPECT_NE(modem.Ask("AT+CPIN=\"1234\"\r").find("+CREG: 1,"), std::string::npos);
    EXPECT_NE(modem.Ask("AT+CMGL=4\r").find("+CMGL: 1,"), std::string::npos);
}

TEST(Shipped, CoverageModemLosesTheNetworkAndFindsIt) {
    VirtualModem modem(Shipped("coverage"));
    EXPECT_NE(modem.Ask("AT\r", 9000).find("^HRSSILVL:"), std::string::npos);
    EXPECT_NE(modem.Ask("AT\r", 3000).find("\r\n+CREG: 2\r\n"), std::string::npos);
    EXPECT_EQ(modem.Ask("AT+CSQ\r", 100), "\r\n+CSQ: 99,99\r\n\r\nOK\r\n");
    EXPECT_NE(modem.Ask("AT\r", 6000).find("\r\n+CREG: 1,"), std::string::npos);
}

TEST(Shipped, FaultsModemHasOneFaultAfterTheOther) {
    VirtualModem modem(Shipped("faults"));
    EXPECT_EQ(modem.Ask("AT\r", 1000), kPlainOk);
    // Late, and overtaken by the next one.
    modem.Core().Receive("AT+CSQ\r", modem.Now());
    EXPECT_EQ(modem.Ask("AT\r", 1000), kPlainOk);
    EXPECT_EQ(modem.TextUntil(12'000), "");
    EXPECT_NE(modem.TextUntil(16'000).find("+CSQ: "), std::string::npos);
    EXPECT_EQ(modem.Ask("AT\r", 1900), "");
    EXPECT_EQ(modem.TextUntil(21'000), kPlainOk);
    modem.Core().Receive("AT\r", modem.Now());
    EXPECT_EQ(modem.Until(22'000).size(), 3U);  // in pieces
    modem.TextUntil(31'000);
    modem.Core().Receive("AT\rAT\r", modem.Now());
    EXPECT_EQ(modem.Until(32'000).size(), 1U);  // glued
    modem.TextUntil(41'000);
    EXPECT_EQ(modem.Ask("AT\r", 1000).size(), kPlainOk.size() + 5);  // garbage
    modem.TextUntil(51'000);
    EXPECT_EQ(modem.Ask("AT\r", 1000), "AT\r" + kPlainOk);  // echo
    EXPECT_EQ(modem.Until(65'000).size(), 200U);            // storm
    modem.TextUntil(71'000);
    EXPECT_EQ(modem.Ask("AT\r", 1000), "");  // mute
    modem.TextUntil(76'000);
    EXPECT_EQ(modem.Ask("AT\r", 1000), kPlainOk);
}

TEST(Shipped, UnplugModemGoesAndComesBackAsNew) {
    VirtualModem modem(Shipped("unplug"));
    modem.Ask("AT\r", 19'000);
    modem.Ask("AT+CMGD=1\r", 500);
    EXPECT_TRUE(modem.Core().PluggedIn());
    modem.TextUntil(21'000);
    EXPECT_FALSE(modem.Core().PluggedIn());
    EXPECT_EQ(modem.Ask("AT\r", 1000), "");
    modem.TextUntil(30'000);
    EXPECT_TRUE(modem.Core().PluggedIn());
    EXPECT_EQ(modem.Ask("AT+CMGR=1\r", 500), "\r\n+CMS ERROR: 321\r\n");
    EXPECT_EQ(modem.Ask("AT+CGACT?\r", 500), "\r\n+CGACT: 1,0\r\n+CGACT: 2,0\r\n\r\nOK\r\n");
    modem.TextUntil(81'000);
    EXPECT_FALSE(modem.Core().PluggedIn());
}

TEST(Shipped, FlakyModemFailsOnceAndThenAnswersItself) {
    VirtualModem modem(Shipped("flaky"));
    EXPECT_EQ(modem.Ask("AT+CSQ\r"), "\r\n+CME ERROR: 100\r\n");
    EXPECT_EQ(modem.Ask("AT+CSQ\r"), "\r\n+CSQ: 21,99\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Ask("AT+CREG?\r", 2900), "");
    EXPECT_EQ(modem.Ask("", 200), "\r\n+CREG: 2,1,\"1A2B\",\"00C3D4E5\"\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Ask("AT+CMGS=19\r"), "\r\n> ");
    EXPECT_EQ(modem.Ask("00\x1A"), "\r\n+CMS ERROR: 38\r\n");
    EXPECT_EQ(modem.Ask("AT+CMGS=19\r"), "\r\n> ");
    EXPECT_EQ(modem.Ask("0011000B917744770009F10000AA05E8329BFD06\x1A"), "\r\n+CMGS: 17\r\n\r\nOK\r\n");
}

TEST(Shipped, DemoModemTellsWhatItWasAskedToTell) {
    VirtualModem modem(Shipped("demo"));
    EXPECT_EQ(modem.Ask("AT+CNMI=2,1,0,0,0\r"), kPlainOk + "\r\n+CMTI: \"SM\",6\r\n");
    EXPECT_EQ(modem.Ask("AT+CLIP=1\r"), kPlainOk +
                                            "\r\nRING\r\n\r\n+CLIP: \"+447700900123\",145,,,,0\r\n"
                                            "\r\nSTOPRING\r\n");
    EXPECT_EQ(modem.Ask("AT+CREG=2\r"), kPlainOk + "\r\n+CREG: 2\r\n\r\n+CREG: 1,\"1A2C\",\"00C3D4F7\"\r\n");
}

TEST(Shipped, PromptModemTreatsEachMessageDifferently) {
    VirtualModem modem(Shipped("prompt"));
    EXPECT_EQ(modem.Ask("AT+CMGS=1\r"), "\r\n> ");
    EXPECT_EQ(modem.Ask("00\x1A"), "\r\n+CMGS: 1\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Ask("AT+CMGS=1\r"), "\r\n> ");
    EXPECT_EQ(modem.Ask("00\x1A"), "\r\n+CMTI: \"SM\",7\r\n\r\n+CMGS: 2\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Ask("AT+CMGS=1\r"), "\r\n> ");
    EXPECT_EQ(modem.Ask("00\x1A"), "\r\n+CMS ERROR: 38\r\n");
    EXPECT_EQ(modem.Ask("AT+CMGS=1\r"), "\r\n+CMS ERROR: 302\r\n");
    EXPECT_EQ(modem.Ask("AT\r"), "\r\nOK\r\n");
}

// The page's scenarios stand in blocks that open with ```modem; each has to parse, and the dialogues that the
// page shows (```dialogue, "->" what the host sends, "<-" what the modem sends) have to come out of the block
// before them.
TEST(Page, ExamplesAreTrue) {
    std::ifstream page(MODEMSIM_PAGE);
    ASSERT_TRUE(page.is_open());
    std::string line;
    std::string kind;
    std::string block;
    int scenarios = 0;
    int dialogues = 0;
    Scenario last;
    while (std::getline(page, line)) {
        if (!line.starts_with("```")) {
            if (!kind.empty()) block += line + "\n";
            continue;
        }
        if (kind.empty()) {
            kind = line.size() > 3 ? line.substr(3) : "plain";
            block.clear();
            continue;
        }
        if (kind == "modem") {
            const ParseResult result = ParseScenario(
                FindScenario("default").substr(0, FindScenario("default").rfind('/') + 1) + "page.modem",
                block);
            for (const Problem& problem : result.problems)
                ADD_FAILURE() << problem.Text() << "\n" << block;
            last = result.scenario;
            ++scenarios;
        } else if (kind == "dialogue") {
            VirtualModem modem(last);
            std::string expected;
            std::string answer;
            std::size_t start = 0;
            for (std::size_t end = block.find('\n'); end != std::string::npos;
                 end = block.find('\n', start)) {
                const std::string row = block.substr(start, end - start);
                start = end + 1;
                std::string bytes;
                for (std::size_t i = 3; i < row.size(); ++i) {
                    if (row[i] == '\\' && i + 1 < row.size() && row[i + 1] == 'x') {
                        bytes += static_cast<char>(std::stoi(row.substr(i + 2, 2), nullptr, 16));
                        i += 3;
                    } else if (row[i] == '\\' && i + 1 < row.size()) {
                        bytes += row[++i] == 'r' ? '\r' : '\n';
                    } else {
                        bytes += row[i];
                    }
                }
                if (row.starts_with("->"))
                    answer += modem.Ask(bytes);
                else
                    expected += bytes;
            }
            EXPECT_EQ(answer, expected) << block;
            ++dialogues;
        }
        kind.clear();
    }
    EXPECT_GE(scenarios, 4);
    EXPECT_GE(dialogues, 2);
}

}  // namespace
}  // namespace modemsim
