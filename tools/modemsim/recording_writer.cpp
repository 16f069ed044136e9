#include "tools/modemsim/recording_writer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace modemsim {

RecordingFile::~RecordingFile() {
    if (fd_ > STDERR_FILENO) close(fd_);
}

bool RecordingFile::Create(const std::string& path, bool force, std::string& reason) {
    path_ = path;
    const int way = force ? O_TRUNC : O_EXCL;
    fd_ = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY | way, S_IRUSR | S_IWUSR);
    if (fd_ >= 0) return true;
    if (errno == EEXIST)
        reason = path + " exists: take another name, or --force to replace it";
    else
        reason = "cannot create " + path + ": " + std::strerror(errno);
    return false;
}

bool RecordingFile::Write(const std::string& text, std::string& reason) {
    for (std::size_t sent = 0; sent < text.size();) {
        const ssize_t count = write(fd_, text.data() + sent, text.size() - sent);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) {
            reason = path_ + ": " + std::strerror(errno);
            return false;
        }
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

bool RecordingFile::Add(const Entry& entry, std::string& reason) {
    if (broken_) return true;  // told already
    const std::string line = FormatEntry(entry);
    if (Write(line, reason)) {
        size_ += static_cast<long long>(line.size());
        return true;
    }
    broken_ = true;
    // Of a line that found no room any more only a part may stand there. What is no file has nothing to cut.
    struct stat info = {};
    if (fstat(fd_, &info) == 0 && S_ISREG(info.st_mode) && ftruncate(fd_, static_cast<off_t>(size_)) != 0)
        reason += std::string(" (its last line is not complete: ") + std::strerror(errno) + ")";
    return false;
}

void EntryRedactor::Decide(Redactor::Way way, std::string& decided) {
    decided += redactor_.Take(way);
}

void EntryRedactor::Finish(Redactor::Way way) {
    redactor_.Finish(way);
    Decide(way, way == Redactor::Way::ToModem ? to_ : from_);
}

void EntryRedactor::Finish() {
    Finish(Redactor::Way::ToModem);
    Finish(Redactor::Way::FromModem);
}

void EntryRedactor::Feed(Entry entry) {
    switch (entry.kind) {
        case Entry::Kind::ToModem:
            redactor_.Feed(Redactor::Way::ToModem, entry.text);
            Decide(Redactor::Way::ToModem, to_);
            break;
        case Entry::Kind::FromModem:
            redactor_.Feed(Redactor::Way::FromModem, entry.text);
            Decide(Redactor::Way::FromModem, from_);
            break;
        case Entry::Kind::Close:
            Finish(Redactor::Way::ToModem);
            break;
        case Entry::Kind::Gone:
            Finish();
            break;
        default:
            break;
    }
    waiting_.push_back(std::move(entry));
}

std::optional<Entry> EntryRedactor::Take() {
    if (waiting_.empty()) return std::nullopt;
    Entry& first = waiting_.front();
    if (first.Bytes()) {
        std::string& decided = first.kind == Entry::Kind::ToModem ? to_ : from_;
        if (decided.size() < first.text.size()) return std::nullopt;
        const std::size_t size = first.text.size();
        first.text = decided.substr(0, size);
        decided.erase(0, size);
    }
    Entry entry = std::move(first);
    waiting_.pop_front();
    return entry;
}

std::vector<Entry> RedactEntries(const std::vector<Entry>& entries, Redactor redactor) {
    EntryRedactor line(std::move(redactor));
    std::vector<Entry> result;
    const auto take = [&] {
        while (auto entry = line.Take())
            result.push_back(std::move(*entry));
    };
    for (const Entry& entry : entries) {
        line.Feed(entry);
        take();
    }
    line.Finish();
    take();
    return result;
}

}  // namespace modemsim
