#ifndef AT_TOOLS_MODEMSIM_PLAYER_H
#define AT_TOOLS_MODEMSIM_PLAYER_H

// Plays the modem of a recording: says what it said, when it said it, and compares what the daemon sends with
// what it sent then. It has no clock and no descriptor; the caller says what time it is.

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/modemsim/recording.h"
#include "tools/modemsim/redactor.h"

namespace modemsim {

struct PlayerOptions {
    double speed = 1;     // how much faster than it was; 0: without pauses
    bool strict = false;  // the first deviation ends it
    Time patience{0};     // how long a line of the daemon's is waited for; 0: without end
};

// Puts the lines of the daemon's together from the pieces in which they pass.
class LineReader {
  public:
    struct Line {
        std::string text;   // with its end: a carriage return, or what ends or cancels the text of a message
        std::string shape;  // what is left when everything private is made alike
    };

    // The lines that `bytes` of the daemon's end.
    std::vector<Line> FromDaemon(std::string_view bytes);
    // What the modem says tells what the daemon's next line is.
    void FromModem(std::string_view bytes);
    // The unfinished line will not be continued.
    void Drop();

  private:
    Redactor shape_ = Redactor::Shape();
    std::string text_;
};

class Player {
  public:
    // Told of each deviation: "FILE:LINE: what was expected and what came".
    using Report = std::function<void(const std::string& text)>;

    Player(const Recording& recording, const PlayerOptions& options, Report report);

    // The modem is plugged in.
    void Start(Time now);

    // What the daemon did.
    void Receive(std::string_view bytes, Time now);
    void Opened(Time now);
    void Closed(Time now);

    struct Action {
        enum class Kind { Send, Unplug, Plug };
        Kind kind;
        std::string bytes;  // Send
    };
    // What is due at `now`. Called until it gives nothing.
    std::optional<Action> Take(Time now);
    // When to call Take() again; nullopt when nothing will happen before the daemon does something.
    std::optional<Time> NextTime() const;

    // Everything was played, or the first deviation has ended it.
    bool Over() const { return stopped_ || (next_ == steps_.size() && out_.empty()); }
    std::size_t Deviations() const { return deviations_; }
    // Lines of the daemon's in the recording, and those of them that came.
    std::size_t Lines() const { return lines_; }
    std::size_t LinesCame() const { return came_; }
    // The recording ends before it was played: tells of it as a deviation if lines of the daemon's are
    // missing.
    void Break();

  private:
    struct Step {
        enum class Kind { Send, Expect, Open, Close, Unplug, Plug };
        Kind kind;
        std::string text;   // Send: bytes, Expect: a line with its end
        std::string shape;  // Expect, in a redacted recording: what a line must look like
        Time gap{0};        // since the step before
        std::size_t line = 0;
        bool came = false;  // Expect
    };

    using Line = LineReader::Line;

    void Deviate(std::size_t line, const std::string& text);
    void Advance(Time now);
    void Judge(Time now);
    void GoTo(std::size_t step, Time now);
    bool Same(const Step& step, const Line& line) const;
    std::optional<std::size_t> Find(const Line& line) const;
    Time Due() const;

    std::string name_;
    PlayerOptions options_;
    Report report_;
    bool redacted_;
    std::vector<Step> steps_;
    std::size_t next_ = 0;
    Time reached_{0};              // when the step before was done
    LineReader reader_;            // of what the daemon sends now
    std::deque<Line> heard_;       // not judged yet
    std::deque<std::string> out_;  // answers that the recording does not have
    bool open_ = false;
    int closed_ = 0;  // how often, not yet played
    std::size_t deviations_ = 0;
    std::size_t lines_ = 0;
    std::size_t came_ = 0;
    bool stopped_ = false;
};

}  // namespace modemsim

#endif
