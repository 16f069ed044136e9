#include "reports/connection.h"

#include <stdlib.h>
#include <string.h>

#include "platform/config.h"
#include "platform/log.h"
#include "port/transmit.h"
#include "records/report.h"
#include "reports/report_records.h"
#include "text/atpublic.h"
#include "text/scan.h"

namespace {

constexpr char kLogSource[] = "response";
constexpr int kZconstat = 0x0625;
constexpr int kZgipdns = 0x0627;

constexpr FieldRef kState[] = {AT_FIELD_REF(AT_ZCONSTAT_NOTIFY_RES_PARA_T, stat)};

constexpr FieldRef kAddresses[] = {
    AT_FIELD_REF(AT_ZGIPDNS_NOTIFY_RES_PARA_T, cid_num),
    AT_FIELD_REF(AT_ZGIPDNS_NOTIFY_RES_PARA_T, cid1),
    AT_FIELD_REF(AT_ZGIPDNS_NOTIFY_RES_PARA_T, PDP_type),
    AT_FIELD_REF(AT_ZGIPDNS_NOTIFY_RES_PARA_T, PDP_addr),
    AT_FIELD_REF(AT_ZGIPDNS_NOTIFY_RES_PARA_T, gateway),
    AT_FIELD_REF(AT_ZGIPDNS_NOTIFY_RES_PARA_T, primary_dns),
    AT_FIELD_REF(AT_ZGIPDNS_NOTIFY_RES_PARA_T, secondary_dns),
};
// A text of more than 59 characters is split: its rest is read as the next field.
constexpr char kAddressFormat[] = "+ZGIPDNS: %d %d %8s %59s %59s %59s %59s";
static_assert(ScanFits(kAddressFormat, kAddresses));
constexpr size_t kAddressTextMax = 511;

// Where the fields of a "+ZEMCI: " report begin: its line break and its name come first.
constexpr size_t kCellFieldsAt = 10;
constexpr int kCellId = 1;
constexpr int kLocationArea = 3;
constexpr int kQuality = 11;

template <typename Record>
int Send(int command, const Record& record) {
    _BK_AT_RES_T res;
    res.usParaLen = sizeof record;
    memcpy(res.aucParas, &record, sizeof record);
    return send_auto_report(AT_MODULE_DATA, command, 1, &res);
}

void MarkDisconnected() {
    wan_reset();
    cfg_set("ppp_status", "ppp_disconnected");
    if (ConfigIs("modem_is_connected", "1")) {
        cfg_set("modem_is_connected", "0");
        AT_LOG(LOG_DEBUG, "make modem connect......!");
    }
    cfg_set("zgipdns_result", "0");
    AT_LOG(LOG_DEBUG, "user_action<<at-server:%s\n ", ConfigText("user_action"));
    // A drop that the user did not ask for is followed by a new connection.
    const char* reconnect = ConfigIs("user_action", "1") ? "0" : "1";
    cfg_set("zconstat_up_result", reconnect);
    cfg_set("auto_reconnect", reconnect);
}

template <size_t Size>
void CopyField(char (&out)[Size], const char* field, size_t length) {
    if (length > Size - 1) length = Size - 1;
    memcpy(out, field, length);
    out[length] = '\0';
}

}  // namespace

int wan_reset() {
    for (const char* key : {"wan_ipaddr", "prefer_dns_auto", "standby_dns_auto", "wan_netmask",
                            "wan_primary_dns", "wan_secondary_dns", "wan_gateway"})
        cfg_set(key, "0.0.0.0");
    return system("killall -9 udhcpc ");
}

int on_recieve_at_process_zconstat(const char* text) {
    if (text == nullptr) return 1;
    AT_LOG(LOG_DEBUG, "---.>>>>>>>>>>g_last_atcmd == AT_ZCONSTAT_CMD");
    AT_ZCONSTAT_NOTIFY_RES_PARA_T para = {};
    ScanRecord(text + strnlen(text, strlen("+ZCONSTAT: ")), "%d", kState, &para);
    AT_LOG(LOG_DEBUG, "tPara.stat:%d ", para.stat);
    if (para.stat == 0)
        MarkDisconnected();
    else
        cfg_set("zconstat_up_result", "0");
    const int result = Send(kZconstat, para);
    AT_LOG(LOG_EMERG, "---.>>>>>>>>>>send msg AT_ZCONSTAT_CMD\n");
    return result;
}

int on_recieve_at_process_zgipdns(const char* text) {
    AT_LOG(LOG_EMERG, "---.>>>>>>>>>>on_recieve_at_process_zgipdns\n");
    if (text == nullptr) return 1;
    char line[kParaLineSize];
    const size_t length = strnlen(text, kAddressTextMax);
    memcpy(line, text, length);
    line[length] = '\0';
    PreProc_Res_ParaLine(line);
    AT_ZGIPDNS_NOTIFY_RES_PARA_T para = {};
    ScanRecord(line, kAddressFormat, kAddresses, &para);
    AT_LOG(LOG_EMERG, "on_recieve_at_process_zgipdns :%d, %d,%s,%s,%s,%s,%s", para.cid_num, para.cid1,
           para.PDP_type, para.PDP_addr, para.gateway, para.primary_dns, para.secondary_dns);
    return Send(kZgipdns, para);
}

void zemci_resolve(const char* pStr) {
    if (pStr == nullptr) {
        AT_LOG(LOG_ERR, "zemci_resolve input para is null\n");
        return;
    }
    AT_LOG(LOG_DEBUG, "zemci_resolve pStr is :%s\n", pStr);
    if (Find_Sub_Str(pStr, "+ZEMCI:") == nullptr || strnlen(pStr, kCellFieldsAt) < kCellFieldsAt) return;

    char cell_id[16] = {};
    char location_area[10] = {};
    char quality[10] = {};
    const char* field = pStr + kCellFieldsAt;
    for (int number = 1;; number++) {
        const size_t length = strcspn(field, ",\r\n");
        if (number == kCellId) CopyField(cell_id, field, length);
        if (number == kLocationArea) CopyField(location_area, field, length);
        if (number == kQuality) {
            CopyField(quality, field, length);
            break;
        }
        if (field[length] != ',') return;
        field += length + 1;
    }
    cfg_set("Z_CELL_ID", cell_id);
    cfg_set("Z_LAC", location_area);
    cfg_set("Z_rsrq", quality);
    send_resolve_at("AT+ZEMCI=0\r");
    AT_LOG(LOG_DEBUG, "send AT+ZEMCI=0 over\n");
}

int stk_end_mark() {
    cfg_set("stk", "ZEND");
    AT_LOG(LOG_DEBUG, "stk=%s", ConfigText("stk"));
    return cfg_set("stk_write_flag", "0");
}
