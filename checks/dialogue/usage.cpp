#include "checks/dialogue/usage.h"

#include <dirent.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

std::string Read(pid_t process, const char* name) {
    const std::string path = "/proc/" + std::to_string(process) + "/" + name;
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    if (text.str().empty()) throw std::runtime_error("cannot read " + path);
    return text.str();
}

int CountEntries(pid_t process, const char* name) {
    const std::string path = "/proc/" + std::to_string(process) + "/" + name;
    DIR* directory = opendir(path.c_str());
    if (directory == nullptr) throw std::runtime_error("cannot open " + path);
    int count = 0;
    while (const dirent* entry = readdir(directory))
        count += entry->d_name[0] != '.' ? 1 : 0;
    closedir(directory);
    return count;
}

// The number behind "NAME:" in lines of "NAME:   123 kB".
long Kilobytes(const std::string& text, const std::string& name) {
    const size_t at = ("\n" + text).find("\n" + name + ":");
    if (at == std::string::npos) throw std::runtime_error("the kernel tells no " + name);
    return std::stol(text.substr(at + name.size() + 1));
}

double CpuSeconds(pid_t process) {
    const std::string text = Read(process, "stat");
    // The program's name stands in brackets and may hold anything; 11 fields lie between it and the times.
    std::istringstream fields(text.substr(text.rfind(')') + 2));
    std::string skipped;
    for (int i = 0; i < 11; ++i)
        fields >> skipped;
    long user = 0;
    long system = 0;
    fields >> user >> system;
    return static_cast<double>(user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

}  // namespace

Usage UsageOf(pid_t process) {
    Usage usage;
    usage.cpu_seconds = CpuSeconds(process);
    usage.descriptors = CountEntries(process, "fd");
    usage.threads = CountEntries(process, "task");
    usage.data_kb = Kilobytes(Read(process, "status"), "VmData");
    // Counted page by page; the counters in "status" lag behind by some pages of each thread.
    const std::string pages = Read(process, "smaps_rollup");
    usage.anonymous_kb = Kilobytes(pages, "Anonymous");
    usage.resident_kb = Kilobytes(pages, "Rss");
    return usage;
}

double BusyShare(pid_t process, double seconds) {
    const auto start = std::chrono::steady_clock::now();
    const double before = CpuSeconds(process);
    double passed = 0;
    while (passed < seconds) {
        usleep(10'000);
        passed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
    return (CpuSeconds(process) - before) / passed;
}
