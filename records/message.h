#ifndef AT_RECORDS_MESSAGE_H
#define AT_RECORDS_MESSAGE_H

/* The records that travel between the AT server and the router's modules on System V message queues.
 * Usable from C11 and C++. All fields are in host byte order; messages never leave the machine. */

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define AT_ASSERT_LAYOUT(condition) static_assert(condition, #condition)
extern "C" {
#else
#define AT_ASSERT_LAYOUT(condition) _Static_assert(condition, #condition)
#endif

enum {
    AT_REQUEST_PARAS_SIZE = 632,  /* bytes of parameters that a request can carry */
    AT_RESPONSE_PARAS_SIZE = 634, /* bytes of parameters that an answer or a report can carry */
    AT_DIAL_NUMBER_SIZE = 35,     /* characters of a number to dial that are dialled; the rest is cut */
    AT_WIRE_SIZE = 652            /* bytes of a MSG_BUF that travel: everything behind lMsgType */
};

/* ucCmdType: the form of the command, which decides the suffix of the line sent to the modem. */
enum {
    AT_CMD_TYPE_EXEC = 1, /* AT+X   */
    AT_CMD_TYPE_SET = 2,  /* AT+X=  */
    AT_CMD_TYPE_READ = 3, /* AT+X?  */
    AT_CMD_TYPE_TEST = 4  /* AT+X=? */
};

/* ucResult: how the modem, or the server in its place, answered. Nothing ever leaves the server with result
 * 0. */
enum {
    AT_RESULT_OK = 1,
    AT_RESULT_ERROR = 2,      /* "ERROR" or "not support" */
    AT_RESULT_CMS_ERROR = 3,  /* the parameters hold the error text */
    AT_RESULT_CME_ERROR = 4,  /* the parameters hold the error text */
    AT_RESULT_TIMEOUT = 5,    /* the modem gave no answer in the command's time */
    AT_RESULT_BUSY = 6,       /* "BUSY", or refused while a call or a connection is being set up */
    AT_RESULT_USSD_ERROR = 11 /* "CME ERROR" right after a USSD answer; not a final result */
};

/* Module ids. Each is also the key of that module's message queue. */
enum {
    AT_MODULE_SERVER = 0x1000,
    AT_MODULE_CALL = 0x1002,    /* call events */
    AT_MODULE_SIM = 0x1003,     /* SIM, registration and toolkit text */
    AT_MODULE_SMS = 0x100a,     /* short messages */
    AT_MODULE_TIME = 0x100e,    /* network time */
    AT_MODULE_TOOLKIT = 0x1019, /* SIM toolkit events */
    AT_MODULE_USSD = 0x101c,
    AT_MODULE_DATA = 0x1022 /* data connection */
};

#define AT_MESSAGE_MAGIC 0x3a3a3a3aU /* ulMagic of every message: "::::" */
#define AT_MESSAGE_COMMAND 0x0302U   /* usMsgCmd of every answer and report */

/* A request, as it stands in MSG_BUF.aucDataBuf. */
typedef struct {
    uint16_t usCmdID;                        /* command id, the key into the AT command table */
    uint8_t ucCmdType;                       /* AT_CMD_TYPE_... */
    uint8_t aucReserved[3];                  /* neither read nor written by the server */
    uint16_t usParaLen;                      /* bytes of aucParas that are meant */
    uint8_t aucParas[AT_REQUEST_PARAS_SIZE]; /* the command's parameter record; not aligned for integers */
} _BK_AT_CMD_T;

/* An answer or a report, as it stands in MSG_BUF.aucDataBuf. */
typedef struct {
    uint16_t usCmdID;  /* id of the request that is answered, or of the report */
    uint8_t ucCmdType; /* the request's, copied */
    uint8_t ucResult;  /* AT_RESULT_... */
    uint16_t
        usParaLen; /* size of the record; may exceed aucParas where the record is handed over in a file */
    uint8_t aucParas[AT_RESPONSE_PARAS_SIZE]; /* result record or text; not aligned for integers */
} _BK_AT_RES_T;

/* One message. lMsgType is not part of the 652 bytes handed to the queue calls, where its type is `long`. */
typedef struct {
    int32_t lMsgType;          /* System V message type; an answer carries its request's, a report 1 */
    uint16_t usTargetModuleID; /* receiver, and the key of its queue */
    uint16_t usSourceModuleID; /* sender */
    uint16_t usMsgCmd;         /* AT_MESSAGE_COMMAND in answers and reports */
    uint16_t usDataLen;        /* length word; see docs for what each kind of message carries */
    uint8_t aucDataBuf[640];   /* _BK_AT_CMD_T or _BK_AT_RES_T */
    uint32_t ulMagic;          /* AT_MESSAGE_MAGIC */
} MSG_BUF;

AT_ASSERT_LAYOUT(offsetof(_BK_AT_CMD_T, usCmdID) == 0);
AT_ASSERT_LAYOUT(offsetof(_BK_AT_CMD_T, ucCmdType) == 2);
AT_ASSERT_LAYOUT(offsetof(_BK_AT_CMD_T, aucReserved) == 3);
AT_ASSERT_LAYOUT(offsetof(_BK_AT_CMD_T, usParaLen) == 6);
AT_ASSERT_LAYOUT(offsetof(_BK_AT_CMD_T, aucParas) == 8);
AT_ASSERT_LAYOUT(sizeof(_BK_AT_CMD_T) == 640);

AT_ASSERT_LAYOUT(offsetof(_BK_AT_RES_T, usCmdID) == 0);
AT_ASSERT_LAYOUT(offsetof(_BK_AT_RES_T, ucCmdType) == 2);
AT_ASSERT_LAYOUT(offsetof(_BK_AT_RES_T, ucResult) == 3);
AT_ASSERT_LAYOUT(offsetof(_BK_AT_RES_T, usParaLen) == 4);
AT_ASSERT_LAYOUT(offsetof(_BK_AT_RES_T, aucParas) == 6);
AT_ASSERT_LAYOUT(sizeof(_BK_AT_RES_T) == 640);

AT_ASSERT_LAYOUT(offsetof(MSG_BUF, lMsgType) == 0);
AT_ASSERT_LAYOUT(offsetof(MSG_BUF, usTargetModuleID) == 4);
AT_ASSERT_LAYOUT(offsetof(MSG_BUF, usSourceModuleID) == 6);
AT_ASSERT_LAYOUT(offsetof(MSG_BUF, usMsgCmd) == 8);
AT_ASSERT_LAYOUT(offsetof(MSG_BUF, usDataLen) == 10);
AT_ASSERT_LAYOUT(offsetof(MSG_BUF, aucDataBuf) == 12);
AT_ASSERT_LAYOUT(offsetof(MSG_BUF, ulMagic) == 652);
AT_ASSERT_LAYOUT(sizeof(MSG_BUF) == 656);

#ifdef __cplusplus
}
#endif

#endif
