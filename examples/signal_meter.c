/* A module that reads the signal every second: one thread, nothing but questions and answers.
 *
 *     signal_meter [READINGS]        without a number: until Ctrl-C */

#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "client/at_client.h"
#include "commands/command_ids.h"
#include "commands/records_network.h"

static at_client* g_client;

static void Stop(int number) {
    (void)number;
    at_client_stop(g_client); /* every wait below ends with AT_CLIENT_STOPPED */
}

static void CatchSignals(void) {
    struct sigaction action;
    memset(&action, 0, sizeof action);
    action.sa_handler = Stop;
    sigaction(SIGINT, &action, NULL);
    sigaction(SIGTERM, &action, NULL);
}

static void Show(const AT_CSQ_EXEC_RES_PARA_T* quality) {
    if (quality->rssi == 99)
        puts("no signal");
    else
        printf("%d dBm\n", -113 + 2 * (int)quality->rssi);
}

/* A count from 1 to 9999; 0 for anything else. */
static int Count(const char* text) {
    const size_t digits = strspn(text, "0123456789");
    return digits >= 1 && digits <= 4 && text[digits] == '\0' ? atoi(text) : 0;
}

int main(int argc, char** argv) {
    const int help = argc == 2 && strcmp(argv[1], "--help") == 0;
    const int readings = argc == 2 ? Count(argv[1]) : 0;
    if (help || argc > 2 || (argc == 2 && readings == 0)) {
        fputs("usage: signal_meter [READINGS]    (1 to 9999; without: until Ctrl-C)\n",
              help ? stdout : stderr);
        return help ? 0 : 2;
    }
    setvbuf(stdout, NULL, _IOLBF, 0);

    /* Any free module id will do: nobody reports to us. */
    const at_client_options options = {.module = AT_CLIENT_ANY_MODULE};
    at_client_error error = at_client_open(&options, &g_client);
    if (error != AT_CLIENT_OK) {
        fprintf(stderr, "signal_meter: opening: %s\n", at_client_error_text(error));
        return 1;
    }
    CatchSignals();

    for (int done = 0; readings == 0 || done < readings; ++done) {
        AT_CSQ_EXEC_RES_PARA_T quality;
        error = at_client_fetch(g_client, AT_ID_CSQ, AT_CMD_TYPE_EXEC, NULL, 0, AT_CLIENT_PATIENT, &quality,
                                sizeof quality);
        if (error == AT_CLIENT_OK)
            Show(&quality);
        else if (error == AT_CLIENT_REFUSED || error == AT_CLIENT_TIMED_OUT)
            fprintf(stderr, "signal_meter: no reading: %s\n",
                    at_client_error_text(error)); /* the next may work */
        else
            break;
        /* A second's pause that a stop ends. */
        at_client_message report;
        error = at_client_next_report(g_client, &report, 1000);
        if (error != AT_CLIENT_OK && error != AT_CLIENT_TIMED_OUT) break;
    }
    at_client_close(g_client); /* removes the queue */
    if (error == AT_CLIENT_OK || error == AT_CLIENT_TIMED_OUT || error == AT_CLIENT_STOPPED) return 0;
    fprintf(stderr, "signal_meter: %s\n", at_client_error_text(error));
    return 1;
}
