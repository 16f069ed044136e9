#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "checks/dialogue/conversation.h"
#include "checks/dialogue/usage.h"
#include "platform/platform.h"

// The files that carry lists, where there is no room for them or where they cannot be made. Runs where
// /etc_rw/config is a small file system of its own.

namespace {

constexpr char kBallast[] = "/etc_rw/config/ballast";

struct List {
    const char* file;
    uint16_t id;
    uint8_t type;
    std::string record;
    const char* line;
    const char* answer;
    uint16_t size;
};

const List kMessages = {"/etc_rw/config/smsbak",
                        0x0106,
                        kSet,
                        I32({4}),
                        "AT+CMGL=4",
                        "\r\n+CMGL: 1,0,,2\r\nA1B2\r\n\r\nOK\r\n",
                        50564};
const List kPhonebook = {"/etc_rw/config/Phonebak",
                         0x0202,
                         kSet,
                         I32({1, 1}),
                         "AT+CPBR=1,1",
                         "\r\n+CPBR: 1,\"5550123\",129,\"Ann\"\r\n\r\nOK\r\n",
                         22004};
const List kOperators = {"/etc_rw/config/copslist",
                         0x0517,
                         AT_CMD_TYPE_TEST,
                         "",
                         "AT+COPS=?",
                         "\r\n+COPS: (2,\"One\",\"O\",\"00101\",7),,(0,1),(0,1)\r\n\r\nOK\r\n",
                         12804};
const List kCalls = {"/etc_rw/config/clcclist",
                     0x0518,
                     kExec,
                     "",
                     "AT+CLCC",
                     "\r\n+CLCC: 1,1,0,0,0,\"5550123\",129\r\n\r\nOK\r\n",
                     1284};
constexpr char kUssdFile[] = "/etc/cusd";

off_t SizeOf(const char* path) {
    struct stat about {};
    return stat(path, &about) == 0 ? about.st_size : -1;
}

class DiskFaults : public testing::Test, protected Router {
  protected:
    void SetUp() override {
        // Outside its sandbox the ballast would fill the machine's disk.
        if (access("/etc_rw/config", W_OK) != 0 || Room() > 64 << 20) GTEST_SKIP() << "no small disk here";
        world_ = std::make_unique<World>(Answers({{kMessages.line, kMessages.answer},
                                                  {kPhonebook.line, kPhonebook.answer},
                                                  {kOperators.line, kOperators.answer},
                                                  {kCalls.line, kCalls.answer}}));
        descriptors_ = UsageOf(world_->daemon.Pid()).descriptors;
    }
    void TearDown() override {
        if (world_ == nullptr) return;
        if (world_->daemon.Running()) {
            EXPECT_EQ(UsageOf(world_->daemon.Pid()).descriptors, descriptors_);
        }
        world_.reset();
        unlink(kBallast);
        for (const char* file : {kMessages.file, kPhonebook.file, kOperators.file, kCalls.file, kUssdFile})
            remove(file);
    }

    static unsigned long Room() {
        struct statvfs about {};
        return statvfs("/etc_rw/config", &about) == 0 ? about.f_blocks * about.f_frsize : ~0UL;
    }

    // Leaves `bytes` of room.
    static void FillDisk(off_t bytes) {
        const int file = open(kBallast, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        ASSERT_GE(file, 0);
        const std::string block(4096, 'b');
        off_t size = 0;
        while (write(file, block.data(), block.size()) == static_cast<ssize_t>(block.size()))
            size += static_cast<off_t>(block.size());
        ASSERT_EQ(errno, ENOSPC);
        ASSERT_GT(size, bytes);
        ASSERT_EQ(ftruncate(file, size - bytes), 0);
        close(file);
    }

    void ExpectAnswer(const List& list) {
        const Received answer = other.Exchange(list.id, list.type, list.record, 10);
        EXPECT_EQ(answer.id, list.id) << list.line;
        EXPECT_EQ(answer.result, 1) << list.line;
        EXPECT_EQ(answer.para_len, list.size) << list.line;
    }

    std::unique_ptr<World> world_;
    int descriptors_ = 0;
};

TEST_F(DiskFaults, ListThatDoesNotFitIsCutAndItsAnswerGoesOut) {
    ASSERT_NO_FATAL_FAILURE(FillDisk(8192));
    ExpectAnswer(kMessages);
    EXPECT_TRUE(world_->log.WaitFor("write to smsbak file faild, len=8192!"));
    EXPECT_TRUE(world_->log.WaitFor("BakSms faild!"));
    EXPECT_EQ(SizeOf(kMessages.file), 8192);

    unlink(kMessages.file);
    ExpectAnswer(kPhonebook);
    EXPECT_TRUE(world_->log.WaitFor("write to Phonebak file faild, len=8192!"));
    EXPECT_EQ(SizeOf(kPhonebook.file), 8192);

    unlink(kPhonebook.file);
    ExpectAnswer(kOperators);
    EXPECT_EQ(SizeOf(kOperators.file), 8192);
    ExpectAnswer(kCalls);
    EXPECT_EQ(SizeOf(kCalls.file), 0);
    EXPECT_LT(BusyShare(world_->daemon.Pid(), 1), kSpinning);

    // Settings have had their room since the store was made.
    world_->modem.Say("\r\nZVCONNECT: 1\r\n");
    EXPECT_TRUE(WaitUntil([] { return ConfigValue("call_cs_status") == "call_active"; }));

    unlink(kBallast);
    for (const List& list : {kMessages, kPhonebook, kOperators, kCalls}) {
        ExpectAnswer(list);
        EXPECT_EQ(SizeOf(list.file), list.size);
    }
    EXPECT_TRUE(world_->log.WaitFor("write to smsbak file OK, len=50564!"));
    EXPECT_TRUE(world_->log.WaitFor("write to Phonebak file OK, len=22004!"));
}

TEST_F(DiskFaults, ListReplacesAllThatItsFileHeld) {
    for (const List& list : {kMessages, kPhonebook, kOperators, kCalls}) {
        const int file = open(list.file, O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
        ASSERT_GE(file, 0) << list.file;
        ASSERT_EQ(ftruncate(file, list.size + 1), 0);
        close(file);
        ExpectAnswer(list);
        EXPECT_EQ(SizeOf(list.file), list.size) << list.file;
    }
}

TEST_F(DiskFaults, ListsThatModulesCanDoWithoutAreAnsweredWithoutTheirFiles) {
    for (const char* file : {kOperators.file, kCalls.file, kUssdFile})
        ASSERT_EQ(mkdir(file, 0700), 0) << file;
    ExpectAnswer(kOperators);
    ExpectAnswer(kCalls);
    world_->modem.Say("\r\n+CUSD: 0,\"Hello\",15\r\n");
    EXPECT_EQ(Next(ussd), Report(ussd, 0x0532, 2, "", 824));
    EXPECT_TRUE(world_->log.WaitFor("Parse_Cops_Res open file failed."));
    EXPECT_TRUE(world_->log.WaitFor("Parse_CLCC_Rsp open file failed."));
    EXPECT_TRUE(world_->log.WaitFor("Parse_CUSD_Res open file failed."));
    EXPECT_EQ(other.Exchange(0x0604, kExec).I32(0), 20);
}

TEST_F(DiskFaults, ListThatCannotBeKeptEndsTheDaemonAndRequestsWaitForTheNext) {
    for (const List& list : {kMessages, kPhonebook}) {
        SCOPED_TRACE(list.file);
        ASSERT_EQ(mkdir(list.file, 0700), 0);
        world_->modem.SetAnswer(Silence);
        world_->modem.ForgetLines();
        other.Ask(list.id, list.type, list.record);
        ASSERT_TRUE(world_->modem.WaitForLine(list.line));
        sim.Ask(0x0604, kExec);
        world_->modem.Say(list.answer);
        EXPECT_EQ(world_->daemon.WaitForExit(10), 1);
        EXPECT_TRUE(world_->log.WaitFor(std::string("fopen( ") + list.file + " , 'w+') error!"));
        Received nothing;
        EXPECT_FALSE(other.Receive(nothing, 0));

        ASSERT_EQ(rmdir(list.file), 0);
        world_->modem.SetAnswer(Answers({{list.line, list.answer}}));
        world_->log.Forget();
        world_->daemon.Start();
        ASSERT_TRUE(world_->log.WaitFor("AT response thread  is running ...", 20));
        EXPECT_EQ(Next(sim), Answer(sim, 0x0604, kExec, 1, I32({20, 0})));
        ExpectAnswer(list);
    }
}

}  // namespace
