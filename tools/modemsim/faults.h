#ifndef AT_TOOLS_MODEMSIM_FAULTS_H
#define AT_TOOLS_MODEMSIM_FAULTS_H

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tools/modemsim/order.h"
#include "tools/modemsim/scenario.h"

namespace modemsim {

// What is wrong with the line to the host at the moment. All of it is asked for by orders.
class Faults {
  public:
    explicit Faults(std::uint64_t seed) : random_(seed) {}

    // For Delay, Split, Glue, Late, Mute, Garbage and FaultsOff.
    void Do(const Order& order, Time now);

    Time Delay() const { return delay_; }
    // How everything is cut, nullopt when answers are cut as they say themselves.
    const std::optional<Pieces>& Split() const { return split_; }
    Time Glue() const { return glue_; }
    bool Muted(Time now) const { return muted_ && (!muted_until_ || now < *muted_until_); }
    // How late the answer is that begins now; the next one is in time again.
    Time TakeLateness() { return std::exchange(late_, Time(0)); }
    // The garbage in front of the next text.
    std::string Noise();

    void Describe(nlohmann::json& state, Time now) const;

  private:
    Time delay_{0};
    std::optional<Pieces> split_;
    Time glue_{0};
    Time late_{0};
    bool muted_ = false;
    std::optional<Time> muted_until_;
    std::uint64_t garbage_ = 0;
    std::mt19937_64 random_;
};

// Reports, `count` of them, `every` apart: of many kinds, none of which changes anything.
std::vector<Step> StormSteps(std::uint64_t count, Time every);

}  // namespace modemsim

#endif
