#ifndef AT_COMMANDS_RECORDS_CALLS_H
#define AT_COMMANDS_RECORDS_CALLS_H

/* Parameter records of calls and supplementary services. Usable from C11 and C++; the conventions stand in
 * records_network.h. */

#include "records/message.h"

#ifdef __cplusplus
extern "C" {
#endif

/* AT+VTS=<dtmf> */
typedef struct {
    char dtmf[10]; /* printed as it stands */
} AT_VTS_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_VTS_SET_PARA_T) == 10);

/* AT+ZVOCLOOPBK=<text> */
typedef struct {
    char text[10]; /* finished parameters, printed as they stand */
} AT_ZVOCLOOPBK_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZVOCLOOPBK_SET_PARA_T) == 10);

/* AT+CLVL=<level> and +CLVL: <level>; AT+CMVL=<level> and +CMVL: <level> */
typedef struct {
    int32_t level; /* volume, the modem's own range */
} AT_CLVL_SET_PARA_T;
typedef AT_CLVL_SET_PARA_T AT_CLVL_READ_RES_PARA_T;
typedef AT_CLVL_SET_PARA_T AT_CMVL_SET_PARA_T;
typedef AT_CLVL_SET_PARA_T AT_CMVL_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CLVL_SET_PARA_T) == 4);

/* AT+ZCALL=, whose line never carries it, and +ZCALL: <value> */
typedef struct {
    char value[1]; /* one character, without a NUL */
} AT_ZCALL_SET_PARA_T;
typedef AT_ZCALL_SET_PARA_T AT_ZCALL_EXEC_RES_PARA_T;
typedef AT_ZCALL_SET_PARA_T AT_ZCALL_SET_RES_PARA_T;
typedef AT_ZCALL_SET_PARA_T AT_ZCALL_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZCALL_SET_PARA_T) == 1);

/* AT+CCFC=<reason>,<mode>, and for mode 3 also ,<number>,<type>,<classx>; for reason 2 then ,0,0,<time> */
typedef struct {
    int32_t reason;  /* 0 always, 1 busy, 2 no reply, 3 not reachable, 4 all, 5 all but always */
    int32_t mode;    /* 0 disable, 1 enable, 2 query, 3 register, 4 erase */
    char number[32]; /* forward to; printed without quotation marks */
    int32_t type;    /* not read: the server puts 145 for a number that begins with "+", else 129 */
    int32_t classx;  /* sum of 1 voice, 2 data, 4 fax, ... */
    int32_t time;    /* seconds without a reply */
} AT_CCFC_SET_PARA_T;
AT_ASSERT_LAYOUT(offsetof(AT_CCFC_SET_PARA_T, number) == 8);
AT_ASSERT_LAYOUT(offsetof(AT_CCFC_SET_PARA_T, type) == 40);
AT_ASSERT_LAYOUT(sizeof(AT_CCFC_SET_PARA_T) == 52);

/* One line of the answer to a query: +CCFC: <status>,<classx>[,<number>,<type>[,,,<time>]]. An answer that is
 * a result alone has the length 2 and no record. */
typedef struct {
    int32_t status; /* 0 not active, 1 active */
    int32_t classx;
    char number[32]; /* at most 31 characters */
    int32_t type;    /* 145 international, 129 other */
    int32_t time;    /* seconds */
} AT_CCFC_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(offsetof(AT_CCFC_SET_RES_PARA_T, number) == 8);
AT_ASSERT_LAYOUT(offsetof(AT_CCFC_SET_RES_PARA_T, type) == 40);
AT_ASSERT_LAYOUT(sizeof(AT_CCFC_SET_RES_PARA_T) == 48);

/* AT+CCWA=<n>,<mode> */
typedef struct {
    int32_t n;    /* 1 reports of waiting calls */
    int32_t mode; /* 0 disable, 1 enable, 2 query */
} AT_CCWA_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CCWA_SET_PARA_T) == 8);

/* +CCWA: <wait_status>,<type>. An answer that is a result alone has the length 2 and no record; the answer to
 * a read is zeros. */
typedef struct {
    int32_t wait_status; /* 0 not active, 1 active */
    int32_t type;        /* the class: sum of 1 voice, 2 data, 4 fax, ... */
} AT_CCWA_SET_RES_PARA_T;
typedef AT_CCWA_SET_RES_PARA_T AT_CCWA_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CCWA_SET_RES_PARA_T) == 8);

/* AT+CLIP=<n>, AT+CLIR=<n> and +CLIP: <n> */
typedef struct {
    int32_t n; /* of +CLIP: 1 reports of the caller's number; of +CLIR: 0 as subscribed, 1 hide, 2 show */
} AT_CLIP_SET_PARA_T;
typedef AT_CLIP_SET_PARA_T AT_CLIP_READ_RES_PARA_T;
typedef AT_CLIP_SET_PARA_T AT_CLIR_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CLIP_SET_PARA_T) == 4);

/* AT+CHLD=<n> */
typedef struct {
    int32_t n; /* 0 release held calls, 1 release active ones, 2 swap, 3 join, 4 transfer */
} AT_CHLD_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CHLD_SET_PARA_T) == 4);

/* The answer to AT+CHLD?: zeros */
typedef struct {
    int32_t value1;
    int32_t value2;
} AT_CHLD_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CHLD_READ_RES_PARA_T) == 8);

/* ZVCONNECT: <state>, only reported */
typedef struct {
    int32_t state; /* 0 no call, 1 call over 2G or 3G, 2 call over LTE */
} AT_ZVCONNECT_NOTIFY_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZVCONNECT_NOTIFY_RES_PARA_T) == 4);
/* One call: +CLCC: <id>,<dir>,<stat>,<mode>,<mpty>[,<number>,<type>[,<extra1>,<extra2>]] */
typedef struct {
    int32_t id;
    int32_t dir;     /* 0 we call, 1 we are called */
    int32_t stat;    /* 0 active, 1 held, 2 dialling, 3 alerting, 4 incoming, 5 waiting */
    int32_t mode;    /* 0 voice, 1 data, 2 fax */
    int32_t mpty;    /* 1 part of a conference */
    char number[32]; /* at most 31 characters */
    int32_t type;    /* 145 international, 129 other */
    int32_t extra1;  /* the modem's own */
    int32_t extra2;
} AT_CLCC_CALL_T;
AT_ASSERT_LAYOUT(sizeof(AT_CLCC_CALL_T) == 64);

/* The answer to AT+CLCC. A read's answer carries the first 634 bytes; an execute's is the content of
 * /etc_rw/config/clcclist, written when there is a call at all. */
typedef struct {
    int32_t count; /* 0..20 */
    AT_CLCC_CALL_T calls[20];
} AT_CLCC_READ_RES_PARA_T;
typedef AT_CLCC_READ_RES_PARA_T AT_CLCC_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CLCC_READ_RES_PARA_T) == 1284);

/* AT+CUSD=<n>,<str>,<dcs>, or AT+CUSD=2 to end the dialogue */
typedef struct {
    int32_t n;
    char str[36]; /* printed as it stands: quotation marks are the requester's */
    int32_t dcs;  /* data coding scheme */
} AT_CUSD_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CUSD_SET_PARA_T) == 44);

/* +CUSD: <mode>[,"<str>",<type>]. Larger than a message: it is the content of /etc/cusd. */
typedef struct {
    int32_t mode;  /* 0 the dialogue is over, 1 the network waits for an answer, 2 the network ended it */
    char str[816]; /* at most 815 characters */
    int32_t type;  /* data coding scheme */
} AT_CUSD_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CUSD_SET_RES_PARA_T) == 824);

#ifdef __cplusplus
}
#endif

#endif
