#ifndef AT_COMMANDS_RECORDS_CALLS_H
#define AT_COMMANDS_RECORDS_CALLS_H

/* Parameter records of calls and supplementary services. Usable from C11 and C++; the conventions stand in
 * records_network.h. */

#include "records/message.h"

#ifdef __cplusplus
extern "C" {
#endif

/* AT+CLVL=<level> and +CLVL: <level> */
typedef struct {
    int32_t level; /* loudspeaker volume, the modem's own range */
} AT_CLVL_SET_PARA_T;
typedef AT_CLVL_SET_PARA_T AT_CLVL_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CLVL_SET_PARA_T) == 4);

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
