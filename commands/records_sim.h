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

#ifdef __cplusplus
}
#endif

#endif
