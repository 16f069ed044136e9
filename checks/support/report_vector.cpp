#include "checks/support/report_vector.h"

#include <string.h>

#include "records/state.h"

namespace {

template <typename T>
void Put(std::string& body, size_t offset, T value) {
    memcpy(body.data() + offset - 4, &value,
           sizeof value);  // offsets of MSG_BUF, whose first 4 bytes do not travel
}

}  // namespace

std::string ReportBody(uint16_t target, uint16_t id, uint8_t type, const std::string& paras) {
    std::string body(652, '\0');
    Put(body, 4, target);
    Put(body, 6, uint16_t{0x1000});
    Put(body, 8, uint16_t{0x0302});
    Put(body, 10, uint16_t{518});
    Put(body, 12, id);
    Put(body, 14, type);
    Put(body, 15, uint8_t{1});
    Put(body, 16, static_cast<uint16_t>(paras.size()));
    memcpy(body.data() + 18 - 4, paras.data(), paras.size());
    Put(body, 652, uint32_t{0x3a3a3a3a});
    return body;
}

void ReportVectors::SetUp() {
    Platform().Reset();
    Queues().Reset();
    Queues().CreateModules();
    Shell().Reset();
    ClearPendingRequest();
    g_last_atcmd = 0;
    g_atd_warting = 0;
    ClearLog();
}

void ReportVectors::TearDown() {
    ClearPendingRequest();
    g_last_atcmd = 0;
    g_atd_warting = 0;
    Queues().Reset();
}

void ReportVectors::ExpectReport(uint16_t target, uint16_t id, uint8_t type, const std::string& paras) {
    ASSERT_EQ(Queues().sent.size(), 1U);
    const FakeMessage message = Queues().sent[0];
    Queues().sent.clear();
    EXPECT_EQ(message.key, target);
    EXPECT_EQ(message.type, 1);
    const _BK_AT_RES_T response = message.Response();
    EXPECT_EQ(response.usCmdID, id);
    EXPECT_EQ(response.usParaLen, paras.size());
    EXPECT_EQ(
        std::string(reinterpret_cast<const char*>(response.aucParas), std::min<size_t>(paras.size(), 634)),
        paras);
    const std::string body(message.body.begin(), message.body.end());
    const std::string wanted = ReportBody(target, id, type, paras);
    ASSERT_EQ(body.size(), wanted.size());
    for (size_t i = 0; i < body.size(); i++)
        ASSERT_EQ(body[i], wanted[i]) << "at offset " << i + 4 << " of the message";
}

void ReportVectors::ExpectNothingSent() {
    EXPECT_EQ(Queues().sent.size(), 0U);
}

void ReportVectors::Pending(uint16_t id, const std::string& paras) {
    g_at_msg = MSG_BUF();
    g_at_msg.lMsgType = 7;
    g_at_msg.usSourceModuleID = AT_MODULE_SMS;
    PendingRequest()->usCmdID = id;
    PendingRequest()->ucCmdType = AT_CMD_TYPE_SET;
    PendingRequest()->usParaLen = static_cast<uint16_t>(paras.size());
    ASSERT_LE(paras.size(), sizeof PendingRequest()->aucParas);
    memcpy(PendingRequest()->aucParas, paras.data(), paras.size());
}

bool ReportVectors::Idle() {
    MSG_BUF idle = {};
    idle.lMsgType = -1;
    return memcmp(&g_at_msg, &idle, sizeof idle) == 0;
}
