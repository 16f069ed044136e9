/* The short message module: waits for the modem to tell of a message, and reads it. It has other things to
 * wait for (here: a line on standard input, "list"), so it uses the descriptor for poll() and the thread
 * behind it.
 *
 *     receive_messages        until Ctrl-C or the end of standard input */

#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "client/at_client.h"
#include "commands/command_ids.h"
#include "commands/records_sms.h"

static at_client* g_client;

static void Stop(int number) {
    (void)number;
    at_client_stop(g_client);
}

static void ReadMessage(int32_t index) {
    const AT_CMGR_SET_PARA_T which = {.index = index};
    AT_CMGR_SET_RES_PARA_T message;
    const at_client_error error = at_client_fetch(g_client, AT_ID_CMGR, AT_CMD_TYPE_SET, &which, sizeof which,
                                                  AT_CLIENT_PATIENT, &message, sizeof message);
    /* This record is larger than a message of the queue. Its front comes, which holds a PDU of 464 digits. */
    if (error == AT_CLIENT_OK || error == AT_CLIENT_CUT)
        printf("message %d, %d octets: %s\n", (int)index, (int)message.length, message.pdu);
    else
        fprintf(stderr, "receive_messages: message %d: %s\n", (int)index, at_client_error_text(error));
}

/* All reports that wait. What stopped it: AT_CLIENT_TIMED_OUT when there are no more. */
static at_client_error TakeReports(void) {
    at_client_message report;
    at_client_error error;
    while ((error = at_client_next_report(g_client, &report, 0)) == AT_CLIENT_OK) {
        AT_CMTI_NOTIFY_RES_PARA_T place;
        if (report.cmd_id == AT_ID_CMTI && at_client_record(&report, &place, sizeof place) == AT_CLIENT_OK)
            ReadMessage(place.index);
        else
            printf("report 0x%04X\n", report.cmd_id);
    }
    return error;
}

int main(int argc, char** argv) {
    if (argc > 1) {
        const int help = argc == 2 && strcmp(argv[1], "--help") == 0;
        fputs("usage: receive_messages    (\"list\" on standard input reads messages 1 to 3)\n",
              help ? stdout : stderr);
        return help ? 0 : 2;
    }
    setvbuf(stdout, NULL, _IOLBF, 0);
    const at_client_options options = {.module = AT_MODULE_SMS, .flags = AT_CLIENT_THREAD};
    at_client_error error = at_client_open(&options, &g_client);
    if (error != AT_CLIENT_OK) {
        fprintf(stderr, "receive_messages: opening: %s\n", at_client_error_text(error));
        return 1;
    }
    struct sigaction action;
    memset(&action, 0, sizeof action);
    action.sa_handler = Stop;
    sigaction(SIGINT, &action, NULL);
    sigaction(SIGTERM, &action, NULL);

    const AT_CNMI_SET_PARA_T tell = {.mode = 2, .mt = 1};
    error = at_client_fetch(g_client, AT_ID_CNMI, AT_CMD_TYPE_SET, &tell, sizeof tell, AT_CLIENT_PATIENT,
                            NULL, 0);
    if (error == AT_CLIENT_OK) {
        puts("waiting for messages");
        error = AT_CLIENT_TIMED_OUT;
    }
    struct pollfd ready[] = {{.fd = at_client_fd(g_client), .events = POLLIN},
                             {.fd = STDIN_FILENO, .events = POLLIN}};
    while (error == AT_CLIENT_TIMED_OUT) {
        /* A signal ends poll() too; the stop then shows in TakeReports. */
        if (poll(ready, 2, -1) > 0 && ready[1].revents != 0) {
            char line[256];
            const ssize_t got = read(STDIN_FILENO, line, sizeof line);
            if (got <= 0) break;
            if (got >= 4 && memcmp(line, "list", 4) == 0)
                for (int32_t index = 1; index <= 3; ++index)
                    ReadMessage(index);
        }
        error = TakeReports();
    }
    at_client_close(g_client);
    if (error == AT_CLIENT_TIMED_OUT || error == AT_CLIENT_STOPPED) return 0;
    fprintf(stderr, "receive_messages: %s\n", at_client_error_text(error));
    return 1;
}
