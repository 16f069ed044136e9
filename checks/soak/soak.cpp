// The real daemon under mixed traffic: at the end it has to hold what it held after a warm-up. Runs inside
// scripts/sandbox only.

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <unistd.h>

#include <chrono>
#include <exception>

#include "checks/dialogue/usage.h"
#include "checks/dialogue/world.h"
#include "checks/soak/talker.h"
#include "checks/soak/traffic.h"
#include "platform/platform.h"

namespace {

// A page or two of static objects or stack may be touched for the first time by a rare path; what leaks goes
// on. Pages of files come and go with the machine's memory.
constexpr long kAnonymousSlackKb = 64;
constexpr long kResidentSlackKb = 512;

double Now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

struct Holdings {
    Usage usage;
    int queues = 0;   // of the whole sandbox
    int waiting = 0;  // messages in them
};

Holdings Look(const Daemon& daemon) {
    Holdings now;
    now.usage = UsageOf(daemon.Pid());
    msginfo info{};
    // Linux fills another structure than the one that the call is declared with.
    if (msgctl(0, MSG_INFO, reinterpret_cast<msqid_ds*>(&info)) < 0) throw std::runtime_error("msgctl");
    now.queues = info.msgpool;
    now.waiting = info.msgmap;
    return now;
}

class Soak {
  public:
    Soak(double seconds, double replug_every) : seconds_(seconds), replug_every_(replug_every) {}

    int Run();

  private:
    void Start();
    void Serve(double seconds);
    Holdings LookAtRest();
    void Compare(const char* title, const Holdings& before, const Holdings& after, bool at_rest);
    void Replug();
    void WaitUntilServing();
    void Tell() const;

    const double seconds_;
    const double replug_every_;  // 0: never
    bool good_ = true;
    int replugs_ = 0;
    double start_ = 0;
    double told_ = 0;
    Talker talker_{1};
    LogCollector log_;
    Modem modem_{[this](const std::string& line) { return talker_.Answer(line); }};
    Daemon daemon_;
    Traffic traffic_{modem_, talker_, 1};
};

void Soak::WaitUntilServing() {
    if (!log_.WaitFor("AT response thread  is running ...", 20))
        throw std::runtime_error("the daemon did not start");
}

void Soak::Tell() const {
    const Tally& tally = traffic_.tally;
    printf("%6.0f s  asked %ld, answered %ld (%ld lists), timed out %ld, lost %ld, calls %ld, reports %ld\n",
           Now() - start_, tally.asked.load(), tally.answered.load(), tally.lists.load(),
           tally.timed_out.load(), tally.lost.load(), tally.calls.load(),
           tally.sim_reports + tally.sms_reports + tally.data_reports);
    fflush(stdout);
}

// Lets the traffic flow. What the log and the modem have collected meanwhile is of no use here.
void Soak::Serve(double seconds) {
    const double end = Now() + seconds;
    while (Now() < end && good_) {
        usleep(100'000);
        log_.Forget();
        modem_.ForgetLines();
        if (Now() - told_ >= 60) {
            told_ = Now();
            Tell();
        }
        good_ = daemon_.Running() && traffic_.Faults().empty();
    }
}

// With every request answered and every report delivered.
Holdings Soak::LookAtRest() {
    traffic_.Rest();
    const auto missing = [this] {
        const Tally& came = traffic_.tally;
        const ReportsSaid& said = talker_.said;
        return labs(said.sim - came.sim_reports) + labs(said.sms - came.sms_reports) +
               labs(said.data - came.data_reports);
    };
    Holdings now;
    const bool at_rest = WaitUntil(
        [&] {
            traffic_.TakeReports();
            now = Look(daemon_);
            // What an unplugged modem said nobody heard.
            return now.waiting == 0 && (replugs_ != 0 || missing() == 0);
        },
        20);
    if (!at_rest) {
        printf("not at rest: %d messages wait, %ld reports are missing or came twice\n", now.waiting,
               missing());
        good_ = false;
    }
    traffic_.Resume();
    return now;
}

void Soak::Compare(const char* title, const Holdings& before, const Holdings& after, bool at_rest) {
    struct Row {
        const char* name;
        long before;
        long after;
        long slack;  // -1: shown only
    };
    const Row rows[] = {
        {"writable memory, kB", before.usage.data_kb, after.usage.data_kb, 0},
        {"  touched, kB", before.usage.anonymous_kb, after.usage.anonymous_kb, kAnonymousSlackKb},
        {"resident memory, kB", before.usage.resident_kb, after.usage.resident_kb, kResidentSlackKb},
        {"descriptors", before.usage.descriptors, after.usage.descriptors, 0},
        {"threads", before.usage.threads, after.usage.threads, 0},
        {"queues", before.queues, after.queues, 0},
        {"messages waiting", before.waiting, after.waiting, at_rest ? 0 : -1},
    };
    printf("\n%-24s %12s %12s\n", title, "then", "now");
    for (const Row& row : rows) {
        const bool as_before = row.slack < 0 || row.after <= row.before + row.slack;
        printf("%-24s %12ld %12ld%s\n", row.name, row.before, row.after, as_before ? "" : "   MORE");
        good_ = good_ && as_before;
    }
    printf("\n");
}

// The modem goes away and another one comes. The daemon keeps the port that it opened at its start: who
// supervises it starts it again. Every other time the modem goes in the middle of the traffic.
void Soak::Replug() {
    const Usage before = UsageOf(daemon_.Pid());
    const bool in_traffic = replugs_ % 2 != 0;
    if (!in_traffic) traffic_.Rest();
    traffic_.ModemIsGone(true);
    modem_.Unplug();
    const long asked = traffic_.tally.asked;
    const long timed_out = traffic_.tally.timed_out;
    if (!in_traffic) traffic_.Resume();
    // Requests go on. Where none was under way each fails at once, and the last of them times out.
    if (in_traffic)
        WaitUntil([&] { return traffic_.tally.asked >= asked + 2; }, 2);
    else if (!WaitUntil([&] { return traffic_.tally.timed_out > timed_out; }, 30)) {
        printf("without a modem no request timed out\n");
        good_ = false;
    }
    const Usage after = UsageOf(daemon_.Pid());
    if (after.descriptors != before.descriptors || after.threads != before.threads ||
        after.data_kb != before.data_kb) {
        printf("without a modem: %d descriptors, %d threads, %ld kB; before: %d, %d, %ld kB\n",
               after.descriptors, after.threads, after.data_kb, before.descriptors, before.threads,
               before.data_kb);
        good_ = false;
    }
    daemon_.Kill();
    log_.Forget();
    modem_.Plug();
    daemon_.Start();
    WaitUntilServing();
    traffic_.ModemIsGone(false);
    traffic_.StartWatchDog();
    ++replugs_;
}

int Soak::Run() {
    talker_.SpeakThrough(modem_);
    cfg_set("WatchDog_Setting_Option", "on");
    WaitUntilServing();
    start_ = told_ = Now();
    traffic_.AskForEverything(log_);
    traffic_.Start();
    const double warm_up = std::min(60.0, seconds_ / 10);
    Serve(warm_up);
    const Holdings first = LookAtRest();
    const double cpu_at_first = first.usage.cpu_seconds;
    const double first_at = Now();
    const long asked_at_first = traffic_.tally.asked;
    if (replug_every_ == 0) Serve(seconds_ - warm_up);
    while (replug_every_ != 0 && good_ && Now() - start_ < seconds_) {
        Serve(replug_every_);
        if (good_) Replug();
        if (good_) Serve(replug_every_);
    }
    Holdings last;
    if (daemon_.Running()) {
        last = LookAtRest();
        Compare("the daemon holds", first, last, true);
    } else {
        printf("the daemon ended with status %d\n", daemon_.WaitForExit(0));
        good_ = false;
    }
    Tell();
    printf("%d replugs, %ld lines left without an answer on purpose\n", replugs_, talker_.silences.load());
    if (replugs_ == 0) {
        const double cpu = last.usage.cpu_seconds - cpu_at_first;
        const long asked = traffic_.tally.asked - asked_at_first;
        printf("processor: %.1f s in %.0f s, %.2f ms for each request with its share of reports and rounds\n",
               cpu, Now() - first_at, 1000 * cpu / static_cast<double>(std::max(asked, 1L)));
        if (traffic_.tally.timed_out != talker_.silences) {
            printf("%ld requests timed out, and %ld were left without an answer\n",
                   traffic_.tally.timed_out.load(), talker_.silences.load());
            good_ = false;
        }
        if (traffic_.tally.lost != 0) good_ = false;
    }
    for (const std::string& fault : traffic_.Faults()) {
        printf("fault: %s\n", fault.c_str());
        good_ = false;
    }
    printf("%s\n", good_ ? "as at the start" : "FAILED");
    return good_ ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    const double seconds = argc >= 2 ? atof(argv[1]) : 0;
    const double replug_every = argc >= 3 ? atof(argv[2]) : 0;
    if (seconds <= 0 || argc > 3) {
        fprintf(stderr,
                "usage: soak SECONDS [REPLUG-EVERY-SECONDS]   inside scripts/sandbox; try scripts/soak\n");
        return 2;
    }
    try {
        Soak soak(seconds, replug_every);
        return soak.Run();
    } catch (const std::exception& error) {
        fprintf(stderr, "soak: %s\n", error.what());
        return 1;
    }
}
