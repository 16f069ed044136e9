#include "tools/atctl/monitor.h"

#include <poll.h>
#include <sys/ipc.h>
#include <sys/msg.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tools/atctl/module_name.h"
#include "tools/atctl/report_line.h"
#include "tools/shared/exit_status.h"
#include "tools/shared/text.h"

using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

// Queues have no descriptors to wait for, and a wait in msgrcv is for one of them only. So all are looked at
// in turn: again at once while something comes, then after pauses that double up to this one. It is the most
// that a line comes late, which nobody sees, and 50 looks a second take no time that could be measured.
constexpr milliseconds kShortestPause(1);
constexpr milliseconds kLongestPause(20);

// "process 123 (atctl)", or that it is gone.
std::string Process(pid_t pid) {
    std::string text = "process " + std::to_string(pid);
    if (kill(pid, 0) != 0 && errno == ESRCH) return text + ", which is gone";
    std::string name;
    std::getline(std::ifstream("/proc/" + std::to_string(pid) + "/comm"), name);
    return name.empty() ? text : text + " (" + Printable(name) + ")";
}

// What is known of a queue that exists already, and what can be done.
std::string WhoseQueue(uint16_t module) {
    const std::string key = HexNumber(module);
    std::string text = "module " + NameOfModule(module);
    if (text.find(key) == std::string::npos) text += " (queue " + key + ")";
    text += " is somebody else's: ";
    msqid_ds state = {};
    const int queue = msgget(module, 0);
    if (queue < 0 || msgctl(queue, IPC_STAT, &state) != 0) {
        text += "its queue exists and cannot be looked at";
    } else {
        text += "its queue was made by user " + std::to_string(state.msg_perm.cuid);
        text += state.msg_lrpid != 0 ? " and last read by " + Process(state.msg_lrpid) : " and never read";
    }
    return text +
           "; end that program or name other modules, and remove a queue that is left over with ipcrm -Q " +
           key;
}

std::vector<uint16_t> ModulesOf(const MonitorOptions& options) {
    std::vector<uint16_t> modules;
    for (const std::string& text : options.modules) {
        const uint16_t id = ModuleFromText(text);
        if (std::find(modules.begin(), modules.end(), id) == modules.end()) modules.push_back(id);
    }
    if (modules.empty())
        for (const ModuleName& module : ReportedModules())
            modules.push_back(module.id);
    return modules;
}

std::string Listening(const std::vector<uint16_t>& modules) {
    std::vector<std::string> names;
    for (const uint16_t module : modules)
        names.push_back(NameOfModule(module));
    std::string text = "atctl: listening as " + Join(names, ", ");
    if (msgget(AT_MODULE_SERVER, 0) < 0 && errno == ENOENT) text += "; there is no server yet";
    return text;
}

class Monitoring {
  public:
    Monitoring(const MonitorOptions& options, const MonitorSetup& setup, const Streams& streams)
        : options_(options), setup_(setup), streams_(streams) {
        // The clock of file times, which is a little behind.
        clock_gettime(CLOCK_REALTIME_COARSE, &started_);
    }

    int Run() {
        const std::vector<uint16_t> modules = ModulesOf(options_);
        queues_.Open(modules);
        streams_.err << Listening(modules) << std::endl;
        const bool ends = options_.timeout > 0;
        const auto end = steady_clock::now() + std::chrono::duration_cast<steady_clock::duration>(
                                                   std::chrono::duration<double>(options_.timeout));
        milliseconds pause = kShortestPause;
        while (!Stopped()) {
            if (TakeRound()) pause = kShortestPause;
            if (Done()) return kExitGood;
            const auto left = std::chrono::ceil<milliseconds>(end - steady_clock::now());
            if (ends && left <= milliseconds(0)) return TimeIsUp();
            if (!Pause(ends ? std::min(pause, left) : pause)) break;
            pause = std::min(pause * 2, kLongestPause);
        }
        if (Stopped())
            streams_.err << "atctl: interrupted after " << Number(printed_, "report", "reports") << '\n';
        return kExitGood;
    }

  private:
    bool Stopped() const { return setup_.stop != nullptr && setup_.stop(); }
    bool Done() const { return options_.count != 0 && printed_ == options_.count; }

    // Prints what waits in the queues. False when that was nothing.
    bool TakeRound() {
        bool any = false;
        for (bool more = true; more && !Stopped();) {
            more = false;
            for (const ModuleQueues::Queue& queue : queues_.All()) {
                if (Done()) return true;
                more = Take(queue) || more;
            }
            any = any || more;
        }
        return any;
    }

    bool Take(const ModuleQueues::Queue& queue) {
        at_client_message message;
        const at_client_error error = at_client_next_report(queue.get(), &message, 0);
        if (error == AT_CLIENT_TIMED_OUT) return false;
        const std::string module = NameOfModule(at_client_module(queue.get()));
        if (error == AT_CLIENT_QUEUE_GONE)
            throw Failure(kExitBroken, "somebody removed the queue of module " + module);
        if (error != AT_CLIENT_OK)
            throw Failure(kExitBroken,
                          "the queue of module " + module + " cannot be read: " + strerror(errno));
        timespec now = {};
        clock_gettime(CLOCK_REALTIME, &now);
        const Arrival arrival = ReadArrival(
            now, at_client_module(queue.get()), message.type, {message.body, message.length},
            [this](const char* path, size_t size) { return ReadAnswerFile(path, size, started_); });
        if (options_.json)
            streams_.out << ArrivalJson(arrival).dump() << std::endl;
        else
            streams_.out << ArrivalLine(arrival, streams_.look) << std::endl;
        if (!streams_.out) throw Failure(kExitBroken, "the output cannot be written");
        ++printed_;
        return true;
    }

    // False when the reader of the output has gone, so that a queue is not kept for nobody.
    bool Pause(milliseconds pause) const {
        pollfd out = {setup_.out_descriptor, 0, 0};
        return poll(&out, 1, static_cast<int>(pause.count())) <= 0;
    }

    int TimeIsUp() const {
        if (options_.count == 0) return kExitGood;
        streams_.err << "atctl: the time is up after " << printed_ << " of "
                     << Number(options_.count, "report", "reports") << '\n';
        return kExitNothingCame;
    }

    const MonitorOptions& options_;
    const MonitorSetup& setup_;
    const Streams& streams_;
    timespec started_ = {};
    ModuleQueues queues_;
    unsigned printed_ = 0;
};

}  // namespace

void ModuleQueues::Open(const std::vector<uint16_t>& modules) {
    for (const uint16_t module : modules) {
        at_client_options options = {};
        options.module = module;
        options.queue = AT_CLIENT_QUEUE_NEW;
        options.flags = AT_CLIENT_TAKE_ALL;
        at_client* client = nullptr;
        const at_client_error error = at_client_open(&options, &client);
        const int reason = errno;
        if (error != AT_CLIENT_OK) queues_.clear();
        if (error == AT_CLIENT_QUEUE_TAKEN) throw Failure(kExitTaken, WhoseQueue(module));
        if (error != AT_CLIENT_OK)
            throw Failure(kExitBroken, "no message queue can be made for module " + NameOfModule(module) +
                                           ": " + strerror(reason));
        queues_.emplace_back(client);
    }
}

int Monitor(const MonitorOptions& options, const MonitorSetup& setup, const Streams& streams) {
    return Monitoring(options, setup, streams).Run();
}
