#include <sys/ipc.h>
#include <sys/msg.h>
#include <chrono>

#include "checks/dialogue/conversation.h"
#include "checks/dialogue/usage.h"
#include "platform/platform.h"

// Queues that are full, removed or made anew under the daemon's hands.

namespace {

class QueueFaults : public testing::Test {
  protected:
    World world_{PlainAnswer};
    Module sim_{AT_MODULE_SIM};
    Module other_{0x1234};
    const Usage before_ = UsageOf(world_.daemon.Pid());

    void TearDown() override {
        ASSERT_TRUE(world_.daemon.Running());
        EXPECT_EQ(UsageOf(world_.daemon.Pid()).descriptors, before_.descriptors);
    }

    void ExpectCalm() { EXPECT_LT(BusyShare(world_.daemon.Pid(), 1), kSpinning); }

    // Puts messages of the daemon's size on a module's queue until it takes no more; their number.
    static int Fill(const Module& module) {
        struct {
            long type = 99;
            char body[AT_WIRE_SIZE] = {};
        } filler;
        int count = 0;
        while (msgsnd(module.Queue(), &filler, sizeof filler.body, IPC_NOWAIT) == 0)
            ++count;
        EXPECT_EQ(errno, EAGAIN);
        return count;
    }

    // An answer that finds the queue of its module full, and a request of another module behind it.
    void AskWithAFullQueue(const Module& full) {
        world_.modem.SetAnswer(Silence);
        full.Ask(0x0604, kExec);
        ASSERT_TRUE(world_.modem.WaitForLine("AT+CSQ"));
        world_.modem.SetAnswer(PlainAnswer);
        world_.modem.Say(PlainAnswer("AT+CSQ"));
        other_.Ask(0x0544, kRead);
        world_.modem.Say("\r\n+CREG: 1\r\n");
        EXPECT_FALSE(world_.modem.WaitForLine("AT+CFUN?", 0.5));
        Received nothing;
        EXPECT_FALSE(sim_.Receive(nothing, 0.1)) << "a report overtook the answer";
    }

    void ExpectTheRestToBeServed() {
        EXPECT_EQ(Next(sim_), Report(sim_, 0x052D, 6, I32({1}) + Text("", 32)));
        EXPECT_EQ(Next(other_), Answer(other_, 0x0544, kRead, 1, I32({1})));
    }
};

TEST_F(QueueFaults, FullModuleQueueHoldsTheServerUntilItIsRead) {
    Module full(0x2345);
    const int fillers = Fill(full);
    ASSERT_GT(fillers, 0);
    AskWithAFullQueue(full);
    ExpectCalm();

    Received message;
    for (int i = 0; i < fillers; ++i) {
        ASSERT_TRUE(full.Receive(message));
        ASSERT_EQ(message.type, 99);
    }
    EXPECT_EQ(Next(full), Answer(full, 0x0604, kExec, 1, I32({20, 0})));
    ExpectTheRestToBeServed();
}

TEST_F(QueueFaults, FullModuleQueueThatIsRemovedCostsItsAnswerOnly) {
    {
        Module full(0x2345);
        Fill(full);
        AskWithAFullQueue(full);
    }
    EXPECT_TRUE(world_.log.WaitFor("ERROR: send_msg_buf:: send msg failed, error code "));
    EXPECT_TRUE(world_.log.WaitFor("ERROR: send_msg_buf send msg failed, error code 42506!"));
    ExpectTheRestToBeServed();
    Module again(0x2345);
    EXPECT_EQ(again.Exchange(0x0604, kExec).I32(0), 20);
}

TEST_F(QueueFaults, AnswerGoesToTheQueueThatIsThereWhenItComes) {
    world_.modem.SetAnswer(Silence);
    auto module = std::make_unique<Module>(uint16_t{0x2345});
    module->Ask(0x0604, kExec);
    ASSERT_TRUE(world_.modem.WaitForLine("AT+CSQ"));
    module.reset();
    module = std::make_unique<Module>(uint16_t{0x2345});
    world_.modem.Say(PlainAnswer("AT+CSQ"));
    EXPECT_EQ(Next(*module), Answer(*module, 0x0604, kExec, 1, I32({20, 0})));
}

TEST_F(QueueFaults, AnswerWithoutAQueueIsLostAndTheNextModuleIsServed) {
    world_.modem.SetAnswer(Silence);
    {
        Module module(0x2345);
        module.Ask(0x0604, kExec);
        ASSERT_TRUE(world_.modem.WaitForLine("AT+CSQ"));
    }
    world_.modem.SetAnswer(PlainAnswer);
    world_.modem.Say(PlainAnswer("AT+CSQ"));
    EXPECT_TRUE(world_.log.WaitFor("send_msg_buf ::get target msg id 0x2345 failed!"));
    EXPECT_EQ(other_.Exchange(0x0544, kRead).I32(0), 1);
}

TEST_F(QueueFaults, RemovedServerQueueIsLookedAtTwentyTimesASecondAndNotMadeAnew) {
    world_.modem.SetAnswer(Silence);
    other_.Ask(0x0604, kExec);
    ASSERT_TRUE(world_.modem.WaitForLine("AT+CSQ"));
    ASSERT_EQ(msgctl(ServerQueue(), IPC_RMID, nullptr), 0);
    world_.modem.Say(PlainAnswer("AT+CSQ"));
    EXPECT_EQ(Next(other_), Answer(other_, 0x0604, kExec, 1, I32({20, 0}))) << "it was taken before";

    const std::string error = "[error]: Receive message error!error code:42501";
    ASSERT_TRUE(world_.log.WaitFor(error));
    world_.log.Forget();
    const auto began = std::chrono::steady_clock::now();
    EXPECT_LT(BusyShare(world_.daemon.Pid(), 2), kSpinning);
    const auto errors = static_cast<double>(world_.log.Count(error));
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
    EXPECT_LE(errors, 22 * took.count() + 1);
    EXPECT_TRUE(world_.log.WaitFor("(1/1/0/0/-1)")) << "the queue's depth cannot be read";
    EXPECT_EQ(ServerQueue(), -1);

    // The other thread goes on.
    world_.modem.Say("\r\n+CREG: 1\r\n");
    EXPECT_EQ(Next(sim_), Report(sim_, 0x052D, 6, I32({1}) + Text("", 32)));

    world_.daemon.Kill();
    world_.log.Forget();
    world_.modem.SetAnswer(PlainAnswer);
    world_.daemon.Start();
    ASSERT_TRUE(world_.log.WaitFor("AT response thread  is running ...", 20));
    EXPECT_EQ(other_.Exchange(0x0604, kExec).I32(0), 20);
}

TEST_F(QueueFaults, ServerQueueRemovedWhileTheServerWaitsForARequest) {
    ASSERT_TRUE(world_.log.WaitFor("Listening message queue..."));
    ASSERT_EQ(msgctl(ServerQueue(), IPC_RMID, nullptr), 0);
    EXPECT_TRUE(world_.log.WaitFor("[error]: Receive message error!error code:42501", 5, 3));
    ExpectCalm();
}

}  // namespace
