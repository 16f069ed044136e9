#ifndef AT_CHECKS_SOAK_TALKER_H
#define AT_CHECKS_SOAK_TALKER_H

#include <atomic>
#include <mutex>
#include <random>
#include <string>

#include "checks/dialogue/world.h"

// What the modem of a soak says: answers to every line of the traffic, each time in another manner, and
// reports of its own accord.

// Random numbers that are the same for the same seed.
class Dice {
  public:
    explicit Dice(unsigned seed) : random_(seed) {}
    unsigned Throw(unsigned of) { return std::uniform_int_distribution<unsigned>(0, of - 1)(random_); }

  private:
    std::mt19937 random_;
};

// Reports that were said, by the module that has to receive them.
struct ReportsSaid {
    std::atomic<long> sim{0};
    std::atomic<long> sms{0};
    std::atomic<long> data{0};
};

class Talker {
  public:
    // The modem is told later: it needs an answer function before it exists.
    explicit Talker(unsigned seed) : dice_(seed) {}
    void SpeakThrough(Modem& modem) { modem_ = &modem; }

    // The answer to a line, said through the modem: whole, in pieces, late, behind an echo, with a report in
    // front of or inside it, or, rarely, not at all.
    std::string Answer(const std::string& line);

    // One report of the modem's own accord.
    void SayReport();
    // Lines that nobody asked for, tens of thousands of bytes of them.
    void SayStorm();

    ReportsSaid said;
    std::atomic<long> silences{0};  // lines that were not answered

  private:
    unsigned Chance(unsigned of);  // 0 to of - 1
    std::string RandomReport();

    std::mutex mouth_;  // an answer in pieces is not mixed with a report
    std::mutex dice_lock_;
    Dice dice_;
    Modem* modem_ = nullptr;
};

// The longest answers there are: as many entries as the list's record holds, and as many operators as one
// line of 1023 characters.
inline constexpr int kMessages = 80;
inline constexpr int kEntries = 100;
inline constexpr int kOperators = 25;
inline constexpr int kCalls = 20;
inline constexpr char kPdu[] =
    "0011000A9121436587F90000AA8CE8329BFD4697D9EC37E8329BFD4697D9EC37E8329BFD4697D9EC37E8329BFD4697D9EC37";

#endif
