#ifndef AT_CHECKS_SUPPORT_LOG_CAPTURE_H
#define AT_CHECKS_SUPPORT_LOG_CAPTURE_H

#include <string>
#include <vector>

// Replaces syslog() of the C library inside a check, so that what was logged can be read back.

struct LogLine {
    int level;           // syslog level, 0..7
    std::string module;  // "at_server", "atcode", ...
    int line;            // source line
    std::string text;    // what follows "module, line "
};

std::vector<LogLine>& LoggedLines();
void ClearLog();

// True when a line whose text is exactly `text` was logged (by `module`, at `level`, where given).
bool Logged(const std::string& text, const char* module = nullptr, int level = -1);

// True when a line whose text contains `part` was logged.
bool LoggedPart(const std::string& part);

#endif
