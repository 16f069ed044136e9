#include "checks/support/log_capture.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <syslog.h>

#include <mutex>

namespace {

std::mutex g_lock;

__attribute__((format(printf, 2, 0))) void Record(int priority, const char* format, va_list arguments) {
    static thread_local std::string buffer(300'000, '\0');
    int length = vsnprintf(buffer.data(), buffer.size(), format, arguments);
    if (length < 0) length = 0;
    std::string all(buffer.data(), std::min<size_t>(static_cast<size_t>(length), buffer.size() - 1));
    LogLine line{priority & 7, "", 0, all};
    size_t comma = all.find(", ");
    if (comma != std::string::npos) {
        char* end = nullptr;
        long number = strtol(all.c_str() + comma + 2, &end, 10);
        if (end != all.c_str() + comma + 2 && *end == ' ') {
            line.module = all.substr(0, comma);
            line.line = static_cast<int>(number);
            line.text = all.substr(static_cast<size_t>(end + 1 - all.c_str()));
        }
    }
    std::lock_guard<std::mutex> hold(g_lock);
    LoggedLines().push_back(std::move(line));
}

}  // namespace

std::vector<LogLine>& LoggedLines() {
    static std::vector<LogLine> lines;
    return lines;
}

void ClearLog() {
    std::lock_guard<std::mutex> hold(g_lock);
    LoggedLines().clear();
}

bool Logged(const std::string& text, const char* module, int level) {
    std::lock_guard<std::mutex> hold(g_lock);
    for (const LogLine& line : LoggedLines())
        if (line.text == text && (module == nullptr || line.module == module) &&
            (level < 0 || line.level == level))
            return true;
    return false;
}

bool LoggedPart(const std::string& part) {
    std::lock_guard<std::mutex> hold(g_lock);
    for (const LogLine& line : LoggedLines())
        if (line.text.find(part) != std::string::npos) return true;
    return false;
}

// The linker takes these before the C library's own.
extern "C" void syslog(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Record(priority, format, arguments);
    va_end(arguments);
}

extern "C" __attribute__((format(printf, 3, 4))) void __syslog_chk(int priority, int, const char* format,
                                                                   ...) {
    va_list arguments;
    va_start(arguments, format);
    Record(priority, format, arguments);
    va_end(arguments);
}
