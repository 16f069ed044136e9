#ifndef AT_CHECKS_UNIT_ROUTING_VECTORS_H
#define AT_CHECKS_UNIT_ROUTING_VECTORS_H

#include <string.h>

#include "checks/support/report_vector.h"
#include "records/state.h"
#include "reports/routing.h"

// Each row of the routing table has a vector with the exact bytes that leave, and one of what the row does
// not take.

namespace routing {

inline constexpr uint16_t kCall = 0x1002;
inline constexpr uint16_t kSim = 0x1003;
inline constexpr uint16_t kSms = 0x100a;
inline constexpr uint16_t kTime = 0x100e;
inline constexpr uint16_t kToolkit = 0x1019;
inline constexpr uint16_t kData = 0x1022;

}  // namespace routing

class Routing : public ReportVectors {
  protected:
    // Routes a response with this text; its id and type are 0, as those of a report.
    void Route(const std::string& text, const RouteContext& context = {}, uint16_t id = 0) {
        MSG_BUF message = {};
        _BK_AT_RES_T response = {};
        response.usCmdID = id;
        response.usParaLen = static_cast<uint16_t>(text.size());
        ASSERT_LE(text.size(), sizeof response.aucParas);
        memcpy(response.aucParas, text.data(), text.size());
        memcpy(message.aucDataBuf, &response, sizeof response);
        RouteReport(&message, context);
    }

    // The text goes unchanged to `target`.
    void ExpectForward(const std::string& text, uint16_t target, uint16_t id, uint8_t type) {
        SCOPED_TRACE(text);
        Route(text);
        ExpectReport(target, id, type, text);
    }
    // Forwarded, and the request in flight is gone unless the response stood in an answer.
    void ExpectForwardAndClear(const std::string& text, uint16_t id) {
        SCOPED_TRACE(text);
        Pending(0x0604);
        Route(text);
        ExpectReport(routing::kCall, id, 1, text);
        EXPECT_TRUE(Idle());

        Pending(0x0604);
        const MSG_BUF before = g_at_msg;
        Route(text, {.may_prompt = true, .may_clear = false});
        ExpectReport(routing::kCall, id, 1, text);
        EXPECT_EQ(memcmp(&g_at_msg, &before, sizeof before), 0);
        ClearPendingRequest();
    }
    void ExpectRecord(const std::string& text, uint16_t target, uint16_t id, uint8_t type,
                      const ReportBytes& record) {
        SCOPED_TRACE(text);
        Route(text);
        ExpectReport(target, id, type, record.str());
    }
    void ExpectDropped(const std::string& text) {
        SCOPED_TRACE(text);
        Route(text);
        ExpectNothingSent();
        EXPECT_EQ(modem_.Written(), "");
        EXPECT_TRUE(Platform().writes.empty());
    }

    static std::string CmgsParas(int32_t length, const std::string& pdu) {
        return ReportBytes().Int(length).str() + pdu +
               std::string(500 - std::min<size_t>(500, pdu.size()), '\0');
    }
    static std::string CmgwParas(int32_t length, int32_t status, const std::string& pdu) {
        return ReportBytes().Int(length).str() + CmgsParas(status, pdu);
    }
};

#endif
