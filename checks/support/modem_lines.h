#ifndef AT_CHECKS_SUPPORT_MODEM_LINES_H
#define AT_CHECKS_SUPPORT_MODEM_LINES_H

#include <stdint.h>

#include <iterator>
#include <string>

#include "checks/support/plain_framing.h"

// Text of lines as modems send them, whole and damaged.
inline std::string ModemLines(RandomText& random, unsigned most) {
    static const char* const kLines[] = {
        "+CSQ: 20,99\r\n",
        "OK\r\n",
        "\r\n",
        "ERROR\r\n",
        "+CREG: 1\r\n",
        "+CREG: 1,5\r\n",
        "^NEWS: 4\r\n",
        "07911326\r\n",
        "+CBM: 8\r\n",
        "+CDS: 8\r\n",
        "RING\r\n",
        "+CMTI: \"SM\",3\r\n",
        "+CMGL: 1,1,,23\r\n",
        "+CMGL: 2,0,,24\r\n",
        "356938035643809\r\n",
        "+CFUN: 1\r\n",
        "+CME ERROR: 10\r\n",
        "> ",
        "VOICE NO CARRIER: 3\r\n",
        "+ZGIPDNS: 1\r\n",
        "+CLIP: \"5550123\",129\r\n",
        "BUSY\r\n",
        "+CCFC: 0,1\r\n",
        "+CUSD: 0,\"a\r\nb\"\r\n",
        "^RSSI:12\r\n",
        "+RINGBACK: 1\r\n",
        "AT+CSQ\r\r\n",
        "+CEREG: 5\r\n",
        "^CONN:1,0\r\n",
        "\"",
    };
    std::string text;
    for (unsigned count = random.Below(most + 1); count > 0; --count) {
        if (random.Below(12) == 0)
            text += random.Next(3);
        else
            text += kLines[random.Below(std::size(kLines))];
        if (random.Below(30) == 0 && !text.empty())
            text.erase(random.Below(static_cast<unsigned>(text.size())), 1);
    }
    for (char& c : text)
        if (c == '\0') c = ' ';
    return text;
}

// A command that may be pending; 0 for none.
inline uint16_t AnyPending(RandomText& random) {
    static constexpr uint16_t kPending[] = {0,      0x0604, 0x0106, 0x0603, 0x052D, 0x0513, 0x052B, 0x052C,
                                            0x0532, 0x063E, 0x0118, 0x0001, 0x0108, 0x0401, 0x7777};
    return kPending[random.Below(std::size(kPending))];
}

#endif
