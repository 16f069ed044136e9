#ifndef AT_PORT_COM_H
#define AT_PORT_COM_H

#include <stddef.h>
#include <stdint.h>
#include <termios.h>

// The modem's serial port. Log lines carry "com".

// How the port is set up. All settings but the speed are ASCII digits, not numbers.
struct PORT_INFO_T {
    char cReserved0;       // not read
    uint32_t ulSpeed;      // bit/s: 2400 to 115200; anything else runs at 9600
    char cDataBits;        // '5' to '8'
    char acReserved9[2];   // not read
    char cFlowControl;     // '0' none, '1' RTS/CTS, '2' XON/XOFF
    char cDevice;          // '0' to '2': /dev/ttyUSB0 to /dev/ttyUSB2; opening does not look at it
    char cParity;          // '0' none, '1' even, '2' odd
    char cStopBits;        // '2' two, anything else one
    char acReserved15[5];  // not read
};
static_assert(offsetof(PORT_INFO_T, ulSpeed) == 4 && offsetof(PORT_INFO_T, cDataBits) == 8);
static_assert(offsetof(PORT_INFO_T, cFlowControl) == 11 && offsetof(PORT_INFO_T, cDevice) == 12);
static_assert(offsetof(PORT_INFO_T, cParity) == 13 && offsetof(PORT_INFO_T, cStopBits) == 14);
static_assert(sizeof(PORT_INFO_T) == 20);

// 115200 bit/s, 8 data bits, no parity, one stop bit, RTS/CTS. Never written after start-up.
extern PORT_INFO_T g_sPortInfo;

// The open descriptor, -1 before. Set by PortInit before the response thread starts, then only read.
extern int32_t g_iFdCom;

// Opens /dev/ttyUSB1 into g_iFdCom and applies g_sPortInfo. 0, or -1 when the device cannot be opened.
// Settings that the device refuses do not count as a failure.
int PortInit();

// Path of the device with the given letter, or null (logged).
const char* PortDeviceName(char letter);

// The line settings that `info` asks for, from nothing: they inherit nothing from the device.
void PortBuildSettings(const PORT_INFO_T& info, termios& settings);

// Throws away pending input and applies `info` at once. Result of tcsetattr.
int PortApplySettings(int fd, const PORT_INFO_T& info);

// Writes `len` bytes with one write. `len`, or -1 after a short or failed write, whose pending output is
// thrown away.
int PortSend(int fd, const char* buf, unsigned len);

// Waits up to 200 microseconds for input, then reads at most `size` bytes. Bytes read, 0 when nothing is
// waiting, or what read() returned. The last argument is not used.
int PortRecv(int fd, char* buf, unsigned size, uint32_t unused = 0);

void PortClose(int fd);

#endif
