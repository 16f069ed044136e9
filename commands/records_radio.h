#ifndef AT_COMMANDS_RECORDS_RADIO_H
#define AT_COMMANDS_RECORDS_RADIO_H

/* Parameter records of radio modes and bands. Usable from C11 and C++; the conventions stand in
 * records_network.h. */

#include "records/message.h"

#ifdef __cplusplus
extern "C" {
#endif

/* AT+CFUN=<fun> and +CFUN: <fun> */
typedef struct {
    int32_t fun; /* 0 minimum, 1 full, 4 radio off */
} AT_CFUN_SET_PARA_T;
typedef AT_CFUN_SET_PARA_T AT_CFUN_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CFUN_SET_PARA_T) == 4);

/* AT^SYSCONFIG=<cm_mode>,<rband>,<value3>,<value4> and ^SYSCONFIG: with the same */
typedef struct {
    int32_t cm_mode;
    int32_t rband;
    int32_t value3;
    int32_t value4;
} AT_SYSCONFIG_SET_PARA_T;
typedef AT_SYSCONFIG_SET_PARA_T AT_SYSCONFIG_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_SYSCONFIG_SET_PARA_T) == 16);

/* AT^SYSCFG=<value1>,<value2>,<band>,<value3>,<value4> and ^SYSCFG: with the same */
typedef struct {
    int32_t value1;
    int32_t value2;
    char band[32]; /* printed as it stands; read with at most 31 characters */
    int32_t value3;
    int32_t value4;
} AT_SYSCFG_SET_PARA_T;
typedef AT_SYSCFG_SET_PARA_T AT_SYSCFG_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_SYSCFG_SET_PARA_T) == 48);

/* AT^PREFMODE=<mode> and ^PREFMODE: <mode> */
typedef struct {
    int32_t mode;
} AT_PREFMODE_SET_PARA_T;
typedef AT_PREFMODE_SET_PARA_T AT_PREFMODE_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_PREFMODE_SET_PARA_T) == 4);

/* AT$PREFNETTYPE=<type> and $PREFNETTYPE: <type> */
typedef struct {
    int32_t type;
} AT_PREFNETTYPE_SET_PARA_T;
typedef AT_PREFNETTYPE_SET_PARA_T AT_PREFNETTYPE_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_PREFNETTYPE_SET_PARA_T) == 4);

/* $QCSYSMODE: <mode>, the text as the modem sent it */
typedef struct {
    char mode[32]; /* at most 31 characters */
} AT_QCSYSMODE_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_QCSYSMODE_READ_RES_PARA_T) == 32);

/* AT!BAND=<band> */
typedef struct {
    int32_t band;
} AT_BAND_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_BAND_SET_PARA_T) == 4);

/* !BAND: <band>, "<desc>". The comma ends the reading, so desc stays empty. */
typedef struct {
    int32_t band;
    char desc[32];
} AT_BAND_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_BAND_READ_RES_PARA_T) == 36);

/* AT+ZBANDI=<value> */
typedef struct {
    int32_t value;
} AT_ZBANDI_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZBANDI_SET_PARA_T) == 4);

/* AT+ZLOCKBAND=<text>: finished AT syntax */
typedef struct {
    char text[16];
} AT_ZLOCKBAND_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZLOCKBAND_SET_PARA_T) == 16);

/* +ZLOCKBAND: <value>. Not delivered for a SET while configuration key bandmode is "2". */
typedef struct {
    int32_t value;
} AT_ZLOCKBAND_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZLOCKBAND_SET_RES_PARA_T) == 4);

/* AT+ZLOCKF=<band>[,<text>]: the band alone while configuration key bandmode is "4". */
typedef struct {
    char band[16];
    char text[16];
} AT_ZLOCKF_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZLOCKF_SET_PARA_T) == 32);

/* +ZLOCKF: <value1>[,<value2>]; a SET is answered with the first alone. */
typedef struct {
    int32_t value1;
    int32_t value2;
} AT_ZLOCKF_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZLOCKF_SET_RES_PARA_T) == 8);

/* AT+ZNLOCKBAND=<value1>,<value2>,<mask1>,<mask2>; masks in hexadecimal, one bit for each band */
typedef struct {
    int32_t value1;
    int32_t value2;
    uint64_t mask1;
    uint64_t mask2;
} AT_ZNLOCKBAND_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZNLOCKBAND_SET_PARA_T) == 24);

/* +ZNLOCKBAND: <mask1>,<mask2> */
typedef struct {
    uint64_t mask1;
    uint64_t mask2;
} AT_ZNLOCKBAND_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZNLOCKBAND_READ_RES_PARA_T) == 16);

/* AT+ZRAP=<value> */
typedef struct {
    int32_t value;
} AT_ZRAP_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZRAP_SET_PARA_T) == 4);

/* +ZRAP: <value1>,<value2>,<value3>,<value4> for a SET */
typedef struct {
    int32_t value1;
    int32_t value2;
    int32_t value3;
    int32_t value4;
} AT_ZRAP_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZRAP_SET_RES_PARA_T) == 16);

/* +ZRAP: <value1>,<value2>,<value3>,<value4>,<value5> for a READ */
typedef struct {
    int32_t value1;
    int32_t value2;
    int32_t value3;
    int32_t value4;
    int32_t value5;
} AT_ZRAP_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZRAP_READ_RES_PARA_T) == 20);

/* AT^DDTM=<value1>,<value2> and ^DDTM: <value1>,<value2> */
typedef struct {
    int32_t value1;
    int32_t value2;
} AT_DDTM_SET_PARA_T;
typedef AT_DDTM_SET_PARA_T AT_DDTM_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_DDTM_SET_PARA_T) == 8);

/* ^DRAP: <value1>,<value2>,<value3>,<value4> */
typedef struct {
    int32_t value1;
    int32_t value2;
    int32_t value3;
    int32_t value4;
} AT_DRAP_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_DRAP_EXEC_RES_PARA_T) == 16);

/* AT%IPSYS=<value1>,<value2> and %IPSYS: <value1>,<value2> */
typedef struct {
    int32_t value1;
    int32_t value2;
} AT_IPSYS_SET_PARA_T;
typedef AT_IPSYS_SET_PARA_T AT_IPSYS_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_IPSYS_SET_PARA_T) == 8);

/* +ZPOWERMODE: <mode> */
typedef struct {
    int32_t mode;
} AT_ZPOWERMODE_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZPOWERMODE_READ_RES_PARA_T) == 4);

/* +ZSLEEPMOD: <mode> */
typedef struct {
    int32_t mode;
} AT_ZSLEEPMOD_EXEC_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZSLEEPMOD_EXEC_RES_PARA_T) == 4);

#ifdef __cplusplus
}
#endif

#endif
