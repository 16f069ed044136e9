#ifndef AT_TOOLS_ATCTL_HELP_NOTES_H
#define AT_TOOLS_ATCTL_HELP_NOTES_H

// What stands below the options in each --help.

inline constexpr char kExitNotes[] =
    "Exit status:\n"
    "  0   done, and the result was OK\n"
    "  1   the modem or the server gave another result\n"
    "  2   nothing was done: a wrong call, an unknown name, or no server\n"
    "  3   no answer came in time, or fewer reports than asked for\n"
    "  4   no permission to use the server's queue\n"
    "  5   the module's queue is somebody else's\n"
    "  6   the server's queue is full\n"
    "  7   the system refused a queue, or something broke on the way\n"
    "  130 after Ctrl-C (128 + the signal); the queues it made are removed\n";

inline constexpr char kMainNotes[] =
    "atctl SUBCOMMAND --help tells more of each.\n\n"
    "Examples:\n"
    "  atctl send '+CSQ'            asks for the signal quality\n"
    "  atctl watch '+CSQ' 2         asks every 2 seconds and draws it\n"
    "  atctl list message           shows the commands about messages\n\n";

inline constexpr char kSendNotes[] =
    "The command's suffix is its form: none executes, = sets, ? reads, =? tests. Values stand for the "
    "fields\n"
    "in order, or as name=value; atctl show tells them. A value that begins with - and a letter goes behind "
    "--.\n\n"
    "Examples:\n"
    "  atctl send '+CSQ'            asks for the signal quality\n"
    "  atctl send '+CFUN=' fun=1    switches the radio on\n\n";

inline constexpr char kMonitorNotes[] =
    "Modules: call, sim, sms, time, toolkit, ussd, data, or numbers. Their queues are the monitor's until "
    "it\n"
    "ends, so it refuses while the module itself runs. One line for each report, at most 20 ms late; lines\n"
    "of different modules may change places within that time.\n\n"
    "Examples:\n"
    "  atctl monitor --timeout 0.1              everything that is reported\n"
    "  atctl monitor sms call --timeout 0.1 --json\n\n";

inline constexpr char kWatchNotes[] =
    "On a terminal one line shows the field, its history (x: no answer, ?: not known) and its range. "
    "Otherwise\n"
    "there is a line for each answer. Values for the command's own fields stand behind the seconds. A "
    "server\n"
    "that goes away is waited for. Ctrl-C ends it with a summary on standard error. The exit status is that "
    "of\n"
    "the worst answer.\n\n"
    "Examples:\n"
    "  atctl watch '+CSQ' 0.1 --count 3             the signal, three times\n"
    "  atctl watch '+CSQ' 0.1 --count 3 --field ber --json\n\n";

inline constexpr char kBenchNotes[] =
    "One request at a time, the next one when the answer is there. The times are from before the request is "
    "put\n"
    "into the server's queue until the answer is taken. The exit status is that of the worst answer; three\n"
    "requests in a row without an answer end it.\n\n"
    "Examples:\n"
    "  atctl bench 20                       the modem's attention check\n"
    "  atctl bench 20 --command '+CSQ' --json\n\n";

inline constexpr char kListNotes[] =
    "Examples:\n"
    "  atctl list\n"
    "  atctl list signal --json\n\n";

inline constexpr char kShowNotes[] =
    "The name may be in any case, and without its sign where only one command fits.\n\n"
    "Examples:\n"
    "  atctl show '+CREG'\n"
    "  atctl show csq --json\n\n";

#endif
