#ifndef AT_PLATFORM_LOG_H
#define AT_PLATFORM_LOG_H

#include <syslog.h>

// One line in the system log, in the form that field support greps for: "module, source line text".
// `level` is a syslog level (LOG_ERR, ...). The source file says which module it belongs to with
//     static constexpr char kLogSource[] = "at_server";
// The format is a literal, so that the compiler checks the arguments against it.
#define AT_LOG(level, format, ...) \
    syslog((level), "%s, %d " format, kLogSource, __LINE__ __VA_OPT__(, ) __VA_ARGS__)

#endif
