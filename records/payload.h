#ifndef AT_RECORDS_PAYLOAD_H
#define AT_RECORDS_PAYLOAD_H

#include "records/message.h"

/* The payload of a message as what it is. It stands at a multiple of 4 in the record, so its 16-bit fields
 * are aligned; the parameters behind them are not aligned for 32-bit integers. Usable from C11 and C++: C++
 * has references and keeps const, C has pointers. */

#ifdef __cplusplus

static_assert(offsetof(MSG_BUF, aucDataBuf) % alignof(_BK_AT_RES_T) == 0);
static_assert(offsetof(MSG_BUF, aucDataBuf) % alignof(_BK_AT_CMD_T) == 0);

inline _BK_AT_CMD_T& RequestOf(MSG_BUF& message) {
    return *static_cast<_BK_AT_CMD_T*>(static_cast<void*>(message.aucDataBuf));
}
inline const _BK_AT_CMD_T& RequestOf(const MSG_BUF& message) {
    return *static_cast<const _BK_AT_CMD_T*>(static_cast<const void*>(message.aucDataBuf));
}
inline _BK_AT_RES_T& ResponseOf(MSG_BUF& message) {
    return *static_cast<_BK_AT_RES_T*>(static_cast<void*>(message.aucDataBuf));
}
inline const _BK_AT_RES_T& ResponseOf(const MSG_BUF& message) {
    return *static_cast<const _BK_AT_RES_T*>(static_cast<const void*>(message.aucDataBuf));
}

#else

/* The request that `message` carries. */
static inline _BK_AT_CMD_T* RequestOf(MSG_BUF* message) {
    return (_BK_AT_CMD_T*)(void*)message->aucDataBuf;
}
/* The answer or report that `message` carries. */
static inline _BK_AT_RES_T* ResponseOf(MSG_BUF* message) {
    return (_BK_AT_RES_T*)(void*)message->aucDataBuf;
}

#endif

#endif
