#ifndef AT_COMMANDS_RECORDS_NETWORK_H
#define AT_COMMANDS_RECORDS_NETWORK_H

/* Parameter records of network selection and registration. Usable from C11 and C++. Integers are host order,
 * texts are NUL-terminated and zero-padded; an empty text or a zero means "not given". The name says which
 * command and type carries the record: ..._SET_PARA_T a request, ..._RES_PARA_T the answer to that type. */

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

/* AT+CFUN=<fun> and +CFUN: <fun> */
typedef struct {
    int32_t fun; /* 0 minimum, 1 full, 4 radio off */
} AT_CFUN_SET_PARA_T;
typedef AT_CFUN_SET_PARA_T AT_CFUN_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CFUN_SET_PARA_T) == 4);

#ifdef __cplusplus
}
#endif

#endif
