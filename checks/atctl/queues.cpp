#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "checks/atctl/support.h"
#include "tools/atctl/asking.h"
#include "tools/atctl/queue_client.h"
#include "tools/atctl/send.h"
#include "tools/shared/exit_status.h"

namespace {

using Status = QueueClient::Status;
using std::chrono::milliseconds;

bool QueueExists(key_t key) {
    return msgget(key, 0) >= 0;
}

// Fills a queue, as far as its kernel lets it.
int Fill(int queue) {
    Wire message;
    message.type = 1;
    int count = 0;
    while (count < 10000 && PutInto(queue, message))
        ++count;
    return count;
}

// A process that owns a queue may use it whatever its mode says when it has this capability.
void DropIpcOwner() {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2] = {};
    ASSERT_EQ(syscall(SYS_capget, &header, data), 0);
    data[0].effective &= ~(1U << CAP_IPC_OWNER);
    ASSERT_EQ(syscall(SYS_capset, &header, data), 0);
}

bool g_stop = false;

// A module id that neither a router nor atctl itself chooses.
uint16_t PrivateModule() {
    return static_cast<uint16_t>(0x5000 + getpid() % 0x1000);
}

// What `atctl send` does against a server of the check's own.
struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
    std::string misuse;
};
Outcome RunSend(key_t key, SendOptions options) {
    Outcome outcome;
    std::ostringstream out;
    std::ostringstream err;
    QueueClient::Setup setup;
    setup.server_key = key;
    try {
        outcome.status = Send(options, setup, {out, err, Look()});
    } catch (const Failure& failure) {
        outcome.status = failure.Status();
        outcome.misuse = failure.what();
    }
    outcome.out = out.str();
    outcome.err = err.str();
    return outcome;
}
SendOptions Options(const std::string& command, std::vector<std::string> fields = {}) {
    SendOptions options;
    options.command = command;
    options.fields = std::move(fields);
    options.timeout = 5;
    return options;
}
SendOptions Short(const std::string& command) {
    SendOptions options = Options(command);
    options.timeout = 0.05;
    return options;
}

}  // namespace

TEST(QueueClient, FindsNoServer) {
    QueueClient client({PrivateKey(), nullptr});
    EXPECT_EQ(client.Open(std::nullopt), Status::no_server);
}

TEST(QueueClient, MakesItsQueueAndTakesItAway) {
    const key_t key = PrivateKey();
    const Queue server(key);
    uint16_t module = 0;
    {
        QueueClient client({key, nullptr});
        ASSERT_EQ(client.Open(std::nullopt), Status::ok);
        module = client.Module();
        EXPECT_GE(module, QueueClient::kFirstModule);
        EXPECT_LT(module, QueueClient::kFirstModule + QueueClient::kModules);
        EXPECT_TRUE(QueueExists(module));
        msqid_ds state = {};
        ASSERT_EQ(msgctl(msgget(module, 0), IPC_STAT, &state), 0);
        EXPECT_EQ(state.msg_perm.mode & 0777, 0600);
    }
    EXPECT_FALSE(QueueExists(module));
}

TEST(QueueClient, ModulesThatAreTakenAreLeftAlone) {
    const key_t key = PrivateKey();
    const Queue server(key);
    QueueClient first({key, nullptr});
    QueueClient second({key, nullptr});
    ASSERT_EQ(first.Open(std::nullopt), Status::ok);
    ASSERT_EQ(second.Open(std::nullopt), Status::ok);
    EXPECT_NE(first.Module(), second.Module());
    QueueClient third({key, nullptr});
    EXPECT_EQ(third.Open(first.Module()), Status::module_in_use);
    third.Close();
    EXPECT_TRUE(QueueExists(first.Module()));
}

TEST(QueueClient, ARequestIsTheRecordThatTheServerReads) {
    const key_t key = PrivateKey();
    const Queue server(key);
    QueueClient client({key, nullptr});
    ASSERT_EQ(client.Open(std::nullopt), Status::ok);
    const Bytes record = Integers({1});
    ASSERT_EQ(client.Send({0x0544, AT_CMD_TYPE_SET, record}, milliseconds(0)), Status::ok);
    Wire request;
    ASSERT_TRUE(TakeFrom(server.Id(), request));
    EXPECT_GT(request.type, 1);
    EXPECT_LE(request.type, INT32_MAX);
    EXPECT_EQ(request.record.usTargetModuleID, AT_MODULE_SERVER);
    EXPECT_EQ(request.record.usSourceModuleID, client.Module());
    EXPECT_EQ(request.record.ulMagic, AT_MESSAGE_MAGIC);
    const _BK_AT_CMD_T command = Command(request);
    EXPECT_EQ(command.usCmdID, 0x0544);
    EXPECT_EQ(command.ucCmdType, AT_CMD_TYPE_SET);
    EXPECT_EQ(command.usParaLen, 4);
    EXPECT_EQ(Bytes(command.aucParas, command.aucParas + 4), record);
}

TEST(QueueClient, EveryRequestHasATypeOfItsOwn) {
    const key_t key = PrivateKey();
    const Queue server(key);
    QueueClient client({key, nullptr});
    ASSERT_EQ(client.Open(std::nullopt), Status::ok);
    std::set<long> types;
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(client.Send({1, AT_CMD_TYPE_EXEC, {}}, milliseconds(0)), Status::ok);
        Wire request;
        ASSERT_TRUE(TakeFrom(server.Id(), request));
        types.insert(request.type);
    }
    EXPECT_EQ(types.size(), 20U);
}

TEST(QueueClient, ARecordThatDoesNotFitIsNotSent) {
    const key_t key = PrivateKey();
    const Queue server(key);
    QueueClient client({key, nullptr});
    ASSERT_EQ(client.Open(std::nullopt), Status::ok);
    EXPECT_EQ(client.Send({1, AT_CMD_TYPE_SET, Bytes(632)}, milliseconds(0)), Status::ok);
    EXPECT_EQ(client.Send({1, AT_CMD_TYPE_SET, Bytes(633)}, milliseconds(0)), Status::failed);
    EXPECT_EQ(client.Error(), EMSGSIZE);
    EXPECT_EQ(client.LookAtServer().waiting, 1);
}

TEST(QueueClient, AFullServerIsGivenUpAfterAWhile) {
    const key_t key = PrivateKey();
    const Queue server(key);
    ASSERT_GT(Fill(server.Id()), 0);
    QueueClient client({key, nullptr});
    ASSERT_EQ(client.Open(std::nullopt), Status::ok);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(client.Send({1, AT_CMD_TYPE_EXEC, {}}, milliseconds(60)), Status::server_full);
    const auto taken = std::chrono::steady_clock::now() - start;
    EXPECT_GE(taken, milliseconds(60));
    EXPECT_LT(taken, milliseconds(5000));
}

TEST(QueueClient, AFullServerThatGoesOnIsServed) {
    const key_t key = PrivateKey();
    const Queue server(key);
    ASSERT_GT(Fill(server.Id()), 0);
    QueueClient client({key, nullptr});
    ASSERT_EQ(client.Open(std::nullopt), Status::ok);
    std::thread reader([&] {
        std::this_thread::sleep_for(milliseconds(20));
        Wire message;
        EXPECT_TRUE(TakeFrom(server.Id(), message));
    });
    EXPECT_EQ(client.Send({1, AT_CMD_TYPE_EXEC, {}}, milliseconds(5000)), Status::ok);
    reader.join();
}

TEST(QueueClient, AQueueOfSomebodyElsesIsRefused) {
    const key_t key = PrivateKey();
    const Queue server(key, 0);
    Status status = Status::ok;
    // Capabilities are a thread's own.
    std::thread([&] {
        DropIpcOwner();
        QueueClient client({key, nullptr});
        status = client.Open(std::nullopt);
    }).join();
    EXPECT_EQ(status, Status::no_permission);
}

TEST(QueueClient, WhatDoesNotAnswerThisRequestIsDroppedAndCounted) {
    const key_t key = PrivateKey();
    FakeServer server(key, [](const Wire& request, const FakeServer::Answer& answer) {
        Wire late = FakeServer::AnswerTo(request, AT_RESULT_OK, Integers({1, 1}));
        late.type = request.type == 7 ? 8 : 7;
        answer(late);
        late.type = 1;  // a report
        answer(late);
        Wire broken = FakeServer::AnswerTo(request, AT_RESULT_OK, Integers({2, 2}));
        broken.record.ulMagic = 0;
        answer(broken);
        PutInto(msgget(late.record.usTargetModuleID, 0), FakeServer::AnswerTo(request, AT_RESULT_OK, {}), 12);
        answer(FakeServer::AnswerTo(request, AT_RESULT_OK, Integers({20, 0})));
    });
    QueueClient client({key, nullptr});
    ASSERT_EQ(client.Open(std::nullopt), Status::ok);
    ASSERT_EQ(client.Send({0x0604, AT_CMD_TYPE_EXEC, {}}, milliseconds(0)), Status::ok);
    MSG_BUF answer;
    ASSERT_EQ(client.Receive(milliseconds(5000), answer), Status::ok);
    EXPECT_EQ(client.Dropped(), 4U);
    _BK_AT_RES_T res;
    memcpy(&res, answer.aucDataBuf, sizeof res);
    EXPECT_EQ(Bytes(res.aucParas, res.aucParas + 4), Integers({20}));
}

TEST(QueueClient, ADialsAnswerMayComeWithTheTypeOfReports) {
    const key_t key = PrivateKey();
    FakeServer server(key, [](const Wire& request, const FakeServer::Answer& answer) {
        Wire other = FakeServer::AnswerTo(request, AT_RESULT_OK, Text("OK", 2));
        other.type = 1;
        _BK_AT_RES_T report = Res(0x0402, AT_CMD_TYPE_EXEC, AT_RESULT_OK, {});
        memcpy(other.record.aucDataBuf, &report, sizeof report);
        answer(other);
        report = Res(0x0401, AT_CMD_TYPE_SET, AT_RESULT_OK, {});
        memcpy(other.record.aucDataBuf, &report, sizeof report);
        answer(other);
        Wire told = FakeServer::AnswerTo(request, AT_RESULT_OK, Text("OK", 2));
        told.type = 1;
        answer(told);
    });
    QueueClient client({key, nullptr});
    ASSERT_EQ(client.Open(std::nullopt), Status::ok);
    const Bytes number = Text("5550123", 7);
    ASSERT_EQ(client.Send({0x0401, AT_CMD_TYPE_EXEC, number}, milliseconds(0)), Status::ok);
    MSG_BUF answer;
    ASSERT_EQ(client.Receive(milliseconds(5000), answer), Status::ok);
    EXPECT_EQ(client.Dropped(), 2U);
    // To any other command, such a message is no answer.
    ASSERT_EQ(client.Send({0x0404, AT_CMD_TYPE_EXEC, {}}, milliseconds(0)), Status::ok);
    EXPECT_EQ(client.Receive(milliseconds(50), answer), Status::timed_out);
    EXPECT_EQ(client.Dropped(), 5U);
}

TEST(QueueClient, NoAnswerEndsTheWait) {
    const key_t key = PrivateKey();
    const Queue server(key);
    QueueClient client({key, nullptr});
    ASSERT_EQ(client.Open(std::nullopt), Status::ok);
    ASSERT_EQ(client.Send({1, AT_CMD_TYPE_EXEC, {}}, milliseconds(0)), Status::ok);
    MSG_BUF answer;
    EXPECT_EQ(client.Receive(milliseconds(30), answer), Status::timed_out);
    EXPECT_EQ(client.LookAtServer().waiting, 1);
    EXPECT_EQ(client.LookAtServer().reader, 0);
}

TEST(QueueClient, TheStopFunctionEndsTheWait) {
    const key_t key = PrivateKey();
    const Queue server(key);
    g_stop = false;
    QueueClient client({key, [] { return g_stop; }});
    ASSERT_EQ(client.Open(std::nullopt), Status::ok);
    ASSERT_EQ(client.Send({1, AT_CMD_TYPE_EXEC, {}}, milliseconds(0)), Status::ok);
    g_stop = true;
    MSG_BUF answer;
    EXPECT_EQ(client.Receive(milliseconds(60'000), answer), Status::stopped);
}

TEST(QueueClient, AQueueThatIsTakenAwayEndsTheWait) {
    const key_t key = PrivateKey();
    const Queue server(key);
    QueueClient client({key, nullptr});
    ASSERT_EQ(client.Open(std::nullopt), Status::ok);
    ASSERT_EQ(client.Send({1, AT_CMD_TYPE_EXEC, {}}, milliseconds(0)), Status::ok);
    msgctl(msgget(client.Module(), 0), IPC_RMID, nullptr);
    MSG_BUF answer;
    EXPECT_EQ(client.Receive(milliseconds(60'000), answer), Status::failed);
}

TEST(Send, AGoodAnswerEndsWith0) {
    const key_t key = PrivateKey();
    FakeServer server(key, FakeServer::Answering(AT_RESULT_OK, Integers({20, 0})));
    const Outcome outcome = RunSend(key, Options("+CSQ"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out.substr(0, 33), "+CSQ  signal quality: OK\n  rssi  ");
    EXPECT_EQ(outcome.err, "");
    ASSERT_EQ(server.Requests().size(), 1U);
    EXPECT_FALSE(QueueExists(server.Requests()[0].record.usSourceModuleID));
}

TEST(Send, AnyOtherResultEndsWith1) {
    for (const uint8_t result : {AT_RESULT_ERROR, AT_RESULT_CMS_ERROR, AT_RESULT_CME_ERROR, AT_RESULT_TIMEOUT,
                                 AT_RESULT_BUSY, AT_RESULT_USSD_ERROR}) {
        const key_t key = PrivateKey();
        FakeServer server(key, FakeServer::Answering(result, Text("10", 2)));
        EXPECT_EQ(RunSend(key, Options("+CPIN?")).status, 1) << unsigned{result};
    }
}

TEST(Send, FieldsTravelAsTheRecord) {
    const key_t key = PrivateKey();
    FakeServer server(key, FakeServer::Answering(AT_RESULT_OK, Text("OK", 2)));
    SendOptions options = Options("+CPMS=", {"SM", "mem3=MT", "mem2=ME"});
    options.module = std::to_string(PrivateModule());
    EXPECT_EQ(RunSend(key, options).status, 0);
    ASSERT_EQ(server.Requests().size(), 1U);
    EXPECT_EQ(server.Requests()[0].record.usSourceModuleID, PrivateModule());
    const _BK_AT_CMD_T command = Command(server.Requests()[0]);
    EXPECT_EQ(command.usParaLen, 30);
    EXPECT_EQ(Bytes(command.aucParas, command.aucParas + 30),
              Text("SM", 10) + Text("ME", 10) + Text("MT", 10));
}

TEST(Send, ADialIsAnsweredWithTheTypeOfReports) {
    const key_t key = PrivateKey();
    FakeServer server(key, [](const Wire& request, const FakeServer::Answer& answer) {
        Wire told = FakeServer::AnswerTo(request, AT_RESULT_OK, Text("OK", 2));
        told.type = 1;
        answer(told);
    });
    const Outcome outcome = RunSend(key, Options("D", {"5550123"}));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "D  dial: OK\n");
    EXPECT_EQ(outcome.err, "");
}

TEST(Send, JsonIsOneObject) {
    const key_t key = PrivateKey();
    FakeServer server(key, FakeServer::Answering(AT_RESULT_OK, Integers({31, 0})));
    SendOptions options = Options("+CSQ");
    options.json = true;
    const auto json = nlohmann::json::parse(RunSend(key, options).out);
    EXPECT_EQ(json["fields"]["rssi"], 31);
    EXPECT_EQ(json["result"], 1);
}

TEST(Send, VerboseShowsBothRecords) {
    const key_t key = PrivateKey();
    FakeServer server(key, FakeServer::Answering(AT_RESULT_OK, Text("OK", 2)));
    SendOptions options = Options("+CPIN=", {"1234"});
    options.verbose = true;
    const Outcome outcome = RunSend(key, options);
    EXPECT_NE(outcome.err.find("request  +CPIN=  id 0x0301, type 2, 64 bytes of parameters"),
              std::string::npos);
    EXPECT_NE(outcome.err.find("pin      1234"), std::string::npos);
    EXPECT_NE(outcome.err.find("  0000  31 32 33 34 00"), std::string::npos);
    EXPECT_NE(outcome.err.find(
                  "id 0x0301, type 2, result 1, usParaLen 2, usDataLen 8, usMsgCmd 0x0302, from 0x1000"),
              std::string::npos)
        << outcome.err;
}

TEST(Send, NoAnswerEndsWith3) {
    const key_t key = PrivateKey();
    const Queue server(key);
    const Outcome outcome = RunSend(key, Short("+CSQ"));
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err,
              "atctl: no answer to +CSQ within 0.050 s; 1 request waits in the server's queue\n");
}

TEST(Send, ALateAnswerIsNotTakenForThisOne) {
    const key_t key = PrivateKey();
    FakeServer server(key, [](const Wire& request, const FakeServer::Answer& answer) {
        Wire late = FakeServer::AnswerTo(request, AT_RESULT_OK, Integers({5, 5}));
        late.type = request.type - 1;
        answer(late);
    });
    const Outcome outcome = RunSend(key, Short("+CSQ"));
    EXPECT_EQ(outcome.status, 3);
    EXPECT_NE(outcome.err.find("atctl: 1 message for this module"), std::string::npos);
}

// A process that reads the queue once and ends; its id.
pid_t ReadOnceAndEnd(int queue) {
    Wire message;
    const pid_t child = fork();
    if (child == 0) _exit(WaitUntil([&] { return TakeFrom(queue, message); }) ? 0 : 1);
    return child;
}

void ExpectGoodEnd(pid_t child) {
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
}

TEST(Send, ADeadServersQueueIsSaid) {
    const key_t key = PrivateKey();
    const Queue server(key);
    Wire message;
    message.type = 1;
    ASSERT_TRUE(PutInto(server.Id(), message));
    const pid_t child = ReadOnceAndEnd(server.Id());
    ExpectGoodEnd(child);
    const std::string gone =
        "the server that last read its queue (process " + std::to_string(child) + ") is gone";
    EXPECT_EQ(RunSend(key, Short("+CSQ")).err, "atctl: no answer to +CSQ within 0.050 s; " + gone + "\n");
    // Said when the first second is over, and once.
    SendOptions options = Options("+CSQ");
    options.timeout = 2.5;
    const Outcome outcome = RunSend(key, options);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.err, "atctl: " + gone +
                               "; still waiting (2.500 s in all), in case it is started again\n"
                               "atctl: no answer to +CSQ within 2.500 s; " +
                               gone + "\n");
}

TEST(Send, AServerThatEndsWithTheRequestIsSaid) {
    const key_t key = PrivateKey();
    const Queue server(key);
    const pid_t child = ReadOnceAndEnd(server.Id());
    SendOptions options = Options("+CSQ");
    options.timeout = 2.5;
    // It must have been waited for before it counts as gone.
    std::thread end([&] { ExpectGoodEnd(child); });
    const Outcome outcome = RunSend(key, options);
    end.join();
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.err.substr(0, outcome.err.find('\n')),
              "atctl: the server that last read its queue (process " + std::to_string(child) +
                  ") is gone and took the request with it; still waiting (2.500 s in all), but better ask "
                  "again");
}

TEST(Send, FaultsOfTheQueuesHaveTheirOwnWords) {
    const key_t key = PrivateKey();
    EXPECT_EQ(RunSend(key, Options("+CSQ")).misuse.substr(0, 35), "there is no server: no message queu");
    const Queue server(key);
    const Queue taken(PrivateModule());
    SendOptions options = Options("+CSQ");
    options.module = std::to_string(PrivateModule());
    EXPECT_EQ(RunSend(key, options).misuse,
              "module " + options.module + " has a queue already; choose another id, or leave --module away");
    ASSERT_GT(Fill(server.Id()), 0);
    EXPECT_EQ(
        RunSend(key, Options("+CSQ")).misuse,
        "the server's queue is full and nobody took anything from it for 2 s; the request was not sent");
}

TEST(Send, AFullQueueIsNotWaitedForLongerThanTheAnswer) {
    const key_t key = PrivateKey();
    const Queue server(key);
    ASSERT_GT(Fill(server.Id()), 0);
    const Outcome outcome = RunSend(key, Short("+CSQ"));
    EXPECT_EQ(outcome.status, 6);
    EXPECT_EQ(outcome.misuse,
              "the server's queue is full and nobody took anything from it for 0.050 s; the request was not "
              "sent");
}

TEST(Send, ModuleIdsAreChecked) {
    for (const char* text : {"0", "65536", "x", "0x", "-1", "12 ", "0x10000"}) {
        SendOptions options = Options("+CSQ");
        options.module = text;
        EXPECT_EQ(RunSend(PrivateKey(), options).misuse,
                  "--module is a number from 1 to 0xFFFF, not \"" + std::string(text) + "\"");
    }
    for (const char* text : {"4096", "0x1000"}) {
        SendOptions options = Options("+CSQ");
        options.module = text;
        EXPECT_EQ(RunSend(PrivateKey(), options).misuse,
                  "--module " + std::string(text) + " is the server's own id");
    }
}

TEST(Send, TheDefaultTimeoutIsLongerThanTheServers) {
    EXPECT_EQ(DefaultTimeout(0x0604), 18);
    EXPECT_EQ(DefaultTimeout(0x0517), 230);
}
