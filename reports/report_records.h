#ifndef AT_REPORTS_REPORT_RECORDS_H
#define AT_REPORTS_REPORT_RECORDS_H

/* What unsolicited reports carry in _BK_AT_RES_T.aucParas, where it is not text: copy it out with memcpy,
 * aucParas is not aligned. Integers are in host byte order, texts NUL-terminated and zero-padded; a field
 * that the modem's line did not hold is zero. usParaLen is the size of the record. Usable from C11 and C++.
 *
 * New messages (+CMTI, +ZVMTI, +CDSI), +ZCLAS and the SIM toolkit's +ZUPCI and +ZUEND stand with their
 * commands in commands/records_sms.h and commands/records_toolkit.h. */

#include "commands/records_sms.h"
#include "commands/records_toolkit.h"
#include "records/message.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ZREFRESH, command 0x011A to AT_MODULE_SMS. */
typedef struct {
    char file_id[36];
    char text[36];
} AT_ZREFRESH_NOTIFY_RES_PARA_T;

/* +ZVMAIL, voice mail waiting, command 0x0118 to AT_MODULE_SMS. */
typedef struct {
    int32_t vm_flag;
} AT_ZVMAIL_NOTIFY_RES_PARA_T;

/* +CBM, a cell broadcast page (command 0x0115), and +CDS, a status report (0x0119), to AT_MODULE_SMS. */
typedef struct {
    int32_t length; /* as the modem announced it */
    char pdu[508];
} AT_CBM_NOTIFY_RES_PARA_T;

/* ^HRSSILVL, command 0x0550 to AT_MODULE_SIM. */
typedef struct {
    char hdr_rssi[8];
} AT_HRSSILVL_NOTIFY_RES_PARA_T;

/* +ZCONSTAT, command 0x0625 to AT_MODULE_DATA. */
typedef struct {
    int32_t stat; /* 0: the connection is down */
} AT_ZCONSTAT_NOTIFY_RES_PARA_T;

/* +ZGIPDNS, the addresses of a PDP context, command 0x0627 to AT_MODULE_DATA. */
typedef struct {
    int32_t cid_num;
    int32_t cid1;
    char PDP_type[10];
    char PDP_addr[60];
    char gateway[60];
    char primary_dns[60];
    char secondary_dns[60];
    char reserved[2]; /* zero */
} AT_ZGIPDNS_NOTIFY_RES_PARA_T;

/* +ZICCID, command 0x0629 to AT_MODULE_SIM. */
typedef struct {
    char iccid[64];
} AT_ZICCID_NOTIFY_RES_PARA_T;

/* +CREG, circuit-switched registration, command 0x052D to AT_MODULE_SIM. */
typedef struct {
    int32_t state;
    char lac[16];
    char cellid[16];
} AT_CREG_NOTIFY_RES_PARA_T;

/* +CGREG, packet-switched registration, command 0x0553 to AT_MODULE_SIM. */
typedef struct {
    int32_t state;
    char lac[16];
    char cellid[16];
    int32_t act;
    char rac[16];
    int32_t sub_act;
} AT_CGREG_NOTIFY_RES_PARA_T;

/* +CEREG, LTE registration, command 0x0552 to AT_MODULE_SIM. */
typedef struct {
    int32_t state;
    char tac[16];
    char cellid[16];
    int32_t act;
    int32_t sub_act;
} AT_CEREG_NOTIFY_RES_PARA_T;

/* +ZNITZ, network time, command 0x063E to AT_MODULE_TIME. */
typedef struct {
    int32_t value[8]; /* in the order of the modem's line */
} AT_ZNITZ_NOTIFY_RES_PARA_T;

AT_ASSERT_LAYOUT(offsetof(AT_ZREFRESH_NOTIFY_RES_PARA_T, file_id) == 0);
AT_ASSERT_LAYOUT(offsetof(AT_ZREFRESH_NOTIFY_RES_PARA_T, text) == 36);
AT_ASSERT_LAYOUT(sizeof(AT_ZREFRESH_NOTIFY_RES_PARA_T) == 72);

AT_ASSERT_LAYOUT(sizeof(AT_ZVMAIL_NOTIFY_RES_PARA_T) == 4);

AT_ASSERT_LAYOUT(offsetof(AT_CBM_NOTIFY_RES_PARA_T, length) == 0);
AT_ASSERT_LAYOUT(offsetof(AT_CBM_NOTIFY_RES_PARA_T, pdu) == 4);
AT_ASSERT_LAYOUT(sizeof(AT_CBM_NOTIFY_RES_PARA_T) == 512);

AT_ASSERT_LAYOUT(sizeof(AT_HRSSILVL_NOTIFY_RES_PARA_T) == 8);
AT_ASSERT_LAYOUT(sizeof(AT_ZCONSTAT_NOTIFY_RES_PARA_T) == 4);

AT_ASSERT_LAYOUT(offsetof(AT_ZGIPDNS_NOTIFY_RES_PARA_T, cid_num) == 0);
AT_ASSERT_LAYOUT(offsetof(AT_ZGIPDNS_NOTIFY_RES_PARA_T, cid1) == 4);
AT_ASSERT_LAYOUT(offsetof(AT_ZGIPDNS_NOTIFY_RES_PARA_T, PDP_type) == 8);
AT_ASSERT_LAYOUT(offsetof(AT_ZGIPDNS_NOTIFY_RES_PARA_T, PDP_addr) == 18);
AT_ASSERT_LAYOUT(offsetof(AT_ZGIPDNS_NOTIFY_RES_PARA_T, gateway) == 78);
AT_ASSERT_LAYOUT(offsetof(AT_ZGIPDNS_NOTIFY_RES_PARA_T, primary_dns) == 138);
AT_ASSERT_LAYOUT(offsetof(AT_ZGIPDNS_NOTIFY_RES_PARA_T, secondary_dns) == 198);
AT_ASSERT_LAYOUT(offsetof(AT_ZGIPDNS_NOTIFY_RES_PARA_T, reserved) == 258);
AT_ASSERT_LAYOUT(sizeof(AT_ZGIPDNS_NOTIFY_RES_PARA_T) == 260);

AT_ASSERT_LAYOUT(sizeof(AT_ZICCID_NOTIFY_RES_PARA_T) == 64);

AT_ASSERT_LAYOUT(offsetof(AT_CREG_NOTIFY_RES_PARA_T, state) == 0);
AT_ASSERT_LAYOUT(offsetof(AT_CREG_NOTIFY_RES_PARA_T, lac) == 4);
AT_ASSERT_LAYOUT(offsetof(AT_CREG_NOTIFY_RES_PARA_T, cellid) == 20);
AT_ASSERT_LAYOUT(sizeof(AT_CREG_NOTIFY_RES_PARA_T) == 36);

AT_ASSERT_LAYOUT(offsetof(AT_CGREG_NOTIFY_RES_PARA_T, state) == 0);
AT_ASSERT_LAYOUT(offsetof(AT_CGREG_NOTIFY_RES_PARA_T, lac) == 4);
AT_ASSERT_LAYOUT(offsetof(AT_CGREG_NOTIFY_RES_PARA_T, cellid) == 20);
AT_ASSERT_LAYOUT(offsetof(AT_CGREG_NOTIFY_RES_PARA_T, act) == 36);
AT_ASSERT_LAYOUT(offsetof(AT_CGREG_NOTIFY_RES_PARA_T, rac) == 40);
AT_ASSERT_LAYOUT(offsetof(AT_CGREG_NOTIFY_RES_PARA_T, sub_act) == 56);
AT_ASSERT_LAYOUT(sizeof(AT_CGREG_NOTIFY_RES_PARA_T) == 60);

AT_ASSERT_LAYOUT(offsetof(AT_CEREG_NOTIFY_RES_PARA_T, state) == 0);
AT_ASSERT_LAYOUT(offsetof(AT_CEREG_NOTIFY_RES_PARA_T, tac) == 4);
AT_ASSERT_LAYOUT(offsetof(AT_CEREG_NOTIFY_RES_PARA_T, cellid) == 20);
AT_ASSERT_LAYOUT(offsetof(AT_CEREG_NOTIFY_RES_PARA_T, act) == 36);
AT_ASSERT_LAYOUT(offsetof(AT_CEREG_NOTIFY_RES_PARA_T, sub_act) == 40);
AT_ASSERT_LAYOUT(sizeof(AT_CEREG_NOTIFY_RES_PARA_T) == 44);

AT_ASSERT_LAYOUT(sizeof(AT_ZNITZ_NOTIFY_RES_PARA_T) == 32);

#ifdef __cplusplus
}
#endif

#endif
