#ifndef AT_COMMANDS_ROWS_PHONEBOOK_H
#define AT_COMMANDS_ROWS_PHONEBOOK_H

#include "commands/atdecode.h"
#include "commands/atencode.h"
#include "commands/list_file.h"
#include "commands/row.h"

// The commands of the phonebook.

inline constexpr Row kPhonebookRows[] = {
    {.position = 59, .id = 0x0201, .name = "+CPBS"},
    {.position = 60, .id = 0x0202, .name = "+CPBR"},
    {.position = 61, .id = 0x0204, .name = "+CPBW"},
    {.position = 62, .id = 0x0206, .name = "+ZCPBR"},
    {.position = 63, .id = 0x0207, .name = "+ZCPBW"},
    {.position = 64, .id = 0x0208, .name = "+CSCS", .decode = kResultOnly},
};

#endif
