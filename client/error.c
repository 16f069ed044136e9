#include "client/at_client.h"

const char* at_client_error_text(at_client_error error) {
    switch (error) {
        case AT_CLIENT_OK:
            return "no error";
        case AT_CLIENT_TIMED_OUT:
            return "nothing came in the time given";
        case AT_CLIENT_REFUSED:
            return "the answer is not OK; ask with at_client_ask to see its result";
        case AT_CLIENT_WRONG_SIZE:
            return "the record that came has another size than the one asked for; compare docs/commands.md";
        case AT_CLIENT_CUT:
            return "the record is larger than a message; docs/commands.md tells the file that holds the rest";
        case AT_CLIENT_NO_SERVER:
            return "there is no queue of the server's; start at-server";
        case AT_CLIENT_SERVER_FULL:
            return "the server's queue stayed full and the request was not sent; try again later";
        case AT_CLIENT_NO_PERMISSION:
            return "the queue belongs to another user; run as the server's user";
        case AT_CLIENT_QUEUE_TAKEN:
            return "the module has a queue already; end the program that uses it, or remove it with ipcrm -Q";
        case AT_CLIENT_NO_QUEUE:
            return "the kernel makes no queue for the module (see errno); look for unused ones with ipcs -q";
        case AT_CLIENT_QUEUE_GONE:
            return "somebody removed the module's queue; close the handle and open it again";
        case AT_CLIENT_TOO_MANY:
            return "too many requests are open at the same time; wait for an answer first";
        case AT_CLIENT_STOPPED:
            return "stopped by at_client_stop";
        case AT_CLIENT_MISUSE:
            return "the call can never work as it was made; see its description in client/at_client.h";
        case AT_CLIENT_FAILED:
            return "a system call failed (see errno)";
    }
    return "unknown error";
}

const char* at_client_result_text(uint8_t result) {
    switch (result) {
        case AT_RESULT_OK:
            return "OK";
        case AT_RESULT_ERROR:
            return "error";
        case AT_RESULT_CMS_ERROR:
            return "message service error (CMS)";
        case AT_RESULT_CME_ERROR:
            return "modem error (CME)";
        case AT_RESULT_TIMEOUT:
            return "the modem gave no answer in time";
        case AT_RESULT_BUSY:
            return "busy";
        case AT_RESULT_USSD_ERROR:
            return "USSD error";
        default:
            return "unknown result";
    }
}
