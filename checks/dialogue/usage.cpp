#include "checks/dialogue/usage.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

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

// Addresses of a mapping of the process.
struct Mapping {
    unsigned long begin = 0;
    unsigned long end = 0;
};

Mapping MappingOf(pid_t process, unsigned long address) {
    std::istringstream lines(Read(process, "maps"));
    for (std::string line; std::getline(lines, line);) {
        Mapping mapping;
        if (sscanf(line.c_str(), "%lx-%lx", &mapping.begin, &mapping.end) == 2 && mapping.begin <= address &&
            address < mapping.end)
            return mapping;
    }
    throw std::runtime_error("no mapping holds the stack pointer");
}

// The lowest page of the mapping that is in memory.
unsigned long LowestPage(pid_t process, const Mapping& mapping) {
    const std::string path = "/proc/" + std::to_string(process) + "/pagemap";
    const auto page_size = static_cast<unsigned long>(sysconf(_SC_PAGESIZE));
    std::vector<uint64_t> entries((mapping.end - mapping.begin) / page_size);
    const size_t bytes = entries.size() * sizeof entries[0];
    // The kernel gives whole entries only, so not through a buffer of any size.
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const auto start = static_cast<off_t>(mapping.begin / page_size * sizeof entries[0]);
    const ssize_t got = file < 0 ? -1 : pread(file, entries.data(), bytes, start);
    if (file >= 0) close(file);
    if (got != static_cast<ssize_t>(bytes)) throw std::runtime_error("cannot read " + path);
    constexpr uint64_t kPresent = uint64_t{1} << 63;
    constexpr uint64_t kSwapped = uint64_t{1} << 62;
    for (size_t i = 0; i < entries.size(); ++i)
        if ((entries[i] & (kPresent | kSwapped)) != 0) return mapping.begin + i * page_size;
    throw std::runtime_error("no page of the stack is in memory");
}

// The stack pointer of a thread that waits in a system call; 0 while it runs.
unsigned long StackPointer(pid_t process, const std::string& thread) {
    unsigned long pointer = 0;
    const std::string text = Read(process, ("task/" + thread + "/syscall").c_str());
    return sscanf(text.c_str(), "%*d %*x %*x %*x %*x %*x %*x %lx", &pointer) == 1 ? pointer : 0;
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

size_t StackUsed(pid_t process) {
    const std::string tasks = "/proc/" + std::to_string(process) + "/task";
    size_t most = 0;
    for (const auto& task : std::filesystem::directory_iterator(tasks)) {
        const std::string thread = task.path().filename();
        if (thread == std::to_string(process)) continue;
        unsigned long pointer = 0;
        for (int tries = 0; tries < 1000 && pointer == 0; ++tries) {
            pointer = StackPointer(process, thread);
            if (pointer == 0) usleep(1000);
        }
        const Mapping stack = MappingOf(process, pointer);
        most = std::max(most, static_cast<size_t>(stack.end - LowestPage(process, stack)));
    }
    return most;
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
