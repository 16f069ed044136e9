#ifndef AT_COMMANDS_RECORDS_SIM_H
#define AT_COMMANDS_RECORDS_SIM_H

/* Parameter records of the SIM, PINs and locks. Usable from C11 and C++; the conventions stand in
 * records_network.h. */

#include "records/message.h"

#ifdef __cplusplus
extern "C" {
#endif

/* AT+CPIN="<pin>"[,"<new_pin>"]; with a new PIN, the first one is a PUK. */
typedef struct {
    char pin[32];
    char new_pin[32];
} AT_CPIN_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CPIN_SET_PARA_T) == 64);

/* +CPIN: <status>, such as READY or SIM PIN; the text as the modem sent it. */
typedef struct {
    char status[32]; /* at most 31 characters */
} AT_CPIN_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CPIN_READ_RES_PARA_T) == 32);

/* The bare answer to AT+CIMI */
typedef struct {
    char imsi[36]; /* at most 32 characters */
} AT_CIMI_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CIMI_EXEC_RES_PARA_T) == 36);

/* AT+CPWD="<fac>","<old_pwd>","<new_pwd>" */
typedef struct {
    char fac[10]; /* facility: "SC", ... */
    char old_pwd[10];
    char new_pwd[10];
} AT_CPWD_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CPWD_SET_PARA_T) == 30);

/* AT+CLCK="<fac>",<mode>[,"<passwd>"] */
typedef struct {
    char fac[12]; /* facility: "SC", "PN", ... */
    int32_t mode; /* 0 unlock, 1 lock, 2 query */
    char passwd[12];
} AT_CLCK_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CLCK_SET_PARA_T) == 28);

/* +CLCK: <status>,<class>. An answer that is "OK" alone has length 2 and no record. */
typedef struct {
    int32_t status;        /* 0 not active, 1 active */
    int32_t service_class; /* a bit for each class of services */
} AT_CLCK_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CLCK_SET_RES_PARA_T) == 8);

/* AT+ZNCK="<code>" */
typedef struct {
    char code[32]; /* unlock code */
} AT_ZNCK_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZNCK_SET_PARA_T) == 32);

/* +ZNCK: <value> */
typedef struct {
    int32_t value;
} AT_ZNCK_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZNCK_SET_RES_PARA_T) == 4);

/* AT+CRSM=<command>,<file_id>,<p1>,<p2>,<p3> */
typedef struct {
    int32_t command;
    int32_t file_id;
    int32_t p1;
    int32_t p2;
    int32_t p3;
} AT_CRSM_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CRSM_SET_PARA_T) == 20);

/* +CRSM: <sw1>,<sw2>[,"<response>"] */
typedef struct {
    int32_t sw1; /* status bytes of the SIM */
    int32_t sw2;
    char response[64]; /* hexadecimal, at most 34 characters */
} AT_CRSM_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CRSM_SET_RES_PARA_T) == 72);

/* +ZLKLIST: <text>, as the modem sent it. The message announces 128 bytes whatever the text. */
typedef struct {
    char text[512]; /* at most 511 characters */
} AT_ZLKLIST_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZLKLIST_READ_RES_PARA_T) == 512);

/* +ZPINPUK: <value1>,<value2> */
typedef struct {
    int32_t value1;
    int32_t value2;
} AT_ZPINPUK_TEST_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZPINPUK_TEST_RES_PARA_T) == 8);

/* +ZSEC: <value1>,<value2> */
typedef struct {
    int32_t value1;
    int32_t value2;
} AT_ZSEC_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZSEC_EXEC_RES_PARA_T) == 8);

/* +ZUSIM: <value>, and +ZUSIMR: <value>, reported */
typedef struct {
    int32_t value;
} AT_ZUSIM_EXEC_RES_PARA_T;
typedef AT_ZUSIM_EXEC_RES_PARA_T AT_ZUSIMR_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZUSIM_EXEC_RES_PARA_T) == 4);

/* ^CPIN: READY,<retr_times>,... or ^CPIN: <text>,<retr_times>,...: attempts left. Empty fields move the
 * others forward with the module's own data cards. */
typedef struct {
    int32_t retr_times; /* for what is asked now */
    int32_t num_puk1;
    int32_t num_pin1;
    int32_t num_puk2;
    int32_t num_pin2;
} AT_CPIN_V_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CPIN_V_READ_RES_PARA_T) == 20);

/* +CPINC: <PinNum1>,<PinNum2>,<PukNum1>,<PukNum2>: attempts left */
typedef struct {
    int32_t PinNum1;
    int32_t PinNum2;
    int32_t PukNum1;
    int32_t PukNum2;
} AT_CPINC_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CPINC_EXEC_RES_PARA_T) == 16);

/* %PINNUM: <value1>,<value2>,<value3>,<value4> */
typedef struct {
    int32_t value1;
    int32_t value2;
    int32_t value3;
    int32_t value4;
} AT_PINNUM_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_PINNUM_READ_RES_PARA_T) == 16);

/* AT+ZUINIT=<value1>,<value2>,<value3>,<value4> */
typedef struct {
    int32_t value1;
    int32_t value2;
    int32_t value3;
    int32_t value4;
} AT_ZUINIT_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZUINIT_SET_PARA_T) == 16);

/* +ZUINIT: <uiccstate>,<appmode>,<iccid>,<phase> */
typedef struct {
    int32_t uiccstate;
    int32_t appmode;
    int32_t iccid;
    int32_t phase;
} AT_ZUINIT_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZUINIT_SET_RES_PARA_T) == 16);

/* AT+ZUSTAT=<value> */
typedef struct {
    int32_t value;
} AT_ZUSTAT_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZUSTAT_SET_PARA_T) == 4);

/* +ZURDY: <appmode>,<initresult>, reported */
typedef struct {
    int32_t appmode;
    int32_t initresult;
} AT_ZURDY_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZURDY_RES_PARA_T) == 8);

/* +ZIMSI: <imsi> */
typedef AT_CIMI_EXEC_RES_PARA_T AT_ZIMSI_EXEC_RES_PARA_T;

#ifdef __cplusplus
}
#endif

#endif
