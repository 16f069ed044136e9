#ifndef AT_TOOLS_MODEMSIM_ENGINE_H
#define AT_TOOLS_MODEMSIM_ENGINE_H

// The simulated modem itself: bytes in, timed bytes out. It has no clock, no descriptor and no thread; the
// caller says what time it is, so the same scenario runs on a pty in real time and in a check within
// microseconds.

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/modemsim/faults.h"
#include "tools/modemsim/model/modem.h"
#include "tools/modemsim/scenario.h"

namespace modemsim {

inline constexpr std::size_t kMaxInput =
    4096;  // characters of a command line (a longer one gets ERROR) or body
inline constexpr std::size_t kMaxWaitingLines =
    64;  // received while an answer is under way; later ones are dropped

// Bytes that go to the line in one write, not before `due`.
struct Piece {
    Time due{0};
    std::string bytes;
};

// Times are counted from any start the caller chooses, and never go back.
class Engine {
  public:
    using Note = std::function<void(const std::string& text)>;

    // `note` is told which rule answers, and what was dropped.
    explicit Engine(Scenario scenario, Note note = {});
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    // The modem is switched on: reports "at" a time count from here. Once, before everything else.
    void Start(Time now);

    // Takes what the host sent.
    void Receive(std::string_view bytes, Time now);

    // When to call Take() again, nullopt when nothing will happen before the host sends something.
    std::optional<Time> NextTime() const;

    // The next piece that is due at `now`. Called until it gives nothing. A piece that is taken late moves
    // those behind it, so that the gaps between them stay.
    std::optional<Piece> Take(Time now);

    // True when the scenario has unplugged the modem and all it sent before was taken: there will be nothing
    // more.
    bool Unplugged() const { return unplugged_ && wire_.empty(); }

    // False while the modem is pulled out by an order: what the host sends is lost, and the modem says
    // nothing.
    bool PluggedIn() const { return plugged_; }

    // Does what is ordered, but for State, Help and Quit. Gives why it cannot be done, or an empty text.
    std::string Do(const Order& order, Time now);

    void DescribeState(nlohmann::json& state, Time now) const;

    const Scenario& Script() const { return scenario_; }

  private:
    // An answer or a report on its way through its steps.
    struct Job {
        std::shared_ptr<const std::vector<Step>> own;  // steps that belong to no rule
        const std::vector<Step>* steps = nullptr;
        std::size_t next = 0;
        Time due{0};  // of the next step
        Pieces pieces;
        std::optional<std::size_t> report;  // the index; empty: an answer
        std::uint64_t times = 0;            // of a report: how often it has begun
        Time begun{0};                      // of a report: when it was to begin
        std::string line;                   // of an answer
        std::string lead;                   // of an answer: sent first, without latency (the echo)
        std::function<void()> after;        // of the modem's answer: done once it is on the line
        std::function<Reply(const std::string& text)> prompt;  // of the modem's answer: takes the text
        bool alone = false;                                    // a late answer: no line waits for it
        bool awaits_body = false;
        bool done = false;
    };

    void Run(Time now);
    void RunStep(Job& job, Time at);
    void Finish(Job& job, Time at);
    void Put(std::string text, const Pieces& pieces, Time at);
    void Cut(const std::string& text, const Pieces& pieces, Time at);
    void GiveSteps(Job& job, std::vector<Step> steps) const;
    void AskModem(Job& job, Time at);
    void Perform(Job& job, const Reply& reply) const;
    void Send(std::vector<Step> steps, Time at);
    void TakeReports(Time at);
    void Perform(const Order& order, Time at);
    std::string DoWithModem(const Order& order, Time now);
    std::string Unplug(Time now, Time back_after);
    std::string Replug(Time now);
    std::optional<Time> NextChange() const;
    void Change(Time at);
    void Character(char c, Time now);
    void Line(Time now);
    void EndBody(bool send, Time now);
    void Answer(const std::string& line, Time now);
    void NextLine(Time at);
    void StartReports(Time now, const std::string* line);
    void StartReport(std::size_t index, Time now);
    std::size_t FindGroup(const std::string& line) const;
    Job* BodyTaker();
    void Say(const std::string& text) const;

    Scenario scenario_;
    Note note_;
    Faults faults_;
    std::unique_ptr<Modem> modem_;  // null when the scenario uses none
    bool echo_;
    std::vector<std::size_t> used_;  // by group: rules used so far, the last one not counted
    std::deque<Job> jobs_;           // in the order they began; at most one of them an answer
    std::deque<std::string> lines_;  // received while an answer is under way
    std::deque<Piece> wire_;         // cut and timed, not yet taken
    Time wire_free_{0};              // when the last piece put on the wire goes out
    std::string input_;  // the line or body being received, at most one character longer than it may be
    bool clock_runs_ = false;
    bool answering_ = false;
    bool unplugged_ = false;
    bool plugged_ = true;
    std::optional<Time> replug_at_;
    std::string glued_;  // held back, to go out in one piece
    Time glued_until_{0};
};

}  // namespace modemsim

#endif
