#include "checks/support/fake_platform.h"

#include "platform/platform.h"

FakePlatform& Platform() {
    static FakePlatform platform;
    return platform;
}

extern "C" const char* cfg_get(const char* key) {
    static thread_local std::string value;
    if (Platform().keep_reads) Platform().reads.emplace_back(key);
    auto& config = Platform().config;
    auto it = config.find(key);
    if (it == config.end()) return nullptr;
    value = it->second;
    return value.c_str();
}

extern "C" int cfg_set(const char* key, const char* value) {
    if (Platform().fail_writes) return -1;
    Platform().config[key] = value;
    Platform().writes.emplace_back(key, value);
    return 0;
}

extern "C" int CreateSoftTimer(int id, int periodic, unsigned period_ms, int (*callback)(void*), void* arg) {
    if (Platform().fail_timers) return -1;
    Platform().timers.push_back({id, periodic, period_ms, callback, arg});
    return 0;
}
