#ifndef AT_REPORTS_HANDLING_H
#define AT_REPORTS_HANDLING_H

#include "reports/sorting.h"

// Parses one response (NUL-terminated) and delivers it as the answer to the request in flight, or routes it
// as a report. `cut` is how it was cut out of the modem's text; `in_answer` says that it stood inside an
// answer that had begun. For the response thread.
void HandleResponse(const char* text, Cut cut, bool in_answer);

#endif
