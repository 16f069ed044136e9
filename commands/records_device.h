#ifndef AT_COMMANDS_RECORDS_DEVICE_H
#define AT_COMMANDS_RECORDS_DEVICE_H

/* Parameter records of device identity and radio status. Usable from C11 and C++; the conventions stand in
 * records_network.h. */

#include "records/message.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The bare answer to AT+CGSN */
typedef struct {
    char sn[32]; /* up to 32 characters, then without a NUL */
} AT_CGSN_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CGSN_EXEC_RES_PARA_T) == 32);

/* +GMR, +CGMR and ^ZVERSION: <version> */
typedef struct {
    char version[68]; /* at most 64 characters */
} AT_GMR_EXEC_RES_PARA_T;
typedef AT_GMR_EXEC_RES_PARA_T AT_CGMR_EXEC_RES_PARA_T;
typedef AT_GMR_EXEC_RES_PARA_T AT_ZVERSION_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_GMR_EXEC_RES_PARA_T) == 68);

/* +ZVN: <text1> [<text2>]; text2 keeps the closing bracket */
typedef struct {
    char text1[68]; /* both: at most 64 characters */
    char text2[68];
} AT_ZVN_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZVN_EXEC_RES_PARA_T) == 136);

/* ^HVER and ^HWVER: "<version>" */
typedef struct {
    char version[68]; /* at most 67 characters */
} AT_HVER_EXEC_RES_PARA_T;
typedef AT_HVER_EXEC_RES_PARA_T AT_HWVER_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_HVER_EXEC_RES_PARA_T) == 68);

/* The bare answer to AT+GSN */
typedef struct {
    char sn[15]; /* up to 15 digits, then without a NUL */
} AT_GSN_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_GSN_EXEC_RES_PARA_T) == 15);

/* The answer to AT+CGMM, as the modem sent it */
typedef struct {
    char model[32]; /* at most 31 characters */
} AT_CGMM_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CGMM_EXEC_RES_PARA_T) == 32);

/* The answer to AT+CGMI, as the modem sent it */
typedef struct {
    char maker[64]; /* at most 63 characters */
} AT_CGMI_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CGMI_EXEC_RES_PARA_T) == 64);

/* +CNUM: ["<name>"],"<number>",<type>: the first word, which is the name where there is one */
typedef struct {
    char number[32]; /* at most 30 characters */
} AT_CNUM_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CNUM_EXEC_RES_PARA_T) == 32);

/* +ZCELLINFO: <value1>,<value2>,<cell>[,<value3>]. With three commas or more the cell is what stands between
 * the second and the last one; value3, and what follows a shorter cell in its array, are then what scanning
 * left. */
typedef struct {
    int32_t value1;
    int32_t value2;
    char cell[20]; /* at most 19 characters */
    int32_t value3;
} AT_ZCELLINFO_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZCELLINFO_READ_RES_PARA_T) == 32);

/* +ZCELLSIGINFO: <text>, as the modem sent it */
typedef struct {
    char text[480]; /* at most 479 characters */
} AT_ZCELLSIGINFO_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZCELLSIGINFO_EXEC_RES_PARA_T) == 480);

/* +ZSINR: <value1>,...,<value8> */
typedef struct {
    int32_t value1;
    int32_t value2;
    int32_t value3;
    int32_t value4;
    int32_t value5;
    int32_t value6;
    int32_t value7;
    int32_t value8;
} AT_ZSINR_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZSINR_EXEC_RES_PARA_T) == 32);

/* +ZAIRINFO: <value1>,<value2> */
typedef struct {
    int32_t value1;
    float value2;
} AT_ZAIRINFO_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZAIRINFO_EXEC_RES_PARA_T) == 8);

/* +ZRTEMP: <value1>,...,<value6> */
typedef struct {
    int32_t value1;
    int32_t value2;
    int32_t value3;
    int32_t value4;
    int32_t value5;
    int32_t value6;
} AT_ZRTEMP_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZRTEMP_EXEC_RES_PARA_T) == 24);

/* +ZCAI: <value> */
typedef struct {
    int32_t value;
} AT_ZCAI_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZCAI_EXEC_RES_PARA_T) == 4);

/* AT+ZLTELC=<value1>[,<value2>,<value3>]: the last two are left out when both are 0; and +ZLTELC: with all */
typedef struct {
    int32_t value1;
    int32_t value2;
    int32_t value3;
} AT_ZLTELC_SET_PARA_T;
typedef AT_ZLTELC_SET_PARA_T AT_ZLTELC_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZLTELC_SET_PARA_T) == 12);

/* AT+ZEMCI=<n> */
typedef struct {
    int32_t n; /* 0 ends the reports */
} AT_ZEMCI_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZEMCI_SET_PARA_T) == 4);

/* AT+TRAFFICWARNING=<value>, AT+ATDOG=<value>, AT+ZAMTMODE=<value>, AT+ZLEDCTRL=<value> and
 * AT+ZIMSR=<value> */
typedef struct {
    int32_t value;
} AT_TRAFFICWARNING_SET_PARA_T;
typedef AT_TRAFFICWARNING_SET_PARA_T AT_ATDOG_SET_PARA_T;
typedef AT_TRAFFICWARNING_SET_PARA_T AT_ZAMTMODE_SET_PARA_T;
typedef AT_TRAFFICWARNING_SET_PARA_T AT_ZLEDCTRL_SET_PARA_T;
typedef AT_TRAFFICWARNING_SET_PARA_T AT_ZIMSR_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_TRAFFICWARNING_SET_PARA_T) == 4);

/* AT+ZDOGREF=<value> and +ZDOGREF: <value> */
typedef struct {
    int32_t value;
} AT_ZDOGREF_SET_PARA_T;
typedef AT_ZDOGREF_SET_PARA_T AT_ZDOGREF_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZDOGREF_SET_PARA_T) == 4);

/* AT+FOTACTR=<value> */
typedef struct {
    int32_t value;
} AT_FOTACTR_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_FOTACTR_SET_PARA_T) == 4);

/* +FOTACTR: <value1>,<value2> */
typedef struct {
    int32_t value1;
    int32_t value2;
} AT_FOTACTR_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_FOTACTR_EXEC_RES_PARA_T) == 8);

/* AT+ZPCMFRE=<value> and +ZPCMFRE: <value> */
typedef struct {
    int32_t value;
} AT_ZPCMFRE_SET_PARA_T;
typedef AT_ZPCMFRE_SET_PARA_T AT_ZPCMFRE_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZPCMFRE_SET_PARA_T) == 4);

/* +ZIMSR: "<text>" */
typedef struct {
    char text[36]; /* at most 32 characters */
} AT_ZIMSR_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZIMSR_EXEC_RES_PARA_T) == 36);

#ifdef __cplusplus
}
#endif

#endif
