#ifndef AT_CHECKS_BENCH_SAMPLES_H
#define AT_CHECKS_BENCH_SAMPLES_H

#include <stddef.h>
#include <stdint.h>

#include <string>

// What a modem sends.

inline const std::string kShortAnswer = "\r\n+CSQ: 20,99\r\n\r\nOK\r\n";

// 80 messages of 340 characters each, about 28 kB with their heads.
inline std::string MessageList() {
    std::string pdu = "0891683110304105F0240D91683176116125F300080130210150152396";
    for (unsigned i = 0; pdu.size() < 320; ++i)
        pdu += "0123456789ABCDEF"[i * 7 % 16];
    std::string text;
    for (int i = 0; i < 80; ++i)
        text += "\r\n+CMGL: " + std::to_string(i) + ",1,,152\r\n" + pdu;
    return text + "\r\n\r\nOK\r\n";
}

// Text of an answer to +CMGL that never ends.
inline std::string Endless(size_t size) {
    std::string text;
    const std::string list = MessageList();
    while (text.size() < size)
        text += list.substr(0, list.size() - 8);
    return text.substr(0, size);
}

// Reports as they arrive while a modem searches for its network and calls come in.
inline std::string Storm(int count) {
    static const std::string kReports[] = {"\r\nRING\r\n", "\r\n+CREG: 1\r\n", "\r\n+CMTI: \"SM\",3\r\n",
                                           "\r\n^NEWS:1\r\n", "\r\n+CGREG: 5\r\n"};
    std::string text;
    for (int i = 0; i < count; ++i)
        text += kReports[i % 5];
    return text;
}

// Puts a request in flight, as one of a module that exists.
void Pend(uint16_t id, uint8_t type);

#endif
