#include <gtest/gtest.h>
#include <string.h>

#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "checks/support/fake_platform.h"
#include "checks/support/fake_queue.h"
#include "checks/support/log_capture.h"
#include "checks/support/plain_framing.h"
#include "checks/support/plain_lines.h"
#include "codec/atcode.h"
#include "records/state.h"

// The line scans, which walk once over a line, give what one search for each name gives.

namespace {

using std::string;

constexpr const char* kNames[] = {
    "CMS ERROR",
    "CME ERROR",
    "VOICE NO CARRIER ",
    "HANGUP",
    "ZPSTM",
    "+ZMTime",
    "+ZDIST",
    "+ZFDIST",
    "+ZUnsupport",
    "+ZSMSR",
    "+ZSTI",
    "+ZGINP",
    "+ZGINK",
    "+CLIP",
    "+CCWA",
    "ZVMAIL",
    "+RINGBACK",
    "ZVCONNECT",
    "+CMTI",
    "ZREFRESH",
    "+ZVMTI",
    "+CDSI",
    "+ZCLAS",
    "+ZCONSTAT",
    "+CGEV",
    "+ZNITZ",
    "+CUSD",
    "+ZCONV",
    "+ZLOCKBAND",
    "+ZLOCKF",
    "+ZGIPDNS",
    "+ZPBIC",
    "^MODE",
    "XW_T352",
    "^CONN",
    "^CEND",
    "+ZCPI",
    "^HRSSILVL",
    "^RSSI",
    "^SIMST",
    "^SRVST",
    "^BOOT",
    "^STIN",
    "^DSFLOWRPT",
    "OK",
    "ERROR",
    "RINGBACK",
    "RINGBACKLOCAL",
    "NO CARRIER",
    "BUSY",
    "not support",
    "+ZEND",
    "+ZSIMREFRESH",
    "+CSQ",
    "+CMGL",
    "+CPBR",
    "+CME ERROR: unknown",
    "+CME ERROR: network timeout",
};

string LineText(RandomText& random) {
    string line;
    for (unsigned pieces = random.Below(6); pieces > 0; --pieces) {
        const string name = kNames[random.Below(std::size(kNames))];
        switch (random.Below(9)) {
            case 0:
                line += name.substr(0, 1 + random.Below(static_cast<unsigned>(name.size())));
                break;
            case 1:
                line += ": ";
                break;
            case 2:
                line += ":";
                break;
            case 3:
                line += "\"";
                break;
            case 4:
                line += string(random.Below(8) == 0 ? 1000 + random.Below(40) : random.Below(70), 'x');
                break;
            case 5:
                line += random.Below(2) == 0 ? "1,2" : " ";
                break;
            default:
                line += name;
                if (random.Below(2) == 0) line += random.Below(3) == 0 ? ":" : ": ";
        }
    }
    return line;
}

string ResponseText(RandomText& random) {
    string text;
    for (unsigned lines = random.Below(7); lines > 0; --lines) {
        text += LineText(random);
        if (random.Below(12) != 0) text += "\r\n";
        if (random.Below(5) == 0) text += "\r\n";
    }
    return text;
}

// Everything that a scan does.
struct Done {
    int returned = 0;
    uint8_t result = 0;
    string name, paras;
    std::vector<std::vector<unsigned char>> sent;
    std::vector<std::pair<string, string>> writes;
    std::vector<string> log;
    bool operator==(const Done&) const = default;
};

void PrintTo(const Done& done, std::ostream* out) {
    *out << "{returned " << done.returned << ", result " << int(done.result) << ", name \""
         << Printable(done.name) << "\", paras \"" << Printable(done.paras) << "\", sent " << done.sent.size()
         << ", written " << done.writes.size() << ", logged " << done.log.size() << "}";
}

struct Start {
    const char* card;
    const char* bandmode;
    uint16_t last;
    string name, paras;
};

template <typename Scan>
Done DoneBy(const Start& start, Scan scan) {
    static const auto line = std::make_unique<AT_RES_LINE_T>();
    Platform().Reset();
    Platform().config["data_card_mode"] = start.card;
    Platform().config["bandmode"] = start.bandmode;
    Queues().Reset();
    Queues().CreateModules();
    ClearLog();
    g_last_atcmd = start.last;
    line->Result = 0;
    strcpy(line->strCmdName, start.name.c_str());
    strcpy(line->strResParas, start.paras.c_str());
    Done done;
    done.returned = scan(line.get());
    done.result = line->Result;
    done.name = line->strCmdName;
    done.paras = line->strResParas;
    for (const FakeMessage& message : Queues().sent)
        done.sent.push_back(message.body);
    done.writes = Platform().writes;
    for (const LogLine& logged : LoggedLines())
        if (logged.text.find("aucDataBuf=0x") == string::npos) done.log.push_back(logged.text);
    return done;
}

Start AnyStart(RandomText& random, const char* card) {
    static const char* const kBandModes[] = {"", "2", "4"};
    Start start{card, kBandModes[random.Below(3)], uint16_t(random.Below(3) == 0 ? 0x0532 : 0x0604), "", ""};
    if (random.Below(3) == 0) start.name = random.Below(2) == 0 ? "+CSQ" : "+CMGL";
    if (random.Below(3) == 0) start.paras = "20,99";
    return start;
}

class PlainScan : public testing::TestWithParam<const char*> {
  protected:
    void TearDown() override { g_last_atcmd = 0; }
};

TEST_P(PlainScan, IsWhatTheScansDo) {
    RandomText random(0x5eed0020);
    size_t sent = 0, written = 0, named = 0;
    for (int round = 0; round < 20'000; ++round) {
        const Start start = AnyStart(random, GetParam());
        const string text = ResponseText(random);
        const Done module =
            DoneBy(start, [&text](AT_RES_LINE_T* line) { return PlainScanModule(line, text.c_str()); });
        ASSERT_EQ(
            DoneBy(start, [&](AT_RES_LINE_T* line) { return Bk_PreParse_At_Res_Lines(line, text.c_str()); }),
            module)
            << Printable(text);
        const Done generic =
            DoneBy(start, [&text](AT_RES_LINE_T* line) { return PlainScanGeneric(line, text.c_str()); });
        ASSERT_EQ(DoneBy(start,
                         [&](AT_RES_LINE_T* line) { return Bk_PreParse_At_Res_Generic(line, text.c_str()); }),
                  generic)
            << Printable(text);
        sent += module.sent.size();
        written += module.writes.size();
        named += !generic.name.empty();
    }
    EXPECT_GT(sent, 1'000u);
    EXPECT_GT(written, 50u);
    EXPECT_GT(named, 1'000u);
}

TEST_P(PlainScan, IsWhatTheWorkersForOneLineDo) {
    RandomText random(0x5eed0021);
    for (int round = 0; round < 30'000; ++round) {
        const Start start = AnyStart(random, GetParam());
        const string text = LineText(random).substr(0, 1'023);
        const string rest = text + "\r\n" + LineText(random);
        const auto same = [&](auto plain, auto scan) { return DoneBy(start, plain) == DoneBy(start, scan); };
        ASSERT_TRUE(same([&](AT_RES_LINE_T* line) { return PlainScanNamedLine(line, text.c_str()); },
                         [&](AT_RES_LINE_T* line) { return Bk_PreParse_At_Res_Message(line, text.c_str()); }))
            << Printable(text);
        ASSERT_TRUE(same(
            [&](AT_RES_LINE_T* line) { return PlainScanResultLine(line, text.c_str(), rest.c_str()); },
            [&](AT_RES_LINE_T* line) { return Bk_PreParse_Result_Line(line, text.c_str(), rest.c_str()); }))
            << Printable(text);
        ASSERT_TRUE(same([&](AT_RES_LINE_T* line) { return int(PlainCheckUssdError(line, text.c_str())); },
                         [&](AT_RES_LINE_T* line) { return int(Bk_Check_Ussd_Error(line, text.c_str())); }))
            << Printable(text);
    }
}

INSTANTIATE_TEST_SUITE_P(EachCardMode, PlainScan, testing::Values("KVX_LTE", "other"));

}  // namespace
