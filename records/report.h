#ifndef AT_RECORDS_REPORT_H
#define AT_RECORDS_REPORT_H

#include "records/message.h"

// Sending an unsolicited report to a module. It needs the records and the queue, nothing else, so that the
// response parser can push reports as well as the routing above it. Log lines carry "response".

// The length word of every report, whatever it carries.
inline constexpr uint16_t kReportDataLen = 518;

// Sends the parameters of `res` to module `target` as command `cmd_id`, type `cmd_type`, result 1. For +CUSD
// (0x0532) the length is carried and the parameters are zeros: the module fetches the text from the file. 0
// sent, 1 failed.
int send_auto_report(int target, int cmd_id, int cmd_type, const _BK_AT_RES_T* res);

// The same with the result of `res` and without the +CUSD exception.
int send_auto_report_ussd_error(int target, int cmd_id, int cmd_type, const _BK_AT_RES_T* res);

#endif
