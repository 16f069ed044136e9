// modemsim redact: takes what is private out of a recording.

#include <algorithm>
#include <cstdio>
#include <string>

#include "tools/modemsim/command_line.h"
#include "tools/modemsim/commands.h"
#include "tools/modemsim/recording.h"
#include "tools/modemsim/recording_writer.h"

namespace modemsim {

namespace {

struct Options {
    std::string from;
    std::string to;
    bool force = false;
};

int Start(const Options& options) {
    const ParsedRecording parsed = LoadRecording(options.from);
    for (const Problem& problem : parsed.problems)
        std::fprintf(stderr, "%s\n", problem.Text().c_str());
    if (!parsed.Ok()) return kMisuse;
    const auto key = StandIns::RandomKey();
    if (!key) return Complain("the system gives no random numbers: nothing was written");

    std::vector<Entry> entries = RedactEntries(parsed.recording.entries, Redactor(*key));
    if (!parsed.recording.redacted)
        entries.insert(entries.begin() + 1, {Entry::Kind::Header, Time(0), std::string(kRedactedHeader), 0});
    RecordingFile file;
    std::string reason;
    if (options.to == "-")
        file.UseStandardOutput();
    else if (!file.Create(options.to, options.force, reason))
        return Complain(reason);
    for (const Entry& entry : entries) {
        if (!file.Add(entry, reason)) {
            Complain(reason + ": the recording is not complete");
            return kIncomplete;
        }
    }
    const auto comments = std::count_if(entries.begin(), entries.end(), [](const Entry& entry) {
        return entry.kind == Entry::Kind::Comment && entry.text.find('#') != std::string::npos;
    });
    if (comments != 0)
        std::fprintf(
            stderr,
            "modemsim: comments stand as they were (lines: %ld): look whether they tell anything private\n",
            static_cast<long>(comments));
    return 0;
}

}  // namespace

int Redact(int argc, char** argv) {
    Options options;
    CLI::App app{
        "Writes a recording anew without private data: numbers, identities, codes, texts, cells and "
        "addresses\n"
        "become others of the same length (see docs/recording.md for what it does not know).",
        argv[0]};
    app.set_version_flag("--version", "modemsim " AT_VERSION);
    app.add_option("FILE", options.from, "The recording")->required();
    app.add_option("OUT", options.to, "Where the new one goes; - is standard output")->required();
    app.add_flag("--force", options.force, "Replace OUT if it exists");
    app.footer(
        "Exit status: 0 when OUT is complete, 2 when the options, FILE or the place of OUT are not right,\n"
        "4 when OUT could not be written to its end.");
    if (const auto status = ReadArguments(app, argc, argv)) return *status;
    return Start(options);
}

}  // namespace modemsim
