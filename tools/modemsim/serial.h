#ifndef AT_TOOLS_MODEMSIM_SERIAL_H
#define AT_TOOLS_MODEMSIM_SERIAL_H

// The settings of a serial line as text, "115200 8N1 rtscts", and as the system has them.

#include <termios.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace modemsim {

struct LineSettings {
    enum class Flow { None, RtsCts, XonXoff };
    std::uint32_t speed = 115200;  // bit/s; 0 when it is none of those that a modem could run at
    char data_bits = '8';          // '5' to '8'
    char parity = 'N';             // 'N' none, 'E' even, 'O' odd
    char stop_bits = '1';          // '1' or '2'
    Flow flow = Flow::RtsCts;      // without changes all this is what the daemon sets

    bool operator==(const LineSettings&) const = default;
};

// nullopt and a reason when it is none.
std::optional<LineSettings> ReadLineSettings(std::string_view text, std::string& reason);

std::string SettingsText(const LineSettings& settings);

// What a program that set its port up so wants of the line.
LineSettings SettingsOf(const termios& port);

// Sets `port` up for the modem: nothing is translated, echoed or held back, and the modem's carrier line
// does not count. A speed of 0 leaves the speed as it is.
void Apply(const LineSettings& settings, termios& port);

}  // namespace modemsim

#endif
