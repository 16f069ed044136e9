#ifndef AT_TOOLS_ATCTL_STREAMS_H
#define AT_TOOLS_ATCTL_STREAMS_H

#include <ostream>

#include "tools/shared/terminal.h"

// Where a subcommand writes to.
struct Streams {
    std::ostream& out;
    std::ostream& err;
    Look look;  // of `out`
};

#endif
