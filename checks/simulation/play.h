#ifndef AT_CHECKS_SIMULATION_PLAY_H
#define AT_CHECKS_SIMULATION_PLAY_H

#include <ucontext.h>

#include <set>

#include "checks/simulation/oracle.h"

// One episode under way: the state of the world, and what the daemon's calls do to it.

inline constexpr int kPort = 900;
inline constexpr int kListFile = 901;
inline constexpr size_t kQueueCapacity = 24;

struct Thread {
    enum State : uint8_t { runnable, sleeping, waits_for_message, waits_for_room } state = runnable;
    int64_t until = 0;
    int key = 0;
    ucontext_t context{};
};

struct Due {
    int64_t at;
    uint64_t order;
    enum What : uint8_t { event, item_ready, bytes, drain, plug, create } what;
    size_t index;
    size_t piece;
    bool operator<(const Due& other) const { return at != other.at ? at > other.at : order > other.order; }
};

class World {
  public:
    World(const Episode& episode, bool trace, bool obvious);
    Outcome Run();

    // ---- what the daemon's calls do (hooks.cpp) ----
    void MaySwitch();
    void Sleep(int64_t microseconds);
    bool PortReadable() const { return !port_.empty() || !plugged_; }
    ssize_t ReadPort(char* buffer, size_t size);
    ssize_t WritePort(const char* text, size_t size);
    int QueueOf(int key);
    int SendMessage(int key, const QueueMessage& message, size_t size);
    ssize_t ReceiveMessage(QueueMessage* message, size_t size, int flags);
    size_t QueueLength(int key) { return queues_[key].size(); }
    int64_t now() const { return now_; }

    // ---- what happens around the steps of the hand-over (hooks.cpp) ----
    void RequestPut(const MSG_BUF& request, bool has_line);
    void RequestTaken();
    void TakeDone();
    void RoundRead();
    void Cleared();
    void Redeemed();
    const char* routed = nullptr;  // the text of the report that is being routed
    bool obvious() const { return obvious_; }

  private:
    void Note(const std::string& line);
    void Fault(const std::string& what);
    void At(int64_t at, Due::What what, size_t index, size_t piece = 0);
    void Happen(const Due& due);
    void Start(const Event& event);
    void StartRequest(const Event& event);
    void StartHostile(const Event& event);
    void StartReports(const Event& event);
    size_t Say(Item::Owner owner, int serial, const std::string& text, size_t answer_size, int64_t ready,
               uint64_t seed);
    void NextItem();
    void Emit(size_t item, size_t piece);
    void Answer(Request& request, bool pdu_written);
    void Judge();
    void CheckSent(int key, const QueueMessage& message);
    void CheckOwnAnswer(Request& request, const _BK_AT_RES_T& res, uint16_t length_word);
    void CheckReport(const MSG_BUF& record, const _BK_AT_RES_T& res);
    void CheckEnd();
    bool AtRest() const;
    void Block();
    void Resume(Thread& thread);
    Request* Flight() { return flight_ != 0 ? &requests_[flight_] : nullptr; }
    std::string NewReport(Random& random, int& serial);

    const Episode& episode_;
    bool tracing_;
    bool obvious_;
    Outcome outcome_;
    Random random_;
    unsigned switch_rate_;
    bool echo_;
    int64_t now_ = 0;
    int64_t progress_ = 0;
    uint64_t order_ = 0;
    size_t events_left_;
    std::priority_queue<Due> due_;
    Thread* current_ = nullptr;

    std::map<int, std::deque<QueueMessage>> queues_;
    std::map<int, size_t> sizes_;  // of the message at the head of the server's queue
    std::deque<size_t> server_sizes_;
    std::set<int> missing_;
    std::set<int> once_missing_;
    std::map<int, int64_t> stalled_until_;
    std::set<int> draining_;

    std::map<int, Request> requests_;
    std::map<int, Report> reports_;
    int next_request_ = 1000;
    int next_report_ = 5000;
    int serving_ = 0;
    int put_ = 0;
    int flight_ = 0;
    int last_dial_ = 0;
    int dial_answers_ = 0;
    uint32_t count_ = 0;
    bool reading_ = false;
    bool read_done_ = false;
    bool timeout_due_ = false;
    bool residue_ = false;
    unsigned idle_rounds_ = 0;

    std::vector<Item> items_;
    std::vector<std::vector<std::string>> pieces_;
    std::vector<size_t> ready_;
    bool emitting_ = false;
    bool plugged_ = true;
    std::deque<Bytes> port_;
    std::vector<Bytes> just_read_;
    std::vector<int> last_read_;  // the reports in it
};

extern World* g_world;
extern bool g_threads_started;

#endif
