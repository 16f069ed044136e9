#ifndef AT_COMMANDS_RECORDS_SMS_H
#define AT_COMMANDS_RECORDS_SMS_H

/* Parameter records of the short message service. Usable from C11 and C++; the conventions stand in
 * records_network.h. */

#include "records/message.h"

#ifdef __cplusplus
extern "C" {
#endif

/* AT+CPMS="<mem1>","<mem2>","<mem3>" */
typedef struct {
    char mem1[10]; /* storage to read and delete from: "SM", "ME", ... */
    char mem2[10]; /* storage to write to and send from */
    char mem3[10]; /* storage for received messages */
} AT_CPMS_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CPMS_SET_PARA_T) == 30);

/* +CPMS: <used1>,<total1>,<used2>,<total2>,<used3>,<total3> */
typedef struct {
    int32_t used1;
    int32_t total1;
    int32_t used2;
    int32_t total2;
    int32_t used3;
    int32_t total3;
} AT_CPMS_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CPMS_SET_RES_PARA_T) == 24);

/* +CPMS: "<mem1>",<used1>,<total1>,"<mem2>",<used2>,<total2>,"<mem3>",<used3>,<total3> */
typedef struct {
    char mem1[12]; /* at most 10 characters */
    int32_t used1;
    int32_t total1;
    char mem2[12];
    int32_t used2;
    int32_t total2;
    char mem3[12];
    int32_t used3;
    int32_t total3;
} AT_CPMS_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CPMS_READ_RES_PARA_T) == 60);

/* AT+CMGF=<mode> and +CMGF: <mode> */
typedef struct {
    int32_t mode; /* 0 PDU, 1 text */
} AT_CMGF_SET_PARA_T;
typedef AT_CMGF_SET_PARA_T AT_CMGF_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CMGF_SET_PARA_T) == 4);

/* AT+CMGD=<index>, <flag> */
typedef struct {
    int32_t index;
    int32_t flag; /* 0 the message at index, 1 to 4 all of a growing set */
} AT_CMGD_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CMGD_SET_PARA_T) == 8);

/* AT+CMGL=<stat> */
typedef struct {
    int32_t stat; /* 0 unread, 1 read, 2 unsent, 3 sent, 4 all */
} AT_CMGL_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CMGL_SET_PARA_T) == 4);

/* One message of a list: +CMGL: <index>,<stat>,[<alpha>],<length> and the PDU in the next line. */
typedef struct {
    int32_t index;
    int32_t stat;
    char alpha[264]; /* at most 260 characters */
    int32_t length;  /* of the PDU without its service centre address, octets */
    char pdu[356];   /* hexadecimal, at most 355 characters */
} AT_CMGL_MESSAGE_T;
AT_ASSERT_LAYOUT(sizeof(AT_CMGL_MESSAGE_T) == 632);

/* The answer to AT+CMGL=. Larger than a message: it is the content of /etc_rw/config/smsbak. */
typedef struct {
    int32_t count; /* 0..80 */
    AT_CMGL_MESSAGE_T smslist[80];
} AT_CMGL_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CMGL_SET_RES_PARA_T) == 50564);

#ifdef __cplusplus
}
#endif

#endif
