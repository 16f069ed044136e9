#ifndef AT_TOOLS_ATCTL_COMMAND_LINE_H
#define AT_TOOLS_ATCTL_COMMAND_LINE_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/atctl/bench.h"
#include "tools/atctl/complete.h"
#include "tools/atctl/monitor.h"
#include "tools/atctl/send.h"
#include "tools/atctl/watch.h"
#include "tools/shared/terminal.h"

// What was typed behind "atctl".

class CommandLine {
  public:
    CommandLine();
    ~CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    enum class Action { send, monitor, watch, bench, list, show };

    // What is to be done, or nothing when help or the version was asked for and printed. Throws Misuse.
    std::optional<Action> Parse(int argc, char** argv);

    // For the completion: the subcommands and their options.
    std::vector<SubcommandWords> Words() const;

    Colour colour = Colour::automatic;
    bool json = false;
    std::string name;  // of `show`; of `list` a part of names or titles
    SendOptions send;
    MonitorOptions monitor;
    WatchOptions watch;
    BenchOptions bench;

  private:
    struct Parser;  // the option parser's header is slow to compile
    std::unique_ptr<Parser> parser_;
};

#endif
