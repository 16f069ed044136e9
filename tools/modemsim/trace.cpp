#include "tools/modemsim/trace.h"

namespace modemsim {

std::string Visible(std::string_view bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\r') {
            text += "\\r";
        } else if (c == '\n') {
            text += "\\n";
        } else if (c == '\t') {
            text += "\\t";
        } else if (c == '\\') {
            text += "\\\\";
        } else if (byte < 0x20 || byte > 0x7E) {
            text += "\\x";
            text += kDigits[byte >> 4];
            text += kDigits[byte & 15];
        } else {
            text += c;
        }
    }
    return text;
}

Trace::~Trace() {
    if (file_ != nullptr && file_ != stdout) std::fclose(file_);
}

bool Trace::Open(const std::string& path) {
    file_ = path == "-" ? stdout : std::fopen(path.c_str(), "we");
    return file_ != nullptr;
}

void Trace::Line(Time now, const char* arrow, std::string_view bytes) {
    if (file_ == nullptr) return;
    const long long ms = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    std::fprintf(file_, "%8lld %s %s\n", ms, arrow, Visible(bytes).c_str());
    // Line by line, so that whoever follows the file sees things as they happen.
    std::fflush(file_);
}

}  // namespace modemsim
