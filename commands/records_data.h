#ifndef AT_COMMANDS_RECORDS_DATA_H
#define AT_COMMANDS_RECORDS_DATA_H

/* Parameter records of the data connection and PDP contexts. Usable from C11 and C++; the conventions stand
 * in records_network.h. */

#include "records/message.h"

#ifdef __cplusplus
extern "C" {
#endif

/* AT+CGDCONT=<cid>,"<PDP_type>",["<APN>"],["<PDP_addr>"],<d_comp>,<h_comp> */
typedef struct {
    int32_t cid;
    char PDP_type[10]; /* "IP", "IPV6", "IPV4V6" or "PPP" */
    char APN[101];
    char PDP_addr[33];
    int32_t d_comp;     /* data compression */
    int32_t h_comp;     /* header compression */
    char reserved[200]; /* not sent */
} AT_CGDCONT_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CGDCONT_SET_PARA_T) == 356);
AT_ASSERT_LAYOUT(offsetof(AT_CGDCONT_SET_PARA_T, d_comp) == 148);

/* AT+CGATT=<state> */
typedef struct {
    int32_t state; /* 0 detach, 1 attach */
} AT_CGATT_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CGATT_SET_PARA_T) == 4);

/* +CGATT: <state>, as decimal text. The message announces 4 bytes whatever the text. */
typedef struct {
    char state[12];
} AT_CGATT_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CGATT_READ_RES_PARA_T) == 12);

/* AT$QCPDPP=<cid>,<auth_type>[,"<text1>","<text2>"]; no texts when auth_type is 0 */
typedef struct {
    int32_t cid;
    int32_t auth_type;
    char text1[64];
    char text2[64];
} AT_QCPDPP_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_QCPDPP_SET_PARA_T) == 136);

/* AT+ZGACT=<value1>,<value2> */
typedef struct {
    int32_t value1;
    int32_t value2;
} AT_ZGACT_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZGACT_SET_PARA_T) == 8);

/* AT+CGACT=<state>,<cid> */
typedef struct {
    int32_t state; /* 0 deactivate, 1 activate */
    int32_t cid;
} AT_CGACT_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CGACT_SET_PARA_T) == 8);

/* AT+ZFLAG=<text>,<value> */
typedef struct {
    char text[12]; /* printed as it stands */
    int32_t value;
} AT_ZFLAG_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZFLAG_SET_PARA_T) == 16);

/* +ZFLAG: <dev>,<n>. The comma ends the reading, so n stays 0. */
typedef struct {
    char dev[12]; /* at most 11 characters */
    int32_t n;
} AT_ZFLAG_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZFLAG_READ_RES_PARA_T) == 16);

/* AT+ZSET="<text>"[,<value>]; the value is left out below 1 */
typedef struct {
    char text[20];
    int32_t value;
} AT_ZSET_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZSET_SET_PARA_T) == 24);

/* +ZSET: "<text>",<value>. An answer that is "OK" alone has no record. */
typedef struct {
    char text[20]; /* at most 19 characters */
    int32_t value;
} AT_ZSET_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZSET_SET_RES_PARA_T) == 24);

/* AT+ZEACT=<value>, AT+ZGAAT=<value>, AT+ZDHCPLEASE=<value> and AT$QCPBMPREF=<value> */
typedef struct {
    int32_t value;
} AT_ZEACT_SET_PARA_T;
typedef AT_ZEACT_SET_PARA_T AT_ZGAAT_SET_PARA_T;
typedef AT_ZEACT_SET_PARA_T AT_ZDHCPLEASE_SET_PARA_T;
typedef AT_ZEACT_SET_PARA_T AT_QCPBMPREF_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZEACT_SET_PARA_T) == 4);

/* AT$QCPDPIMSCFGE=<value1>,<value2>,<value3>,<value4> */
typedef struct {
    int32_t value1;
    int32_t value2;
    int32_t value3;
    int32_t value4;
} AT_QCPDPIMSCFGE_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_QCPDPIMSCFGE_SET_PARA_T) == 16);

/* +ZGIPDNS: <cid1>,<cid_num>,... as the decoder reads it: the comma ends the reading, so that cid1 alone is
 * filled. The report to the connection manager is read another way and carries everything. */
typedef struct {
    int32_t cid_num;
    int32_t cid1;
    char PDP_type[10];
    char PDP_addr[60];
    char gateway[60];
    char primary_dns[60];
    char secondary_dns[60];
    char reserved[2]; /* zero */
} AT_ZGIPDNS_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZGIPDNS_RES_PARA_T) == 260);

/* +ZPBIC: <result>,<opertype>, reported. The comma ends the reading, so opertype stays 0. */
typedef struct {
    int32_t result;
    int32_t opertype;
} AT_ZPBIC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZPBIC_RES_PARA_T) == 8);

/* +ZCONSTAT: <stat>, reported */
typedef struct {
    int32_t stat; /* 0 the connection is down */
} AT_ZCONSTAT_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZCONSTAT_RES_PARA_T) == 4);

/* +CGEV: <event>, reported */
typedef struct {
    char event[32]; /* up to 32 characters, then without a NUL */
} AT_CGEV_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CGEV_RES_PARA_T) == 32);

#ifdef __cplusplus
}
#endif

#endif
