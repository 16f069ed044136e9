#ifndef AT_CHECKS_MODEMSIM_VIRTUAL_MODEM_H
#define AT_CHECKS_MODEMSIM_VIRTUAL_MODEM_H

// A modem in virtual time: no clock runs, time jumps to whenever the engine wants to go on.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/modemsim/engine.h"

namespace modemsim {

struct Sent {
    std::int64_t ms;
    std::string bytes;

    bool operator==(const Sent&) const = default;
};

class VirtualModem {
  public:
    explicit VirtualModem(Scenario scenario)
        : engine_(std::move(scenario), [this](const std::string& text) { notes_.push_back(text); }) {
        engine_.Start(now_);
    }

    // Everything that the modem sends up to `ms` after the start.
    std::vector<Sent> Until(std::int64_t ms) {
        const Time end = std::chrono::milliseconds(ms);
        std::vector<Sent> sent;
        while (true) {
            while (auto piece = engine_.Take(now_))
                sent.push_back(
                    {std::chrono::duration_cast<std::chrono::milliseconds>(now_).count(), piece->bytes});
            const auto next = engine_.NextTime();
            if (!next || *next > end) break;
            now_ = std::max(now_, *next);
        }
        now_ = std::max(now_, end);
        return sent;
    }

    // The next piece that the modem sends, however long that takes; empty when it sends nothing more.
    std::string Next() {
        while (true) {
            if (const auto piece = engine_.Take(now_)) return piece->bytes;
            const auto next = engine_.NextTime();
            if (!next) return {};
            now_ = std::max(now_, *next);
        }
    }

    // The same as one text.
    std::string TextUntil(std::int64_t ms) {
        std::string text;
        for (const Sent& sent : Until(ms))
            text += sent.bytes;
        return text;
    }

    // Sends `bytes` at the time reached, and gives what comes within `ms` after it.
    std::string Ask(std::string_view bytes, std::int64_t ms = 60'000) {
        engine_.Receive(bytes, now_);
        return TextUntil(std::chrono::duration_cast<std::chrono::milliseconds>(now_).count() + ms);
    }

    Engine& Core() { return engine_; }
    Time Now() const { return now_; }
    const std::vector<std::string>& Notes() const { return notes_; }

  private:
    std::vector<std::string> notes_;
    Time now_{0};
    Engine engine_;
};

}  // namespace modemsim

#endif
