#ifndef AT_TOOLS_MODEMSIM_TIMING_H
#define AT_TOOLS_MODEMSIM_TIMING_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace modemsim {

using Time = std::chrono::microseconds;

inline constexpr Time kMaxTime = std::chrono::hours(24);           // of every time in a scenario or an order
inline constexpr Time kDefaultGap = std::chrono::milliseconds(1);  // between pieces
inline constexpr std::size_t kMaxPieceSizes = 64;                  // sizes of one "pieces"
inline constexpr std::size_t kMaxAnswer = std::size_t{1} << 20;    // bytes of one answer or report

// How an answer is cut: the sizes in turn, the last one for all the rest. No sizes: one piece.
struct Pieces {
    std::vector<std::size_t> sizes = {};
    Time gap = kDefaultGap;
};

}  // namespace modemsim

#endif
