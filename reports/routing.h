#ifndef AT_REPORTS_ROUTING_H
#define AT_REPORTS_ROUTING_H

#include "records/message.h"

// Recognises unsolicited reports by their text and sends each to the module concerned, decoded where it has
// parameters (reports/report_records.h). Some change the call state in the configuration store, answer the
// modem's prompt for a message, or end the request in flight. Response thread only. Log lines carry
// "response".

// What a report may do besides being sent. A report that stood inside an answer in progress, or that is known
// to be one, must neither be taken for the prompt of +CMGS and +CMGW nor end the request whose answer is
// still coming.
struct RouteContext {
    bool may_prompt = true;
    bool may_clear = true;
};

// Routes the response in pRes->aucDataBuf (a _BK_AT_RES_T), whose aucParas may be rewritten on the way. A
// report that no rule knows is dropped; one that cannot be sent is logged.
void RouteReport(MSG_BUF* pRes, const RouteContext& context);

// The same with everything allowed.
void resolve_auto_report(MSG_BUF* pRes);

#endif
