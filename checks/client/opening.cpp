#include <sys/ipc.h>
#include <sys/msg.h>

#include <cerrno>
#include <fstream>
#include <set>

#include "checks/client/support.h"

// Whose a module's queue is, and what becomes of it.

namespace {

at_client_options Module(uint16_t module, at_client_queue queue = AT_CLIENT_QUEUE_OWN) {
    at_client_options options = {};
    options.module = module;
    options.queue = queue;
    return options;
}

// A module id that neither a router nor the library itself chooses.
uint16_t PrivateModule() {
    return static_cast<uint16_t>(0x5000 + getpid() % 0x1000);
}

// Opens the module in a process that ends without closing it.
bool LeftOver(uint16_t module) {
    return InChild([&] {
        at_client* client = nullptr;
        const at_client_options options = Module(module);
        return at_client_open(&options, &client) == AT_CLIENT_OK;
    });
}

}  // namespace

TEST(Opening, MakesAQueueAndTakesItAway) {
    const uint16_t module = PrivateModule();
    {
        const Client client = Open(Module(module));
        EXPECT_EQ(at_client_module(client.get()), module);
        msqid_ds state = {};
        ASSERT_EQ(msgctl(msgget(module, 0), IPC_STAT, &state), 0);
        EXPECT_EQ(state.msg_perm.mode & 0777, 0600);
        EXPECT_EQ(state.msg_qnum, 0U);
        EXPECT_EQ(state.msg_lrpid, getpid());
    }
    EXPECT_FALSE(QueueExists(module));
}

TEST(Opening, NeedsNoServerUnlessToldSo) {
    const key_t key = PrivateKey();
    at_client_options options = OptionsFor(key);
    { const Client client = Open(options); }
    options.module = PrivateModule();
    options.flags = AT_CLIENT_NEED_SERVER;
    EXPECT_EQ(RefusedOpening(options), AT_CLIENT_NO_SERVER);
    EXPECT_FALSE(QueueExists(options.module));
    const Queue server(key);
    const Client client = Open(options);
}

TEST(Opening, AServerOfAnotherUserIsNoServer) {
    const key_t key = PrivateKey();
    const Queue server(key, 0);
    WithoutPrivileges(
        [&] { EXPECT_EQ(RefusedOpening(OptionsFor(key, AT_CLIENT_NEED_SERVER)), AT_CLIENT_NO_PERMISSION); });
}

TEST(Opening, AnyModuleIsOneThatNobodyHas) {
    std::set<uint16_t> modules;
    std::vector<Client> clients;
    for (int i = 0; i < 5; ++i) {
        clients.push_back(Open(OptionsFor(0)));
        const uint16_t module = at_client_module(clients.back().get());
        EXPECT_GE(module, AT_CLIENT_FIRST_ANY);
        EXPECT_LE(module, AT_CLIENT_LAST_ANY);
        modules.insert(module);
    }
    EXPECT_EQ(modules.size(), 5U);
}

TEST(Opening, WhatThisProcessHasIsTaken) {
    const Client first = Open(Module(PrivateModule()));
    for (const at_client_queue queue : {AT_CLIENT_QUEUE_OWN, AT_CLIENT_QUEUE_NEW})
        EXPECT_EQ(RefusedOpening(Module(PrivateModule(), queue)), AT_CLIENT_QUEUE_TAKEN);
    EXPECT_TRUE(QueueExists(PrivateModule()));
}

TEST(Opening, WhatALivingProcessHasIsTaken) {
    const LivingChild child([] {
        at_client* client = nullptr;
        at_client_options options = Module(static_cast<uint16_t>(0x5000 + getppid() % 0x1000));
        return at_client_open(&options, &client) == AT_CLIENT_OK;
    });
    ASSERT_TRUE(child.Good());
    for (const at_client_queue queue : {AT_CLIENT_QUEUE_OWN, AT_CLIENT_QUEUE_NEW, AT_CLIENT_QUEUE_KEPT})
        EXPECT_EQ(RefusedOpening(Module(PrivateModule(), queue)), AT_CLIENT_QUEUE_TAKEN);
    ASSERT_TRUE(QueueExists(PrivateModule()));
    msgctl(msgget(PrivateModule(), 0), IPC_RMID, nullptr);
}

TEST(Opening, WhatNobodyHasReadIsTakenBecauseItsOwnerMayLive) {
    const Queue queue(PrivateModule());
    EXPECT_EQ(RefusedOpening(Module(PrivateModule())), AT_CLIENT_QUEUE_TAKEN);
}

TEST(Opening, WhatAnEndedProcessLeftIsReplaced) {
    ASSERT_TRUE(LeftOver(PrivateModule()));
    const int old = msgget(PrivateModule(), 0);
    ASSERT_GE(old, 0);
    EXPECT_EQ(RefusedOpening(Module(PrivateModule(), AT_CLIENT_QUEUE_NEW)), AT_CLIENT_QUEUE_TAKEN);
    {
        const Client client = Open(Module(PrivateModule()));
        EXPECT_NE(msgget(PrivateModule(), 0), old);
    }
    EXPECT_FALSE(QueueExists(PrivateModule()));
}

TEST(Opening, ReportsInALeftOverQueueAreKept) {
    ASSERT_TRUE(LeftOver(PrivateModule()));
    const int old = msgget(PrivateModule(), 0);
    ASSERT_TRUE(PutInto(old, Report(PrivateModule(), 0x0110, 7)));
    Wire answer = Report(PrivateModule(), kSignal, 20);
    answer.type = 12345;
    ASSERT_TRUE(PutInto(old, answer));
    ASSERT_TRUE(PutInto(old, answer, 5));
    ASSERT_TRUE(PutInto(old, Report(PrivateModule(), 0x0110, 8)));
    const Client client = Open(Module(PrivateModule()));
    at_client_message report;
    for (const int32_t expected : {7, 8}) {
        ASSERT_EQ(at_client_next_report(client.get(), &report, 0), AT_CLIENT_OK);
        EXPECT_EQ(ValueOf(report), expected);
    }
    EXPECT_EQ(at_client_next_report(client.get(), &report, 0), AT_CLIENT_TIMED_OUT);
    EXPECT_EQ(StatsOf(client).stale, 1U);
    EXPECT_EQ(StatsOf(client).foreign, 1U);
}

TEST(Opening, AKeptQueueStaysAndKeepsWhatComes) {
    for (const unsigned flags : {0U, unsigned{AT_CLIENT_THREAD}}) {
        at_client_options options = Module(PrivateModule(), AT_CLIENT_QUEUE_KEPT);
        options.flags = flags;
        {
            const Client client = Open(options);
            at_client_stop(client.get());  // which may leave a mark in the queue
        }
        const int queue = msgget(PrivateModule(), 0);
        ASSERT_GE(queue, 0);
        EXPECT_EQ(Waiting(queue), 0U);
        ASSERT_TRUE(PutInto(queue, Report(PrivateModule(), 0x0110, 9)));
        {
            const Client client = Open(options);
            at_client_message report;
            ASSERT_EQ(at_client_next_report(client.get(), &report, kLong), AT_CLIENT_OK);
            EXPECT_EQ(ValueOf(report), 9);
        }
        ASSERT_EQ(msgctl(queue, IPC_RMID, nullptr), 0);
    }
}

TEST(Opening, AKeptQueueOfAnotherUserIsRefused) {
    const Queue queue(PrivateModule(), 0);
    WithoutPrivileges([] {
        EXPECT_EQ(RefusedOpening(Module(PrivateModule(), AT_CLIENT_QUEUE_KEPT)), AT_CLIENT_NO_PERMISSION);
    });
}

TEST(Opening, ASystemWithoutRoomForAnotherQueueSaysSo) {
    // The sandbox has its own limit, which its root may set.
    const auto limit = [](int queues) {
        std::ofstream file("/proc/sys/kernel/msgmni");
        file << queues << std::endl;
        return file.good();
    };
    int before = 0;
    std::ifstream("/proc/sys/kernel/msgmni") >> before;
    const Client client = Open(OptionsFor(0));
    if (!limit(1)) GTEST_SKIP() << "the limit of queues cannot be set here";
    EXPECT_EQ(RefusedOpening(OptionsFor(0)), AT_CLIENT_NO_QUEUE);
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_TRUE(limit(before));
}

TEST(Opening, WhatCannotWorkIsMisuse) {
    at_client* client = nullptr;
    at_client_options options = Module(PrivateModule());
    EXPECT_EQ(at_client_open(&options, nullptr), AT_CLIENT_MISUSE);
    EXPECT_EQ(at_client_open(nullptr, &client), AT_CLIENT_MISUSE);
    EXPECT_EQ(RefusedOpening(Module(AT_MODULE_SERVER)), AT_CLIENT_MISUSE);
    EXPECT_EQ(RefusedOpening(Module(AT_CLIENT_ANY_MODULE, AT_CLIENT_QUEUE_KEPT)), AT_CLIENT_MISUSE);
    options.flags = 8;
    EXPECT_EQ(RefusedOpening(options), AT_CLIENT_MISUSE);
    at_client_close(nullptr);
    at_client_stop(nullptr);
    EXPECT_EQ(at_client_fd(nullptr), -1);
    EXPECT_EQ(at_client_module(nullptr), AT_CLIENT_ANY_MODULE);
    EXPECT_EQ(at_client_ask(nullptr, kSignal, AT_CMD_TYPE_EXEC, nullptr, 0, 0, nullptr), AT_CLIENT_MISUSE);
    EXPECT_EQ(at_client_poll(nullptr, 0), AT_CLIENT_MISUSE);
}

TEST(Texts, EveryErrorAndResultHasItsOwn) {
    std::set<std::string> texts;
    for (int error = AT_CLIENT_OK; error <= AT_CLIENT_FAILED; ++error)
        texts.insert(at_client_error_text(static_cast<at_client_error>(error)));
    EXPECT_EQ(texts.size(), static_cast<size_t>(AT_CLIENT_FAILED) + 1);
    EXPECT_FALSE(texts.contains("unknown error"));
    EXPECT_STREQ(at_client_error_text(static_cast<at_client_error>(AT_CLIENT_FAILED + 1)), "unknown error");
    std::set<std::string> results;
    for (const int result : {1, 2, 3, 4, 5, 6, 11})
        results.insert(at_client_result_text(static_cast<uint8_t>(result)));
    EXPECT_EQ(results.size(), 7U);
    EXPECT_FALSE(results.contains("unknown result"));
    EXPECT_STREQ(at_client_result_text(0), "unknown result");
}
