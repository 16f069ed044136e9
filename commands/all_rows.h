#ifndef AT_COMMANDS_ALL_ROWS_H
#define AT_COMMANDS_ALL_ROWS_H

#include "commands/row_check.h"
#include "commands/rows_calls.h"
#include "commands/rows_data.h"
#include "commands/rows_device.h"
#include "commands/rows_network.h"
#include "commands/rows_phonebook.h"
#include "commands/rows_radio.h"
#include "commands/rows_sim.h"
#include "commands/rows_sms.h"
#include "commands/rows_toolkit.h"

// The domains of the command table.

template <template <const auto&...> typename Use>
using WithAllRows = Use<kCallsRows, kDataRows, kDeviceRows, kNetworkRows, kPhonebookRows, kRadioRows,
                        kSimRows, kSmsRows, kToolkitRows>;

#endif
