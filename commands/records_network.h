#ifndef AT_COMMANDS_RECORDS_NETWORK_H
#define AT_COMMANDS_RECORDS_NETWORK_H

/* Parameter records of network selection and registration. Usable from C11 and C++. Integers are host order,
 * texts are NUL-terminated and zero-padded; an empty text or a zero means "not given". The name says which
 * command and type carries the record: ..._SET_PARA_T a request, ..._RES_PARA_T the answer to that type, or,
 * without a type, what the decoder makes of a report. A record that several types carry is named after the
 * first. Fields whose meaning the modem alone knows are numbered. */

#include "records/message.h"

#ifdef __cplusplus
extern "C" {
#endif

/* AT+COPS=<mode>,<format>,<oper>,<act> */
typedef struct {
    int32_t mode;   /* 0 automatic, 1 manual, 2 deregister, 3 set the format only, 4 manual, then automatic */
    int32_t format; /* of oper: 0 long name, 1 short name, 2 numeric */
    char oper[64];  /* printed as it stands: quotation marks are the requester's */
    int32_t act;    /* access technology */
} AT_COPS_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_COPS_SET_PARA_T) == 76);

/* +COPS: <mode>,<format>,<oper>,<act> */
typedef struct {
    int32_t mode;
    int32_t format;
    char oper[68]; /* at most 67 characters */
    int32_t act;
} AT_COPS_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_COPS_READ_RES_PARA_T) == 80);

/* One operator of a search: (<stat>,<long name>,<short name>,<numeric>,<act>) */
typedef struct {
    int32_t stat;        /* 0 unknown, 1 available, 2 current, 3 forbidden */
    char long_name[68];  /* at most 64 characters */
    char short_name[20]; /* at most 16 characters */
    char numeric[12];    /* at most 10 characters */
    char act[24];        /* at most 20 characters */
} AT_COPS_OPERATOR_T;
AT_ASSERT_LAYOUT(sizeof(AT_COPS_OPERATOR_T) == 128);

/* The answer to AT+COPS=?. Larger than a message: it is the content of /etc_rw/config/copslist. */
typedef struct {
    int32_t count; /* 0..100 */
    AT_COPS_OPERATOR_T operators[100];
} AT_COPS_TEST_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_COPS_TEST_RES_PARA_T) == 12804);

/* AT+CREG=<n>, AT+CGREG=<n>, AT+CEREG=<n> */
typedef struct {
    int32_t n; /* 0 no reports, 1 reports of the state, 2 reports with the location */
} AT_CREG_SET_PARA_T;
typedef AT_CREG_SET_PARA_T AT_CGREG_SET_PARA_T;
typedef AT_CREG_SET_PARA_T AT_CEREG_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CREG_SET_PARA_T) == 4);

/* +CREG: <n>,<stat>[,<lac>,<ci>]; the location is delivered when n is 2 only. */
typedef struct {
    int32_t n;
    int32_t stat; /* 0 not registered, 1 home, 2 searching, 3 denied, 4 unknown, 5 roaming */
    char lac[16];
    char ci[16];
} AT_CREG_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CREG_READ_RES_PARA_T) == 40);

/* +CGREG: <n>,<stat>[,<lac>,<ci>,<act>,<rac>,<sub_act>] */
typedef struct {
    int32_t n;
    int32_t stat;
    char lac[16];
    char ci[16];
    int32_t act;
    char rac[16];
    int32_t sub_act;
} AT_CGREG_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CGREG_READ_RES_PARA_T) == 64);

/* +CEREG: <n>,<stat>[,<tac>,<ci>,<act>,<sub_act>] */
typedef struct {
    int32_t n;
    int32_t stat;
    char tac[16];
    char ci[16];
    int32_t act;
    int32_t sub_act;
} AT_CEREG_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CEREG_READ_RES_PARA_T) == 48);

/* +CSQ: <rssi>,<ber>. The comma ends the reading, so ber is 0 with every modem that sends one. */
typedef struct {
    int32_t rssi; /* 0..31 in steps of 2 dB from -113 dBm, 99 unknown */
    int32_t ber;
} AT_CSQ_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CSQ_EXEC_RES_PARA_T) == 8);

/* +CIND: eight indicators in the modem's order */
typedef struct {
    int32_t indicator1;
    int32_t indicator2;
    int32_t indicator3;
    int32_t indicator4;
    int32_t indicator5;
    int32_t indicator6;
    int32_t indicator7;
    int32_t indicator8;
} AT_CIND_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CIND_READ_RES_PARA_T) == 32);

/* ^SYSINFO: <srv_status>,<srv_domain>,<roam_status>,<sys_mode>,<sim_state>,<value6>,<sys_submode> */
typedef struct {
    int32_t srv_status;
    int32_t srv_domain;
    int32_t roam_status;
    int32_t sys_mode;
    int32_t sim_state;
    int32_t value6; /* the modem's own */
    int32_t sys_submode;
} AT_SYSINFO_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_SYSINFO_EXEC_RES_PARA_T) == 28);

/* +ZRSSI: what a value means depends on the radio technology, which only the number of values tells:
 *   <slot0>                              2G
 *   <slot1>,<slot2>                      3G
 *   <slot0>,<slot2>,<slot1>              WCDMA
 *   <slot3>,<slot4>,<slot0>,<slot6>      4G
 * Configuration key zrssi_count says how many there were ("0" for any other number). */
typedef struct {
    int32_t slot0;
    int32_t slot1;
    int32_t slot2;
    int32_t slot3;
    int32_t slot4;
    int32_t slot5; /* never filled */
    float slot6;
} AT_ZRSSI_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZRSSI_EXEC_RES_PARA_T) == 28);

/* ^HRSSILVL: <hdr_rssi> */
typedef struct {
    char hdr_rssi[8]; /* at most 7 characters */
} AT_HRSSILVL_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_HRSSILVL_RES_PARA_T) == 8);

/* %NWSTATE: <value1>,<text1>,<text2>,<text3>,<value2> */
typedef struct {
    int32_t value1;
    char text1[16]; /* texts: at most 15 characters */
    char text2[16];
    char text3[16];
    int32_t value2;
} AT_NWSTATE_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_NWSTATE_EXEC_RES_PARA_T) == 56);

/* +ZLACELLID: six hexadecimal numbers, location areas and cells */
typedef struct {
    int32_t value1;
    int32_t value2;
    int32_t value3;
    int32_t value4;
    int32_t value5;
    int32_t value6;
} AT_ZLACELLID_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZLACELLID_EXEC_RES_PARA_T) == 24);

/* +ZPAS: "<text1>","<text2>" */
typedef struct {
    char text1[68]; /* at most 64 characters */
    char text2[36]; /* at most 32 characters */
} AT_ZPAS_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZPAS_READ_RES_PARA_T) == 104);

/* +ZPASR: "<text>", reported */
typedef struct {
    char text[68]; /* at most 64 characters */
} AT_ZPASR_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZPASR_RES_PARA_T) == 68);

/* +ZDON and ^ZOPS: seven texts about the operator */
typedef struct {
    char text1[68]; /* at most 64 characters, as text4 to text6 */
    char text2[36]; /* at most 32 characters, as text3 and text7 */
    char text3[36];
    char text4[68];
    char text5[68];
    char text6[68];
    char text7[36];
} AT_ZDON_READ_RES_PARA_T;
typedef AT_ZDON_READ_RES_PARA_T AT_ZOPS_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZDON_READ_RES_PARA_T) == 380);

/* +ZDONR: five texts about the operator, reported */
typedef struct {
    char text1[68]; /* at most 64 characters */
    char text2[36]; /* the others: at most 32 characters */
    char text3[36];
    char text4[36];
    char text5[36];
} AT_ZDONR_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZDONR_RES_PARA_T) == 212);

/* +ZDNT: "<text>" and +ZPCB: "<text>" */
typedef struct {
    char text[68]; /* at most 64 characters */
} AT_ZDNT_READ_RES_PARA_T;
typedef AT_ZDNT_READ_RES_PARA_T AT_ZPCB_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZDNT_READ_RES_PARA_T) == 68);

/* AT+ZSNT=<value1>,<value2>,<value3> and +ZSNT: <value1>,<value2>,<value3> */
typedef struct {
    int32_t value1;
    int32_t value2;
    int32_t value3;
} AT_ZSNT_SET_PARA_T;
typedef AT_ZSNT_SET_PARA_T AT_ZSNT_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZSNT_SET_PARA_T) == 12);

/* AT+ZOPRT=<value> and +ZOPRT: <value> */
typedef struct {
    int32_t value;
} AT_ZOPRT_SET_PARA_T;
typedef AT_ZOPRT_SET_PARA_T AT_ZOPRT_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZOPRT_SET_PARA_T) == 4);

/* AT+ZMAC=<value> */
typedef struct {
    int32_t value;
} AT_ZMAC_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZMAC_SET_PARA_T) == 4);

/* +ZMACR: <text>, reported */
typedef struct {
    char text[32]; /* at most 31 characters */
} AT_ZMACR_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZMACR_RES_PARA_T) == 32);

/* AT+ZCIN=<value1>,<value2> */
typedef struct {
    int32_t value1;
    int32_t value2;
} AT_ZCIN_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZCIN_SET_PARA_T) == 8);

/* +ZCNI: <value> */
typedef struct {
    int32_t value;
} AT_ZCNI_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZCNI_EXEC_RES_PARA_T) == 4);

/* AT+ZUMS="<text>" */
typedef struct {
    char text[32];
} AT_ZUMS_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZUMS_SET_PARA_T) == 32);

/* +ZROAM: <roam>, the text as the modem sent it. AT+ZROAM never has parameters, whatever the request holds.
 */
typedef struct {
    char roam[15]; /* at most 14 characters */
} AT_ZROAM_SET_PARA_T;
typedef AT_ZROAM_SET_PARA_T AT_ZROAM_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZROAM_SET_PARA_T) == 15);

/* +ZNITZ: the network's time, eight numbers in the modem's order */
typedef struct {
    int32_t value1;
    int32_t value2;
    int32_t value3;
    int32_t value4;
    int32_t value5;
    int32_t value6;
    int32_t value7;
    int32_t value8;
} AT_ZNITZ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZNITZ_RES_PARA_T) == 32);

/* One cell of a background LTE scan: (<istat>,<lalpha_oper>,<salpha_oper>,<numeric_oper>,<net_type>,<iRsrp>,
 * <iQrxlevmin>,<sub_net_type>). Never leaves the server. */
typedef struct {
    int32_t istat;         /* 0 and 3: not to be chosen */
    char lalpha_oper[68];  /* long operator name, at most 64 characters */
    char salpha_oper[20];  /* short operator name, at most 16 characters */
    char numeric_oper[12]; /* at most 10 characters */
    char net_type[24];     /* at most 20 characters */
    char sub_net_type[24]; /* "0" TDD, "1" FDD; at most 20 characters */
    int32_t iRsrp;         /* signal power as the modem counts it */
    int32_t iQrxlevmin;    /* least power that the cell asks for, in the same unit */
} AT_BGLTEPLMN_CELL_T;
AT_ASSERT_LAYOUT(offsetof(AT_BGLTEPLMN_CELL_T, istat) == 0);
AT_ASSERT_LAYOUT(offsetof(AT_BGLTEPLMN_CELL_T, lalpha_oper) == 4);
AT_ASSERT_LAYOUT(offsetof(AT_BGLTEPLMN_CELL_T, salpha_oper) == 72);
AT_ASSERT_LAYOUT(offsetof(AT_BGLTEPLMN_CELL_T, numeric_oper) == 92);
AT_ASSERT_LAYOUT(offsetof(AT_BGLTEPLMN_CELL_T, net_type) == 104);
AT_ASSERT_LAYOUT(offsetof(AT_BGLTEPLMN_CELL_T, sub_net_type) == 128);
AT_ASSERT_LAYOUT(offsetof(AT_BGLTEPLMN_CELL_T, iRsrp) == 152);
AT_ASSERT_LAYOUT(offsetof(AT_BGLTEPLMN_CELL_T, iQrxlevmin) == 156);
AT_ASSERT_LAYOUT(sizeof(AT_BGLTEPLMN_CELL_T) == 160);

/* The cells of a background LTE scan. */
typedef struct {
    int32_t count; /* 0..100 */
    AT_BGLTEPLMN_CELL_T cells[100];
} AT_BGLTEPLMN_RES_PARA_T;
AT_ASSERT_LAYOUT(offsetof(AT_BGLTEPLMN_RES_PARA_T, cells) == 4);
AT_ASSERT_LAYOUT(sizeof(AT_BGLTEPLMN_RES_PARA_T) == 16004);

#ifdef __cplusplus
}
#endif

#endif
