#ifndef AT_COMMANDS_TIMEOUTS_H
#define AT_COMMANDS_TIMEOUTS_H

#include <stdint.h>

#ifdef __cplusplus
#define AT_CONSTANT_FUNCTION constexpr
#else
#define AT_CONSTANT_FUNCTION static inline
#endif

/* How long a command may take, in seconds: then the server answers in the modem's place. What is asked of the
 * network takes longest. Usable from C11 and C++. */
AT_CONSTANT_FUNCTION unsigned TimeoutSeconds(uint16_t cmd_id) {
    switch (cmd_id) {
        /* Takes no effect on the server, which marks a dial idle before its line is written. */
        case 0x0401: /* D */
            return 60;
        case 0x0612: /* +CGATT */
            return 80;
        case 0x0620: /* +ZGAAT */
        case 0x0623: /* +ZGACT */
        case 0x0624: /* +CGACT */
            return 90;
        case 0x0106: /* +CMGL */
        case 0x010B: /* +CMGD */
            return 120;
        case 0x0108: /* +CMGS */
        case 0x0517: /* +COPS */
            return 180;
        default:
            return 10;
    }
}

#undef AT_CONSTANT_FUNCTION

#endif
