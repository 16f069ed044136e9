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

/* AT+CSCA="<sca>" */
typedef struct {
    char sca[64]; /* address of the service centre */
} AT_CSCA_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CSCA_SET_PARA_T) == 64);

/* +CSCA: "<sca>",<tosca> */
typedef struct {
    char sca[36];   /* at most 32 characters */
    char tosca[36]; /* type of the address: "145" international, "129" other; at most 32 characters */
} AT_CSCA_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(offsetof(AT_CSCA_READ_RES_PARA_T, tosca) == 36);
AT_ASSERT_LAYOUT(sizeof(AT_CSCA_READ_RES_PARA_T) == 72);

/* AT+CMGS=<length>; the PDU goes out at the modem's prompt. */
typedef struct {
    int32_t length; /* of the PDU without its service centre address, octets */
    char pdu[500];  /* hexadecimal */
} AT_CMGS_SET_PARA_T;
AT_ASSERT_LAYOUT(offsetof(AT_CMGS_SET_PARA_T, pdu) == 4);
AT_ASSERT_LAYOUT(sizeof(AT_CMGS_SET_PARA_T) == 504);

/* +CMGS: <mr>[,<ackpdu>] */
typedef struct {
    int32_t mr;       /* message reference */
    char ackpdu[504]; /* acknowledgement, hexadecimal; at most 500 characters */
} AT_CMGS_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(offsetof(AT_CMGS_SET_RES_PARA_T, ackpdu) == 4);
AT_ASSERT_LAYOUT(sizeof(AT_CMGS_SET_RES_PARA_T) == 508);

/* AT+CMGW=<length>,<stat>; the PDU goes out at the modem's prompt. */
typedef struct {
    int32_t length; /* of the PDU without its service centre address, octets */
    int32_t stat;   /* 0 unread, 1 read, 2 unsent, 3 sent */
    char pdu[500];  /* hexadecimal */
} AT_CMGW_SET_PARA_T;
AT_ASSERT_LAYOUT(offsetof(AT_CMGW_SET_PARA_T, pdu) == 8);
AT_ASSERT_LAYOUT(sizeof(AT_CMGW_SET_PARA_T) == 508);

/* +CMGW: <index> */
typedef struct {
    int32_t index; /* place in the storage */
} AT_CMGW_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CMGW_SET_RES_PARA_T) == 4);

/* AT+ZTAG=<value1>,<value2> */
typedef struct {
    int32_t value1; /* the modem's own */
    int32_t value2;
} AT_ZTAG_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZTAG_SET_PARA_T) == 8);

/* AT+CNMI=<mode>,<mt>,<bm>,<ds>,<bfr> and +CNMI: the same */
typedef struct {
    int32_t mode; /* how reports reach us while the line is busy: 0 buffered ... 2 buffered, then sent */
    int32_t mt;   /* new messages: 0 none, 1 their place, 2 themselves, 3 class 3 themselves */
    int32_t bm;   /* cell broadcast: 0 none, 2 itself */
    int32_t ds;   /* status reports: 0 none, 1 themselves, 2 their place */
    int32_t bfr;  /* what is buffered when mode changes: 0 sent, 1 cleared */
} AT_CNMI_SET_PARA_T;
typedef AT_CNMI_SET_PARA_T AT_CNMI_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CNMI_SET_PARA_T) == 20);

/* AT+CMMS=<mode> */
typedef struct {
    int32_t mode; /* keep the link between messages: 0 no, 1 until a pause, 2 always */
} AT_CMMS_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CMMS_SET_PARA_T) == 4);

/* +ZVMAIL: <flag>[,...] */
typedef struct {
    int32_t flag; /* 1 voice mail is waiting */
} AT_ZVMAIL_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZVMAIL_READ_RES_PARA_T) == 4);

/* A new message: +CMTI (0x0110), +ZVMTI (0x0117), +CDSI (0x0112): "<memory>",<index>. Only reported, to
 * AT_MODULE_SMS. */
typedef struct {
    char memory[12]; /* storage that holds it, at most 10 characters */
    int32_t index;   /* place there */
} AT_CMTI_NOTIFY_RES_PARA_T;
typedef AT_CMTI_NOTIFY_RES_PARA_T AT_ZVMTI_NOTIFY_RES_PARA_T;
typedef AT_CMTI_NOTIFY_RES_PARA_T AT_CDSI_NOTIFY_RES_PARA_T;
AT_ASSERT_LAYOUT(offsetof(AT_CMTI_NOTIFY_RES_PARA_T, memory) == 0);
AT_ASSERT_LAYOUT(offsetof(AT_CMTI_NOTIFY_RES_PARA_T, index) == 12);
AT_ASSERT_LAYOUT(sizeof(AT_CMTI_NOTIFY_RES_PARA_T) == 16);

/* +ZCLAS: <length>,<pdu>, a class 0 message (0x0521). Only reported, to AT_MODULE_SMS. */
typedef struct {
    int32_t length; /* octets of the PDU */
    char pdu[500];  /* hexadecimal, at most 499 characters */
} AT_ZCLAS_NOTIFY_RES_PARA_T;
AT_ASSERT_LAYOUT(offsetof(AT_ZCLAS_NOTIFY_RES_PARA_T, length) == 0);
AT_ASSERT_LAYOUT(offsetof(AT_ZCLAS_NOTIFY_RES_PARA_T, pdu) == 4);
AT_ASSERT_LAYOUT(sizeof(AT_ZCLAS_NOTIFY_RES_PARA_T) == 504);

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

/* AT+CMGR=<index> */
typedef struct {
    int32_t index; /* place in the storage */
} AT_CMGR_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CMGR_SET_PARA_T) == 4);

/* +CMGR: [<stat>],[<alpha>],<length> and the PDU in the next line. The message carries the first 512 bytes,
 * 464 characters of the PDU; a longer one has no NUL there. */
typedef struct {
    int32_t reserved; /* 0 */
    int32_t stat;     /* 0 unread, 1 read, 2 unsent, 3 sent, 5 not told */
    char alpha[36];   /* name of the other party, at most 32 characters */
    int32_t length;   /* of the PDU without its service centre address, octets */
    char pdu[704];    /* hexadecimal, at most 700 characters */
} AT_CMGR_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(offsetof(AT_CMGR_SET_RES_PARA_T, alpha) == 8);
AT_ASSERT_LAYOUT(offsetof(AT_CMGR_SET_RES_PARA_T, length) == 44);
AT_ASSERT_LAYOUT(offsetof(AT_CMGR_SET_RES_PARA_T, pdu) == 48);
AT_ASSERT_LAYOUT(sizeof(AT_CMGR_SET_RES_PARA_T) == 752);

/* One message of a list: +CMGL: <index>,<stat>,[<alpha>],<length> and the PDU in the next line. */
typedef struct {
    int32_t index;
    int32_t stat;
    char alpha[264]; /* at most 260 characters */
    int32_t length;  /* of the PDU without its service centre address, octets */
    char pdu[356];   /* hexadecimal, at most 355 characters */
} AT_CMGL_MESSAGE_T;
AT_ASSERT_LAYOUT(offsetof(AT_CMGL_MESSAGE_T, alpha) == 8);
AT_ASSERT_LAYOUT(offsetof(AT_CMGL_MESSAGE_T, length) == 272);
AT_ASSERT_LAYOUT(offsetof(AT_CMGL_MESSAGE_T, pdu) == 276);
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
