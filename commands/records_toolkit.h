#ifndef AT_COMMANDS_RECORDS_TOOLKIT_H
#define AT_COMMANDS_RECORDS_TOOLKIT_H

/* Parameter records of the SIM toolkit; its reports but +ZUPCI and +ZUEND are text. Usable from C11 and C++;
 * the conventions stand in records_network.h. What the numbers mean is between the SIM's application and the
 * toolkit module. */

#include "records/message.h"

#ifdef __cplusplus
extern "C" {
#endif

/* AT+ZSELM=<value>, AT+ZSELI=<value>, AT+ZBK=<value> */
typedef struct {
    int32_t value; /* what was selected */
} AT_ZSELM_SET_PARA_T;
typedef AT_ZSELM_SET_PARA_T AT_ZSELI_SET_PARA_T;
typedef AT_ZSELM_SET_PARA_T AT_ZBK_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZSELM_SET_PARA_T) == 4);

/* AT+ZINPR=<value>,<text> and AT+ZINKR=<value>,<text>. The line takes 511 characters of both. */
typedef struct {
    int32_t value;
    char text[512]; /* what was put in; printed as it stands */
} AT_ZINPR_SET_PARA_T;
typedef AT_ZINPR_SET_PARA_T AT_ZINKR_SET_PARA_T;
AT_ASSERT_LAYOUT(offsetof(AT_ZINPR_SET_PARA_T, text) == 4);
AT_ASSERT_LAYOUT(sizeof(AT_ZINPR_SET_PARA_T) == 516);

/* AT+ZUTP=<text> */
typedef struct {
    char text[128]; /* finished parameters, printed as they stand */
} AT_ZUTP_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZUTP_SET_PARA_T) == 128);

/* The terminal response,
 * AT+ZUTR=<cmdtype>,<cmdqualifier>,<cmdnum>,<result>,<addresult>,<codemode>,"<inputtxtn>" */
typedef struct {
    int32_t cmdtype; /* type, qualifier and number of the proactive command */
    int32_t cmdqualifier;
    int32_t cmdnum;
    int32_t result;
    char addresult[12]; /* additional result; printed as it stands */
    int32_t codemode;   /* coding of the text */
    char inputtxtn[128];
} AT_ZUTR_SET_PARA_T;
AT_ASSERT_LAYOUT(offsetof(AT_ZUTR_SET_PARA_T, addresult) == 16);
AT_ASSERT_LAYOUT(offsetof(AT_ZUTR_SET_PARA_T, codemode) == 28);
AT_ASSERT_LAYOUT(offsetof(AT_ZUTR_SET_PARA_T, inputtxtn) == 32);
AT_ASSERT_LAYOUT(sizeof(AT_ZUTR_SET_PARA_T) == 160);

/* +ZUPCI, a proactive command of the SIM (0x0630). Only reported, to AT_MODULE_SIM, and then all but cmdtype
 * is filled for 35 alone. */
typedef struct {
    int32_t cmdtype;
    int32_t value[3];
    char txt[512]; /* at most 511 characters */
} AT_ZUPCI_NOTIFY_RES_PARA_T;
AT_ASSERT_LAYOUT(offsetof(AT_ZUPCI_NOTIFY_RES_PARA_T, cmdtype) == 0);
AT_ASSERT_LAYOUT(offsetof(AT_ZUPCI_NOTIFY_RES_PARA_T, value) == 4);
AT_ASSERT_LAYOUT(offsetof(AT_ZUPCI_NOTIFY_RES_PARA_T, txt) == 16);
AT_ASSERT_LAYOUT(sizeof(AT_ZUPCI_NOTIFY_RES_PARA_T) == 528);

/* +ZUEND, the end of a proactive session (0x0632). Only reported, to AT_MODULE_SIM. */
typedef struct {
    int32_t result;
} AT_ZUEND_NOTIFY_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZUEND_NOTIFY_RES_PARA_T) == 4);

#ifdef __cplusplus
}
#endif

#endif
