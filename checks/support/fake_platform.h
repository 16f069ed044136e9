#ifndef AT_CHECKS_SUPPORT_FAKE_PLATFORM_H
#define AT_CHECKS_SUPPORT_FAKE_PLATFORM_H

#include <map>
#include <string>
#include <vector>

// The platform interface in memory, for checks that run inside one process.

struct FakePlatform {
    std::map<std::string, std::string> config;
    std::vector<std::pair<std::string, std::string>> writes;  // every cfg_set, in order
    std::vector<std::string> reads;                           // every key asked for, while keep_reads is set
    bool keep_reads = false;
    bool fail_writes = false;
    bool fail_timers = false;

    struct Timer {
        int id;
        int periodic;
        unsigned period_ms;
        int (*callback)(void*);
        void* arg;
    };
    std::vector<Timer> timers;

    // Empty store, no timers.
    void Reset() { *this = FakePlatform(); }
    std::string Get(const std::string& key) const {
        auto it = config.find(key);
        return it == config.end() ? std::string() : it->second;
    }
};

FakePlatform& Platform();

#endif
