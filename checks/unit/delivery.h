#ifndef AT_CHECKS_UNIT_DELIVERY_H
#define AT_CHECKS_UNIT_DELIVERY_H

#include <gtest/gtest.h>
#include <string.h>

#include <string>
#include <vector>

#include "checks/support/fake_modem.h"
#include "checks/support/fake_platform.h"
#include "checks/support/fake_queue.h"
#include "checks/support/log_capture.h"
#include "codec/framing.h"
#include "records/state.h"
#include "reports/response.h"

// From modem text to the messages that leave the server, whatever the pieces it comes in.

inline constexpr uint16_t kRequester = 0x2345;

// A message that left.
struct Sent {
    uint16_t target, id;
    uint8_t type, result;
    uint16_t para_len;
    std::string text;  // aucParas up to the NUL
    bool operator==(const Sent&) const = default;
};

inline void PrintTo(const Sent& sent, std::ostream* out) {
    *out << "{to 0x" << std::hex << sent.target << ", id 0x" << sent.id << ", type " << int(sent.type)
         << ", result " << int(sent.result) << std::dec << ", length " << sent.para_len << ", \"" << sent.text
         << "\"}";
}

class Delivery : public testing::Test {
  protected:
    void SetUp() override { Start("KVX_LTE"); }

    void Start(const char* card) {
        Platform().Reset();
        Platform().config["data_card_mode"] = card;
        Queues().Reset();
        Queues().CreateModules();
        Queues().Create(kRequester);
        ClearLog();
        ForgetReceived();
        ClearPendingRequest();
        g_last_atcmd = 0;
    }

    static void Pend(uint16_t id, uint8_t type) {
        ClearPendingRequest();
        g_at_msg.lMsgType = 7;
        g_at_msg.usTargetModuleID = AT_MODULE_SERVER;
        g_at_msg.usSourceModuleID = kRequester;
        PendingRequest()->usCmdID = id;
        PendingRequest()->ucCmdType = type;
        g_at_msg.ulMagic = AT_MESSAGE_MAGIC;
    }

    static void Feed(const std::string& text) {
        static std::string chunk;
        chunk = text;
        chunk.push_back('\0');
        chunk.resize(chunk.size() + 16);
        ProcessReceived(chunk.data());
    }

    static std::vector<Sent> Messages() {
        std::vector<Sent> all;
        for (const FakeMessage& message : Queues().sent) {
            const MSG_BUF record = message.Record();
            const _BK_AT_RES_T res = message.Response();
            const auto* text = reinterpret_cast<const char*>(res.aucParas);
            all.push_back({record.usTargetModuleID, res.usCmdID, res.ucCmdType, res.ucResult, res.usParaLen,
                           std::string(text, strnlen(text, sizeof res.aucParas))});
        }
        return all;
    }

    // Feeds `stream` to a fresh start with `id` pending: whole, byte by byte and split at every position.
    void ExpectEverySplit(uint16_t id, uint8_t type, const std::string& stream,
                          const std::vector<Sent>& expected, const char* card = "KVX_LTE") {
        const auto run = [&](const std::vector<std::string>& chunks) {
            Start(card);
            if (id != 0) Pend(id, type);
            for (const std::string& chunk : chunks)
                Feed(chunk);
            return Messages();
        };
        EXPECT_EQ(run({stream}), expected) << "whole";
        std::vector<std::string> bytes;
        for (char byte : stream)
            bytes.push_back(std::string(1, byte));
        EXPECT_EQ(run(bytes), expected) << "byte by byte";
        for (size_t at = 1; at < stream.size(); ++at)
            ASSERT_EQ(run({stream.substr(0, at), stream.substr(at)}), expected) << "split at " << at;
    }

    static Sent Answer(uint16_t id, uint8_t type, uint8_t result, uint16_t length, const std::string& text) {
        return {kRequester, id, type, result, length, text};
    }
};

inline Sent Signal(int value) {
    // The text view of an integer is its first bytes up to a zero.
    int32_t number = value;
    char bytes[5] = {};
    memcpy(bytes, &number, sizeof number);
    return {kRequester, 0x0604, AT_CMD_TYPE_EXEC, 1, 8, std::string(bytes)};
}

inline Sent Registration(int state) {
    int32_t number = state;
    char bytes[5] = {};
    memcpy(bytes, &number, sizeof number);
    return {AT_MODULE_SIM, 0x052D, 6, 1, 36, std::string(bytes)};
}

#endif
