#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <nlohmann/json.hpp>

#include "checks/atctl/support.h"
#include "tools/atctl/module_name.h"
#include "tools/atctl/report_line.h"
#include "tools/shared/exit_status.h"

// Messages that arrive at a module's queue, as lines and as JSON.

namespace {

constexpr timespec kMorning = {1'795'273'200, 250'900'000};  // 2026-11-21 15:00:00.250 UTC

FileContent NoFile(const char*, size_t) {
    return {{}, "not asked for"};
}

struct Sent {
    long type = 1;
    uint16_t data_len = 518;
    uint32_t magic = AT_MESSAGE_MAGIC;
    size_t size = AT_WIRE_SIZE;
};

Arrival Arrive(uint16_t module, const _BK_AT_RES_T& res, const Sent& sent = {},
               const FileReader& reader = NoFile) {
    MSG_BUF message = {};
    message.usTargetModuleID = module;
    message.usSourceModuleID = AT_MODULE_SERVER;
    message.usMsgCmd = AT_MESSAGE_COMMAND;
    message.usDataLen = sent.data_len;
    message.ulMagic = sent.magic;
    memcpy(message.aucDataBuf, &res, sizeof res);
    const auto* body = reinterpret_cast<const uint8_t*>(&message) + offsetof(MSG_BUF, usTargetModuleID);
    return ReadArrival(kMorning, module, sent.type, {body, sent.size}, reader);
}

std::string Line(const Arrival& arrival) {
    return ArrivalLine(arrival, Look());
}

_BK_AT_RES_T NewMessage() {
    return Res(0x0110, 1, AT_RESULT_OK, Text("SM", 12) + Integers({3}));
}

class Arrivals : public testing::Test {
  protected:
    void SetUp() override {
        setenv("TZ", "UTC", 1);
        tzset();
    }
};

TEST_F(Arrivals, AReportIsOneLine) {
    EXPECT_EQ(Line(Arrive(AT_MODULE_SMS, NewMessage())),
              "15:00:00.250  sms      new message  memory SM  index 3");
}

TEST_F(Arrivals, AReportIsOneObject) {
    EXPECT_EQ(ArrivalJson(Arrive(AT_MODULE_SMS, NewMessage())).dump(),
              R"({"time":"2026-11-21T15:00:00.250Z","module":"sms","module_id":4106,"kind":"report",)"
              R"("name":"+CMTI","title":"new message","id":272,"type":1,"result":1,"result_text":"OK",)"
              R"("fields":{"memory":"SM","index":3},"text":"","para_len":16})");
}

TEST_F(Arrivals, ATextIsShownAsItIs) {
    const auto ring = Arrive(AT_MODULE_CALL, Res(0x0407, 1, AT_RESULT_OK, Text("RING\r\n", 6)));
    EXPECT_EQ(Line(ring), "15:00:00.250  call     incoming call  \"RING\"");
    EXPECT_EQ(ArrivalJson(ring)["text"], "RING\r\n");
    EXPECT_FALSE(ArrivalJson(ring).contains("fields"));
    EXPECT_EQ(Line(Arrive(AT_MODULE_CALL, Res(0x0513, 1, AT_RESULT_OK, {}))),
              "15:00:00.250  call     calling number");
}

TEST_F(Arrivals, ATextOfSeveralLinesStaysOneLine) {
    EXPECT_EQ(Line(Arrive(AT_MODULE_CALL, Res(0x0408, 1, AT_RESULT_OK, Text("a\nb", 3)))),
              "15:00:00.250  call     call hung up  \"a\\x0ab\"");
    // What would move the cursor is no text.
    EXPECT_EQ(Line(Arrive(AT_MODULE_CALL, Res(0x0408, 1, AT_RESULT_OK, Text("a\x1b[2J", 5)))),
              "15:00:00.250  call     call hung up  bytes 611b5b324a");
}

TEST_F(Arrivals, AReportThatIsNoRecordOfItsSizeIsTextOrBytes) {
    EXPECT_EQ(Line(Arrive(AT_MODULE_SMS, Res(0x0108, 2, AT_RESULT_OK, Text("+CMGS: 17", 9)))),
              "15:00:00.250  sms      message sent  \"+CMGS: 17\"");
    EXPECT_EQ(Line(Arrive(AT_MODULE_SMS, Res(0x0110, 1, AT_RESULT_OK, Integers({1, 2})))),
              "15:00:00.250  sms      new message  bytes " +
                  std::string(Integers({1})[0] == 1 ? "0100000002000000" : "0000000100000002"));
}

TEST_F(Arrivals, MessageSentIsARecord) {
    EXPECT_EQ(Line(Arrive(AT_MODULE_SMS, Res(0x0108, 2, AT_RESULT_OK, Integers({17}) + Bytes(504)))),
              "15:00:00.250  sms      message sent  mr 17");
}

TEST_F(Arrivals, AnUnknownReportIsShownByItsNumber) {
    EXPECT_EQ(Line(Arrive(AT_MODULE_SIM, Res(0x0999, 1, AT_RESULT_OK, Text("what", 4)))),
              "15:00:00.250  sim      unknown report 0x0999 type 1  \"what\"");
    EXPECT_EQ(Line(Arrive(AT_MODULE_SIM, Res(0x0999, 9, AT_RESULT_OK, {1, 0xff}))),
              "15:00:00.250  sim      unknown report 0x0999 type 9  bytes 01ff");
    // Known, but to another module or under another type.
    EXPECT_EQ(Arrive(AT_MODULE_SIM, NewMessage()).kind, Arrival::Kind::unknown);
    _BK_AT_RES_T res = NewMessage();
    res.ucCmdType = 2;
    EXPECT_EQ(Arrive(AT_MODULE_SMS, res).kind, Arrival::Kind::unknown);
    EXPECT_EQ(ArrivalJson(Arrive(AT_MODULE_SMS, res))["kind"], "unknown");
}

TEST_F(Arrivals, AnAnswerIsShownAsOne) {
    const Sent answer = {.type = 77, .data_len = 14};
    EXPECT_EQ(Line(Arrive(0x6001, Res(0x0604, 1, AT_RESULT_OK, Integers({20, 99})), answer)),
              "15:00:00.250  0x6001   answer to +CSQ: OK  rssi 20  ber 99");
    EXPECT_EQ(Line(Arrive(AT_MODULE_SMS, Res(0x0604, 1, AT_RESULT_OK, Text("OK", 2)), answer)),
              "15:00:00.250  sms      answer to +CSQ: OK");
    const auto refused = Arrive(AT_MODULE_SMS, Res(0x010B, 2, AT_RESULT_CMS_ERROR, Text("321", 3)), answer);
    EXPECT_EQ(refused.kind, Arrival::Kind::answer);
    EXPECT_NE(Line(refused).find("\"321\" ("), std::string::npos) << Line(refused);
    // A dial's answer may come with the type of reports, but with its own length word.
    EXPECT_EQ(
        Line(Arrive(AT_MODULE_CALL, Res(0x0401, 1, AT_RESULT_OK, Text("OK", 2)), {.type = 1, .data_len = 8})),
        "15:00:00.250  call     answer to D: OK");
}

TEST_F(Arrivals, AReportWithAnotherLengthWordIsNoReport) {
    EXPECT_EQ(Arrive(AT_MODULE_SMS, NewMessage(), {.data_len = 22}).kind, Arrival::Kind::answer);
    EXPECT_EQ(Arrive(AT_MODULE_SMS, NewMessage(), {.type = 2}).kind, Arrival::Kind::answer);
}

TEST_F(Arrivals, WhatIsNotTheServersIsShownAsBytes) {
    const auto wrong = Arrive(AT_MODULE_SMS, NewMessage(), {.magic = 1});
    EXPECT_EQ(wrong.kind, Arrival::Kind::foreign);
    const auto cut = Arrive(AT_MODULE_SMS, NewMessage(), {.size = 4});
    EXPECT_EQ(cut.kind, Arrival::Kind::foreign);
    EXPECT_EQ(Line(cut).substr(0, 61), "15:00:00.250  sms      not a message of the server, 4 bytes  ");
    EXPECT_EQ(ArrivalJson(cut)["raw"].get<std::string>().size(), 8U);
    EXPECT_EQ(Line(Arrive(AT_MODULE_SMS, NewMessage(), {.size = 0})),
              "15:00:00.250  sms      not a message of the server, 0 bytes");
}

TEST_F(Arrivals, UssdTextIsFetchedFromItsFile) {
    const _BK_AT_RES_T res = Res(0x0532, 2, AT_RESULT_OK, {}, 824);
    const auto read = [](const char* path, size_t size) -> FileContent {
        EXPECT_STREQ(path, "/etc/cusd");
        EXPECT_EQ(size, 824U);
        return {Integers({1}) + Text("Hello", 816) + Integers({15}), ""};
    };
    EXPECT_EQ(
        Line(Arrive(AT_MODULE_USSD, res, {}, read)),
        "15:00:00.250  ussd     USSD text  mode 1 (the network waits for an answer)  str Hello  type 15");
    EXPECT_EQ(Line(Arrive(AT_MODULE_USSD, res)),
              "15:00:00.250  ussd     USSD text  in the file /etc/cusd, which cannot be used: not asked for");
}

TEST_F(Arrivals, LengthsBeyondTheMessageAreNotBelieved) {
    for (const uint16_t told : {uint16_t{635}, uint16_t{65535}}) {
        for (const ReportInfo* report : kReports) {
            const Bytes paras(634, 'x');
            const auto arrival =
                Arrive(report->module, Res(report->id, report->type, AT_RESULT_OK, paras, told));
            EXPECT_EQ(arrival.kind, Arrival::Kind::report);
            EXPECT_NE(Line(arrival), "");
            EXPECT_NE(ArrivalJson(arrival).dump(), "");
        }
    }
}

TEST(ModuleNames, AreNamesOrNumbers) {
    EXPECT_EQ(ModuleFromText("sms"), 0x100a);
    EXPECT_EQ(ModuleFromText("SMS"), 0x100a);
    EXPECT_EQ(ModuleFromText("0x100A"), 0x100a);
    EXPECT_EQ(ModuleFromText("4106"), 0x100a);
    EXPECT_EQ(ModuleFromText("0x6001"), 0x6001);
    for (const char* text : {"", "smss", "0", "0x", "4096", "0x1000", "65536", "-1", "1 "}) {
        try {
            ModuleFromText(text);
            ADD_FAILURE() << text;
        } catch (const Misuse& misuse) {
            EXPECT_EQ(std::string(misuse.what()).substr(0, 20), "there is no module \"");
        }
    }
    EXPECT_EQ(NameOfModule(0x1022), "data");
    EXPECT_EQ(NameOfModule(0x1023), "0x1023");
    EXPECT_EQ(ReportedModules().size(), 7U);
}

}  // namespace
