#include "reports/broadcast.h"

#include <string.h>

#include "platform/log.h"
#include "records/report.h"
#include "reports/report_catalog.h"
#include "text/atpublic.h"
#include "text/scan.h"

namespace {

constexpr char kLogSource[] = "response";
constexpr size_t kTextMax = 512;  // characters behind the name that belong to the report

using Page = AT_CBM_NOTIFY_RES_PARA_T;

constexpr FieldRef kFields[] = {AT_FIELD_REF(Page, length), AT_FIELD_REF(Page, pdu)};
constexpr char kStatusReportFormat[] = "%d %507s";
static_assert(ScanFits(kStatusReportFormat, kFields));

// Copies what follows `name` in `text`. False when the name does not stand in it.
bool TakeText(const char* text, const char* name, char (&taken)[kTextMax + 1]) {
    const char* at = Find_Sub_Str(text, name);
    if (at == nullptr) return false;
    at += strlen(name);
    const size_t length = strnlen(at, kTextMax);
    memcpy(taken, at, length);
    taken[length] = '\0';
    return true;
}

int Send(const Destination& to, const Page& record) {
    _BK_AT_RES_T res;
    res.usParaLen = sizeof record;
    memcpy(res.aucParas, &record, sizeof record);
    return send_auto_report(to.target, to.id, to.type, &res);
}

}  // namespace

int cbm_resolve(const char* text) {
    char taken[kTextMax + 1];
    if (text == nullptr || !TakeText(text, "+CBM: ", taken)) {
        AT_LOG(LOG_ERR, "cbm_resolve para is wrong\n");
        return 1;
    }
    Page record = {};
    if (char* line_end = strstr(taken, "\r\n")) {
        // The line ends here for the number, too: a page that begins with digits is no length.
        *line_end = '\0';
        ScanRecord(taken, "%d", std::span(kFields).first(1), &record);
        const char* pdu = line_end + 2;
        const char* pdu_end = strstr(pdu, "\r\n");
        size_t length = pdu_end != nullptr ? static_cast<size_t>(pdu_end - pdu) : strlen(pdu);
        // The second half of the line break may not have been read yet.
        if (pdu_end == nullptr && length != 0 && pdu[length - 1] == '\r') length--;
        if (length > sizeof record.pdu - 1) length = sizeof record.pdu - 1;
        memcpy(record.pdu, pdu, length);
    }
    const int result = Send(To(kBroadcastReport), record);
    AT_LOG(LOG_DEBUG, ">>>+CBM over\n");
    return result;
}

int cds_resolve(const char* text) {
    char taken[kTextMax + 1];
    if (text == nullptr || !TakeText(text, "+CDS: ", taken)) {
        AT_LOG(LOG_ERR, "cds_resolve para is wrong\n");
        return 1;
    }
    Page record = {};
    ScanRecord(taken, kStatusReportFormat, kFields, &record);
    const int result = Send(To(kStatusReport), record);
    AT_LOG(LOG_DEBUG, ">>>+CDS over\n");
    return result;
}
