/* A module as its author would write it, with what was installed: asks how strong the signal is. Includes
 * every header that module authors get. */

#include <stdio.h>
#include <string.h>

#include "client/at_client.h"
#include "commands/records_calls.h"
#include "commands/records_data.h"
#include "commands/records_device.h"
#include "commands/records_network.h"
#include "commands/records_phonebook.h"
#include "commands/records_radio.h"
#include "commands/records_sim.h"
#include "commands/records_sms.h"
#include "commands/records_toolkit.h"
#include "records/message.h"
#include "records/payload.h"
#include "reports/report_records.h"

int main(void) {
    at_client_options options;
    memset(&options, 0, sizeof options);
    at_client* client;
    at_client_error error = at_client_open(&options, &client);
    AT_CSQ_EXEC_RES_PARA_T signal;
    if (error == AT_CLIENT_OK) {
        error = at_client_fetch(client, 0x0604, AT_CMD_TYPE_EXEC, NULL, 0, AT_CLIENT_PATIENT, &signal,
                                sizeof signal);
        at_client_close(client);
    }
    if (error != AT_CLIENT_OK) {
        fprintf(stderr, "module: %s\n", at_client_error_text(error));
        return 1;
    }
    printf("rssi %d\n", (int)signal.rssi);
    return 0;
}
