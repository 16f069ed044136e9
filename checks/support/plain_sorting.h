#ifndef AT_CHECKS_SUPPORT_PLAIN_SORTING_H
#define AT_CHECKS_SUPPORT_PLAIN_SORTING_H

#include "reports/sorting.h"

// What NextResponse is meant to do, in its plainest form: everything is looked at anew at each call, and
// every byte is compared with every marker. Leaves g_sms_prompt alone.
Response PlainNextResponse(const char* text, const PendingCommand& pending, const Continuation& continuation);

#endif
