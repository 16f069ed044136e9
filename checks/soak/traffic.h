#ifndef AT_CHECKS_SOAK_TRAFFIC_H
#define AT_CHECKS_SOAK_TRAFFIC_H

#include <atomic>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <thread>
#include <vector>

#include "checks/dialogue/world.h"
#include "checks/soak/talker.h"

// The modules of a soak: each asks in a thread of its own and looks at what comes back; those that only
// receive count it.

struct Tally {
    std::atomic<long> asked{0};
    std::atomic<long> answered{0};   // as the modem said
    std::atomic<long> timed_out{0};  // with result 5
    std::atomic<long> lost{0};       // with a modem that was unplugged or a daemon that was killed
    std::atomic<long> lists{0};      // lists among the answers, their files looked at
    std::atomic<long> calls{0};      // dialled or taken, and hung up
    std::atomic<long> sim_reports{0};
    std::atomic<long> sms_reports{0};
    std::atomic<long> data_reports{0};
};

class Traffic {
  public:
    Traffic(Modem& modem, Talker& talker, unsigned seed);
    ~Traffic();
    Traffic(const Traffic&) = delete;
    Traffic& operator=(const Traffic&) = delete;

    // Lets every module ask for everything once, one after the other, and fills every buffer of the daemon.
    void AskForEverything(const LogCollector& log);
    void Start();
    // No request under way until Resume().
    void Rest();
    void Resume();
    // What is under way may stay without an answer. Without a modem nothing is asked that has more than ten
    // seconds.
    void ModemIsGone(bool gone) {
        no_modem_ = gone;
        ++break_;
    }
    // The second request of its kind starts the daemon's third thread.
    void StartWatchDog();
    // At rest: counts the reports that wait.
    void TakeReports();

    Tally tally;
    // What should not have happened, the first of it.
    std::vector<std::string> Faults() const;

  private:
    struct Kind;
    static const Kind kSignalKinds[];
    static const Kind kListKinds[];
    static const Kind kMessageKinds[];
    static const Kind kWatchDog;

    void Ask(const Module& module, const Kind& kind);
    void MakeACall(bool incoming);
    void RunAsker(const Module& module, const Kind* kinds, size_t count, unsigned seed);
    void RunCaller(unsigned seed);
    void RunReporter(unsigned seed);
    void RunReceiver(const Module& module, std::atomic<long>& count);
    bool Wait(const Module& module, Received& received, const std::function<bool()>& wanted, double seconds);
    void Fault(const std::string& text);

    Modem& modem_;
    Talker& talker_;
    const unsigned seed_;
    Module watch_dog_{0x2344};
    Module signal_{0x2345};
    Module lists_{0x2346};
    Module sms_{AT_MODULE_SMS};
    Module call_{AT_MODULE_CALL};
    Module sim_{AT_MODULE_SIM};
    Module data_{AT_MODULE_DATA};
    std::shared_mutex line_;  // shared by requests; a call has it for itself
    std::atomic<int> line_wanted_{0};
    std::mutex reports_;
    std::atomic<bool> stop_{false};
    std::atomic<int> break_{0};
    std::atomic<bool> no_modem_{false};
    std::atomic<long> number_{100};  // message types, so that each answer is told from the others
    mutable std::mutex fault_lock_;
    std::vector<std::string> faults_;
    std::vector<std::thread> threads_;
};

#endif
