#ifndef AT_TOOLS_MODEMSIM_TRACE_H
#define AT_TOOLS_MODEMSIM_TRACE_H

#include <cstdio>
#include <string>
#include <string_view>

#include "tools/modemsim/scenario.h"

namespace modemsim {

// `bytes` with control characters as \r, \n, \t or \xHH, bytes above 0x7E as \xHH, and \ as \\.
std::string Visible(std::string_view bytes);

// What passes, one line each: milliseconds since the start, "->" to the modem, "<-" from it, "--" a remark.
class Trace {
  public:
    Trace() = default;
    ~Trace();
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    // "-" is standard output; a file is replaced. False when it cannot be opened (errno says why).
    bool Open(const std::string& path);

    void ToModem(Time now, std::string_view bytes) { Line(now, "->", bytes); }
    void FromModem(Time now, std::string_view bytes) { Line(now, "<-", bytes); }
    void Remark(Time now, std::string_view text) { Line(now, "--", text); }

  private:
    void Line(Time now, const char* arrow, std::string_view bytes);

    std::FILE* file_ = nullptr;
};

}  // namespace modemsim

#endif
