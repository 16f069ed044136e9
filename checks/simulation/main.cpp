// The simulation's command line: plays episodes until enough requests were served, and shortens one that
// fails.

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "checks/simulation/world.h"

namespace {

constexpr unsigned kEventsPerEpisode = 40;

double Seconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

uint64_t EpisodeSeed(uint64_t seed, uint64_t number) {
    return seed * 1'000'003 + number;
}

// Whether the episode fails in a server that has just been started.
bool FailsAlone(const Episode& episode, bool obvious) {
    fflush(stdout);
    const pid_t child = fork();
    if (child == 0) _exit(Play(episode, false, obvious).failed ? 1 : 0);
    int status = 0;
    waitpid(child, &status, 0);
    return !WIFEXITED(status) || WEXITSTATUS(status) != 0;
}

// Drops events while the episode still fails.
void Shorten(Episode& episode, bool obvious) {
    for (size_t size = episode.events.size() / 2; size > 0; size /= 2) {
        for (size_t from = 0; from + size <= episode.events.size();) {
            Episode shorter = episode;
            const auto begin = shorter.events.begin() + static_cast<std::ptrdiff_t>(from);
            shorter.events.erase(begin, begin + static_cast<std::ptrdiff_t>(size));
            if (FailsAlone(shorter, obvious))
                episode = shorter;
            else
                from += size;
        }
    }
}

void Show(const Totals& totals, double seconds) {
    const auto line = [](const char* what, uint64_t count) {
        printf("%12llu  %s\n", static_cast<unsigned long long>(count), what);
    };
    line("requests received and followed to their end", totals.requests);
    line("answered with the modem's own record", totals.exact);
    line("answered with the modem's own error", totals.own_errors);
    line("timed out after exactly their rounds", totals.timeouts);
    line("timed out on the count of a request that they overwrote", totals.inherited);
    line("answered once amid noise or another line's late answer", totals.disturbed);
    line("dials", totals.dials);
    line("overwritten after a generation or port failure", totals.overwritten);
    line("ended by a call event", totals.cleared);
    line("from requesters without a queue", totals.unreachable);
    line("hostile messages", totals.refused);
    line("reports that arrived exactly as often as stated", totals.reports);
    line("reports amid noise, prompts or missing queues", totals.loose_reports);
    line("switches between the threads", totals.switches);
    printf("%12.1f  seconds\n", seconds);
}

[[noreturn]] void Usage(int status) {
    fprintf(status == 0 ? stdout : stderr,
            "simulate [--seed N] [--count N] [--obvious]\n"
            "  --seed N    the world to play (default 1)\n"
            "  --count N   requests to serve at least (default 1000000)\n"
            "  --obvious   with a shared record and a flag instead of the hand-over: has to fail\n");
    exit(status);
}

}  // namespace

int main(int argc, char** argv) {
    uint64_t seed = 1;
    uint64_t count = 1'000'000;
    bool obvious = false;
    for (int i = 1; i < argc; ++i) {
        if (strcmp(argv[i], "--obvious") == 0)
            obvious = true;
        else if (strcmp(argv[i], "--seed") == 0 && i + 1 < argc)
            seed = strtoull(argv[++i], nullptr, 10);
        else if (strcmp(argv[i], "--count") == 0 && i + 1 < argc)
            count = strtoull(argv[++i], nullptr, 10);
        else
            Usage(strcmp(argv[i], "--help") == 0 ? 0 : 2);
    }

    // The world is played in a child, so that this process keeps a server that was never started.
    int ends[2];
    if (pipe(ends) != 0) return 2;
    const double started = Seconds();
    const pid_t child = fork();
    if (child == 0) {
        Totals totals;
        for (uint64_t number = 0; totals.requests < count; ++number) {
            const Outcome outcome =
                Play(MakeEpisode(EpisodeSeed(seed, number), kEventsPerEpisode), false, obvious);
            if (outcome.failed) {
                printf("episode %llu: %s\n", static_cast<unsigned long long>(number), outcome.fault.c_str());
                fflush(stdout);
                if (write(ends[1], &number, sizeof number) < 0) _exit(3);
                _exit(1);
            }
            totals.Add(outcome.totals);
        }
        Show(totals, Seconds() - started);
        fflush(stdout);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return 0;
    uint64_t number = 0;
    if (!WIFEXITED(status) || read(ends[0], &number, sizeof number) != sizeof number) {
        fprintf(stderr, "simulate: seed %llu ended the server (status %d)\n",
                static_cast<unsigned long long>(seed), status);
        return 1;
    }
    Episode episode = MakeEpisode(EpisodeSeed(seed, number), kEventsPerEpisode);
    if (!FailsAlone(episode, obvious)) {
        printf("seed %llu fails in episode %llu, but only after the episodes before it\n",
               static_cast<unsigned long long>(seed), static_cast<unsigned long long>(number));
        for (uint64_t before = 0; before < number; ++before)
            Play(MakeEpisode(EpisodeSeed(seed, before), kEventsPerEpisode), false, obvious);
        for (const std::string& line : Play(episode, true, obvious).trace)
            puts(line.c_str());
        return 1;
    }
    Shorten(episode, obvious);
    const Outcome outcome = Play(episode, true, obvious);
    printf("seed %llu, episode %llu, %zu of %u events left: %s\n", static_cast<unsigned long long>(seed),
           static_cast<unsigned long long>(number), episode.events.size(), kEventsPerEpisode,
           outcome.fault.c_str());
    for (const std::string& line : outcome.trace)
        puts(line.c_str());
    return 1;
}
