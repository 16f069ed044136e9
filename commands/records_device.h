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

#ifdef __cplusplus
}
#endif

#endif
