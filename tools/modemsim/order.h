#ifndef AT_TOOLS_MODEMSIM_ORDER_H
#define AT_TOOLS_MODEMSIM_ORDER_H

// What can be done to the modem from outside while it runs: somebody calls, the network goes, the line
// misbehaves. Scenarios ("do ..") and the control socket speak the same words.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/modemsim/timing.h"

namespace modemsim {

inline constexpr std::size_t kMaxOrder = 4096;       // characters of an order
inline constexpr std::uint64_t kMaxNoise = 65536;    // bytes of "fault garbage"
inline constexpr std::uint64_t kMaxStorm = 100'000;  // reports of "fault storm"

struct Order {
    enum class Kind {
        Ring,
        Answer,
        Busy,
        HangUp,
        Message,
        Ussd,
        LoseNetwork,
        RestoreNetwork,
        Roam,
        PullSim,
        InsertSim,
        LockSim,
        SetSignal,
        MoveSignal,
        DropData,
        Raw,
        Send,
        Unplug,
        Replug,
        Delay,
        Split,
        Glue,
        Late,
        Mute,
        Garbage,
        Storm,
        Echo,
        FaultsOff,
        // These are the program's, not the modem's: they cannot stand in a scenario.
        State,
        Help,
        Quit,
    };

    Kind kind = Kind::Help;
    std::string number = {};
    std::string text = {};    // for Send the bytes
    Time time{0};             // 0 where it may be left out and was
    std::uint64_t count = 0;  // Garbage: bytes, Storm: reports, SetSignal: the level
    Pieces pieces = {};
    bool on = false;
};

// nullopt and what is wrong with `text`, and what is allowed.
std::optional<Order> ReadOrder(std::string_view text, std::string& reason);

// Whether it needs the modem with a memory behind the scenario.
bool NeedsModem(Order::Kind kind);
// Whether it may stand in a scenario.
bool FitsScenario(Order::Kind kind);

// All orders, a line each.
std::string OrderHelp();

}  // namespace modemsim

#endif
