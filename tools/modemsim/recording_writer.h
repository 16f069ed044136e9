#ifndef AT_TOOLS_MODEMSIM_RECORDING_WRITER_H
#define AT_TOOLS_MODEMSIM_RECORDING_WRITER_H

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "tools/modemsim/recording.h"
#include "tools/modemsim/redactor.h"

namespace modemsim {

// A recording on its way into a file: each line is handed to the system as a whole as soon as it is complete,
// so that a killed program loses none of them.
class RecordingFile {
  public:
    RecordingFile() = default;
    ~RecordingFile();
    RecordingFile(const RecordingFile&) = delete;
    RecordingFile& operator=(const RecordingFile&) = delete;

    // Creates the file, for its owner alone. What stands there already is refused, unless `force` is set:
    // then it is replaced. On failure false and a reason with the path.
    bool Create(const std::string& path, bool force, std::string& reason);

    // "-": the lines go to standard output.
    void UseStandardOutput() { fd_ = 1; }

    // False and a reason when it cannot be written. The file then ends with the last complete line, for good:
    // a recording with a hole would tell lies.
    bool Add(const Entry& entry, std::string& reason);

    bool Broken() const { return broken_; }

  private:
    bool Write(const std::string& text, std::string& reason);

    int fd_ = -1;
    std::string path_ = "standard output";
    long long size_ = 0;  // of the complete lines
    bool broken_ = false;
};

// Entries on their way through a redactor: those come out of which everything is decided, in their order.
class EntryRedactor {
  public:
    explicit EntryRedactor(Redactor redactor) : redactor_(std::move(redactor)) {}

    // Takes the next entry.
    void Feed(Entry entry);
    // Nothing will follow.
    void Finish();
    // The next entry that is decided.
    std::optional<Entry> Take();

  private:
    void Finish(Redactor::Way way);
    void Decide(Redactor::Way way, std::string& decided);

    Redactor redactor_;
    std::deque<Entry> waiting_;
    std::string to_;  // decided bytes that no entry has been given yet
    std::string from_;
};

// The entries of a recording that another program made, with everything private replaced.
std::vector<Entry> RedactEntries(const std::vector<Entry>& entries, Redactor redactor);

}  // namespace modemsim

#endif
