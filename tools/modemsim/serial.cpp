#include "tools/modemsim/serial.h"

#include <algorithm>
#include <array>
#include <utility>

#include "tools/modemsim/words.h"

namespace modemsim {

namespace {

constexpr std::array<std::pair<std::uint32_t, speed_t>, 12> kSpeeds = {{
    {2400, B2400},
    {4800, B4800},
    {9600, B9600},
    {19200, B19200},
    {38400, B38400},
    {57600, B57600},
    {115200, B115200},
    {230400, B230400},
    {460800, B460800},
    {921600, B921600},
    {3000000, B3000000},
    {4000000, B4000000},
}};

constexpr std::array<std::pair<LineSettings::Flow, std::string_view>, 3> kFlows = {{
    {LineSettings::Flow::None, "none"},
    {LineSettings::Flow::RtsCts, "rtscts"},
    {LineSettings::Flow::XonXoff, "xonxoff"},
}};

constexpr std::array<tcflag_t, 4> kSizes = {CS5, CS6, CS7, CS8};

}  // namespace

std::optional<LineSettings> ReadLineSettings(std::string_view text, std::string& reason) {
    Words words(text);
    LineSettings settings;
    const auto speed = ReadNumber(words.Next(), 0, kSpeeds.back().first, reason);
    if (!speed) return std::nullopt;
    settings.speed = static_cast<std::uint32_t>(*speed);
    const std::string_view frame = words.Next();
    if (frame.size() != 3 || frame[0] < '5' || frame[0] > '8' ||
        std::string_view("NEO").find(frame[1]) == std::string_view::npos || frame[2] < '1' ||
        frame[2] > '2') {
        reason = Quoted(frame) + " is not a form of characters, such as 8N1";
        return std::nullopt;
    }
    settings.data_bits = frame[0];
    settings.parity = frame[1];
    settings.stop_bits = frame[2];
    const std::string_view name = words.Next();
    const auto* const flow =
        std::find_if(kFlows.begin(), kFlows.end(), [&](const auto& f) { return f.second == name; });
    if (flow == kFlows.end() || !words.AtEnd()) {
        reason = "the settings end with one of none, rtscts, xonxoff, not with " +
                 Quoted(words.AtEnd() ? name : words.Rest());
        return std::nullopt;
    }
    settings.flow = flow->first;
    return settings;
}

std::string SettingsText(const LineSettings& settings) {
    const auto* const flow =
        std::find_if(kFlows.begin(), kFlows.end(), [&](const auto& f) { return f.first == settings.flow; });
    return std::to_string(settings.speed) + " " + settings.data_bits + settings.parity + settings.stop_bits +
           " " + std::string(flow->second);
}

LineSettings SettingsOf(const termios& port) {
    LineSettings settings;
    const auto* const speed = std::find_if(kSpeeds.begin(), kSpeeds.end(),
                                           [&](const auto& s) { return s.second == cfgetospeed(&port); });
    settings.speed = speed == kSpeeds.end() ? 0 : speed->first;
    const auto* const size = std::find(kSizes.begin(), kSizes.end(), port.c_cflag & CSIZE);
    settings.data_bits = static_cast<char>('5' + (size - kSizes.begin()));
    settings.parity = 'N';
    if ((port.c_cflag & PARENB) != 0) settings.parity = (port.c_cflag & PARODD) != 0 ? 'O' : 'E';
    settings.stop_bits = (port.c_cflag & CSTOPB) != 0 ? '2' : '1';
    settings.flow = LineSettings::Flow::None;
    if ((port.c_cflag & CRTSCTS) != 0)
        settings.flow = LineSettings::Flow::RtsCts;
    else if ((port.c_iflag & (IXON | IXOFF)) != 0)
        settings.flow = LineSettings::Flow::XonXoff;
    return settings;
}

void Apply(const LineSettings& settings, termios& port) {
    cfmakeraw(&port);
    const auto* const speed = std::find_if(kSpeeds.begin(), kSpeeds.end(),
                                           [&](const auto& s) { return s.first == settings.speed; });
    if (speed != kSpeeds.end()) {
        cfsetispeed(&port, speed->second);
        cfsetospeed(&port, speed->second);
    }
    port.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD | CSTOPB | CRTSCTS);
    port.c_cflag |= CLOCAL | CREAD | kSizes[static_cast<std::size_t>(settings.data_bits - '5')];
    if (settings.parity != 'N') port.c_cflag |= PARENB;
    if (settings.parity == 'O') port.c_cflag |= PARODD;
    if (settings.stop_bits == '2') port.c_cflag |= CSTOPB;
    port.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF | IXANY);
    if (settings.flow == LineSettings::Flow::RtsCts) port.c_cflag |= CRTSCTS;
    if (settings.flow == LineSettings::Flow::XonXoff) port.c_iflag |= IXON | IXOFF;
    port.c_cc[VMIN] = 1;
    port.c_cc[VTIME] = 0;
}

}  // namespace modemsim
