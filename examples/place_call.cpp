// The call module: dials, tells how the call gets on, hangs up after a while. Reports come by callback, on
// the handle's thread, while the main thread asks and waits.
//
//     place_call NUMBER [SECONDS]        talks for SECONDS (default 5), or until Ctrl-C

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "client/at_client.h"
#include "commands/command_ids.h"

namespace {

// All that the handler and the callback touch: the main thread looks every 10 ms.
std::atomic<bool> g_stop{false};
std::atomic<bool> g_connected{false};
std::atomic<bool> g_over{false};

void OnReport(at_client*, const at_client_message* report, void*) {
    char text[64];
    at_client_text(report, text, sizeof text);
    switch (report->cmd_id) {
        case AT_ID_RINGBACK:
            std::puts("it rings over there");
            break;
        case AT_ID_CONNECT:
            std::puts("connected");
            g_connected = true;
            break;
        case AT_ID_HANGUP:
        case AT_ID_VOICE_NO_CARRIER:
            std::printf("the call has ended (%s)\n", text);
            g_over = true;
            break;
        default:
            std::printf("report 0x%04X %s\n", unsigned{report->cmd_id}, text);
    }
}

// Until the condition is true, at most so long. False when the time is up, the call over or Ctrl-C pressed.
template <class Condition>
bool WaitFor(std::chrono::seconds time, Condition condition) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (!condition()) {
        if (g_stop || g_over || std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

// One command of which only the result matters. True when the modem said OK.
bool Command(at_client* client, uint16_t cmd_id, const char* text, const char* what) {
    at_client_message answer;
    const at_client_error error =
        at_client_ask(client, cmd_id, AT_CMD_TYPE_EXEC, text, std::strlen(text), 10'000, &answer);
    if (error == AT_CLIENT_OK && answer.result == AT_RESULT_OK) return true;
    std::fprintf(stderr, "place_call: %s: %s\n", what,
                 error != AT_CLIENT_OK ? at_client_error_text(error) : at_client_result_text(answer.result));
    return false;
}

// All that stands in a number to dial.
bool IsNumber(const char* text) {
    return *text != '\0' && text[std::strspn(text, "+*#0123456789")] == '\0';
}

// Whole seconds, at most four digits; -1 for anything else.
int Seconds(const char* text) {
    const size_t digits = std::strspn(text, "0123456789");
    return digits >= 1 && digits <= 4 && text[digits] == '\0' ? std::atoi(text) : -1;
}

}  // namespace

int main(int argc, char** argv) {
    const bool help = argc == 2 && std::strcmp(argv[1], "--help") == 0;
    const std::chrono::seconds talk(argc == 3 ? Seconds(argv[2]) : 5);
    if (help || argc < 2 || argc > 3 || !IsNumber(argv[1]) || talk.count() < 0) {
        std::fputs("usage: place_call NUMBER [SECONDS]    (digits, + * #; 0 to 9999 seconds)\n",
                   help ? stdout : stderr);
        return help ? 0 : 2;
    }
    // The server would cut it and dial somebody else.
    if (std::strlen(argv[1]) > AT_DIAL_NUMBER_SIZE) {
        std::fprintf(stderr, "place_call: a number has at most %d characters; this one has %zu\n",
                     int{AT_DIAL_NUMBER_SIZE}, std::strlen(argv[1]));
        return 2;
    }
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    std::signal(SIGINT, [](int) { g_stop = true; });
    std::signal(SIGTERM, [](int) { g_stop = true; });

    at_client_options options = {};
    options.module = AT_MODULE_CALL;  // call reports go to this module
    options.flags = AT_CLIENT_THREAD;
    options.on_report = OnReport;
    at_client* client = nullptr;
    const at_client_error error = at_client_open(&options, &client);
    if (error != AT_CLIENT_OK) {
        std::fprintf(stderr, "place_call: opening: %s\n", at_client_error_text(error));
        return 1;
    }
    // The parameters of a dial are the number, without a NUL.
    bool good = Command(client, AT_ID_D, argv[1], "dialling");
    if (good) {
        std::printf("dialling %s\n", argv[1]);
        good = WaitFor(std::chrono::seconds(60), [] { return g_connected.load(); });
        if (good) WaitFor(talk, [] { return false; });
        // Ctrl-C or not, the call must not go on without us. at_client_stop would have ended this question
        // too.
        if (!g_over && Command(client, AT_ID_CHUP, "", "hanging up"))
            WaitFor(std::chrono::seconds(5), [] { return g_over.load(); });
    }
    at_client_close(client);
    return good ? 0 : 1;
}
