// The stand-in's configuration store, on directories of its own.

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <lmdb.h>
#include <malloc.h>
#include <sched.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "checks/support/log_capture.h"
#include "platform/host_store.h"
#include "platform/platform.h"

namespace {

namespace fs = std::filesystem;

constexpr int kImpossible = 77;  // exit status of a child that could not set the scene

// Runs `body` in a forked child and returns its exit status, or 128 and the signal that ended it.
int InChild(const std::function<int()>& body) {
    fflush(nullptr);
    pid_t child = fork();
    if (child == 0) _exit(body());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string Value(const char* key) {
    const char* value = cfg_get(key);
    return value != nullptr ? value : "(missing)";
}

size_t Lines(const std::string& text) {
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

class Store : public testing::Test {
  protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "at-store.XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        parent_ = pattern;
        directory_ = parent_ / "store";
        ClearLog();
    }
    void TearDown() override {
        CloseStore();
        fs::remove_all(parent_);
    }
    StoreResult Open() { return OpenStore(directory_.c_str()); }

    fs::path parent_;
    fs::path directory_;
};

TEST_F(Store, WhatIsSetIsReadBack) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    EXPECT_EQ(cfg_get("port_stat"), nullptr);
    EXPECT_EQ(cfg_set("port_stat", "port_close"), 0);
    EXPECT_EQ(Value("port_stat"), "port_close");
    EXPECT_EQ(cfg_set("port_stat", "port_open"), 0);
    EXPECT_EQ(Value("port_stat"), "port_open");
    EXPECT_EQ(cfg_get("port_sta"), nullptr);
    EXPECT_EQ(cfg_get("port_stats"), nullptr);
}

TEST_F(Store, AnEmptyValueIsNotAMissingOne) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    EXPECT_EQ(cfg_set("data_card_mode", ""), 0);
    EXPECT_EQ(Value("data_card_mode"), "");
}

TEST_F(Store, SettingsOutliveTheirProcess) {
    EXPECT_EQ(InChild([&] { return Open() == StoreResult::kOk ? cfg_set("count", "4") : 9; }), 0);
    ASSERT_EQ(Open(), StoreResult::kOk);
    EXPECT_EQ(Value("count"), "4");
}

TEST_F(Store, ValuesUpToTheLimitAreKeptLongerOnesRefused) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    std::string longest(kStoreValueMax, 'v');
    EXPECT_EQ(cfg_set("text", longest.c_str()), 0);
    EXPECT_EQ(Value("text"), longest);

    testing::internal::CaptureStderr();
    EXPECT_NE(cfg_set("text", (longest + 'v').c_str()), 0);
    EXPECT_NE(cfg_set("text", nullptr), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "the value of configuration key text was refused: it is longer than 4095 bytes\n");
    EXPECT_TRUE(
        Logged("the value of configuration key text was refused: it is longer than 4095 bytes", "platform"));
    EXPECT_EQ(Value("text"), longest);
}

TEST_F(Store, KeysUpToTheLimitAreKeptOthersRefused) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    std::string longest(kStoreKeyMax, 'k');
    EXPECT_EQ(cfg_set(longest.c_str(), "1"), 0);
    EXPECT_EQ(Value(longest.c_str()), "1");

    testing::internal::CaptureStderr();
    EXPECT_EQ(WriteStore((longest + 'k').c_str(), "1"), StoreResult::kBadKey);
    EXPECT_EQ(WriteStore("", "1"), StoreResult::kBadKey);
    EXPECT_EQ(WriteStore(nullptr, "1"), StoreResult::kBadKey);
    EXPECT_EQ(cfg_get((longest + 'k').c_str()), nullptr);
    EXPECT_EQ(cfg_get(""), nullptr);
    EXPECT_EQ(cfg_get(nullptr), nullptr);
    EXPECT_EQ(Lines(testing::internal::GetCapturedStderr()), 1u);
}

TEST_F(Store, AValueStaysUntilTheSameThreadReadsAgain) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    cfg_set("mode", "first");
    cfg_set("other", "another");
    const char* mode = cfg_get("mode");
    std::thread([] {
        EXPECT_EQ(Value("other"), "another");
        EXPECT_EQ(cfg_set("mode", "second"), 0);
    }).join();
    EXPECT_STREQ(mode, "first");
    EXPECT_EQ(Value("mode"), "second");
}

TEST_F(Store, TwoProcessesSeeEachOther) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    cfg_set("ours", "1");
    // The child's own use of the store begins with its first call.
    EXPECT_EQ(InChild([] { return Value("ours") == "1" && cfg_set("theirs", "2") == 0 ? 0 : 1; }), 0);
    EXPECT_EQ(Value("theirs"), "2");
    EXPECT_EQ(cfg_set("ours", "3"), 0);
    EXPECT_EQ(InChild([] { return Value("ours") == "3" && Value("theirs") == "2" ? 0 : 1; }), 0);
}

// What a thread remembers of its last reads must not outlive a change, whoever makes it.
TEST_F(Store, AValueReadAgainAndAgainFollowsEveryChange) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    const char* const keys[] = {"ab", "ba",
                                "a longer key than any that is remembered"};  // "ab" and "ac" share a place
    for (const char* key : keys)
        EXPECT_EQ(Value(key), "(missing)");
    for (const size_t length : std::initializer_list<size_t>{0, 1, 63, 64, 65, 4095, 2})
        for (const char* key : keys) {
            const std::string wanted(length, key[1]);
            EXPECT_EQ(InChild([&] { return cfg_set(key, wanted.c_str()); }), 0);
            EXPECT_EQ(Value(key), wanted);
            EXPECT_EQ(Value("ac"), "(missing)");
            EXPECT_EQ(Value(key), wanted);
            EXPECT_EQ(cfg_set(key, (wanted.substr(0, 50) + "!").c_str()), 0);
            EXPECT_EQ(Value(key), wanted.substr(0, 50) + "!");
            EXPECT_EQ(Value(key), wanted.substr(0, 50) + "!");
        }
}

TEST_F(Store, AnotherStoreHasItsOwnValues) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    EXPECT_EQ(cfg_set("mode", "first"), 0);
    EXPECT_EQ(Value("mode"), "first");
    ASSERT_EQ(OpenStore((parent_ / "other").c_str()), StoreResult::kOk);
    EXPECT_EQ(cfg_set("none", "1"), 0);  // both have stored once
    EXPECT_EQ(Value("mode"), "(missing)");
    ASSERT_EQ(Open(), StoreResult::kOk);
    EXPECT_EQ(Value("mode"), "first");
    EXPECT_EQ(InChild([] { return Value("mode") == "first" ? 0 : 1; }), 0);
}

TEST_F(Store, ProcessesThatCreateItAtOnceShareIt) {
    std::vector<pid_t> children;
    for (int i = 0; i < 8; ++i) {
        pid_t child = fork();
        if (child == 0) {
            std::string key = "key" + std::to_string(i);
            _exit(Open() == StoreResult::kOk && cfg_set(key.c_str(), "set") == 0 ? 0 : 1);
        }
        children.push_back(child);
    }
    for (pid_t child : children) {
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    ASSERT_EQ(Open(), StoreResult::kOk);
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(Value(("key" + std::to_string(i)).c_str()), "set");
}

TEST_F(Store, AKilledWriterLeavesACompleteValueAndNoLock) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    for (int round = 0; round < 40; ++round) {
        pid_t child = fork();
        if (child == 0) {
            for (unsigned i = 0;; ++i)
                cfg_set("text", std::string(3000, static_cast<char>('a' + i % 26)).c_str());
        }
        usleep(static_cast<useconds_t>(1000 + 337 * round));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const char* text = cfg_get("text");
        if (text != nullptr) {
            ASSERT_EQ(strlen(text), 3000u);
            ASSERT_EQ(std::string(text), std::string(3000, *text));
        }
        ASSERT_EQ(cfg_set("round", std::to_string(round).c_str()), 0);
    }
    EXPECT_NE(cfg_get("text"), nullptr);
}

// Opens the store's files as another program would.
MDB_env* ForeignEnvironment(const fs::path& directory) {
    MDB_env* env = nullptr;
    if (mdb_env_create(&env) != 0 || mdb_env_open(env, directory.c_str(), 0, 0644) != 0) return nullptr;
    return env;
}

TEST_F(Store, AWriterKilledInsideItsTransactionLeavesNothing) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    cfg_set("text", "before");
    EXPECT_EQ(InChild([&] {
                  MDB_env* env = ForeignEnvironment(directory_);
                  MDB_txn* transaction = nullptr;
                  MDB_dbi dbi = 0;
                  MDB_val key{4, const_cast<char*>("text")};
                  MDB_val value{5, const_cast<char*>("after")};
                  if (env == nullptr || mdb_txn_begin(env, nullptr, 0, &transaction) != 0 ||
                      mdb_dbi_open(transaction, nullptr, 0, &dbi) != 0 ||
                      mdb_put(transaction, dbi, &key, &value, 0) != 0)
                      return 1;
                  kill(getpid(), SIGKILL);
                  return 2;
              }),
              128 + SIGKILL);
    EXPECT_EQ(Value("text"), "before");
    EXPECT_EQ(cfg_set("text", "later"), 0);
    EXPECT_EQ(Value("text"), "later");
}

TEST_F(Store, AForkedChildReadsInPlacesOfItsOwn) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    cfg_set("key", "value");
    ASSERT_EQ(Value("key"), "value");
    EXPECT_EQ(InChild([&] {
                  if (Value("key") != "value") return 1;
                  // LMDB's table of readers, seen by a third process, begins each line with a process id.
                  return InChild([&] {
                      MDB_env* env = ForeignEnvironment(directory_);
                      auto look = [](const char* line, void* found) {
                          if (atoi(line) == getppid()) *static_cast<bool*>(found) = true;
                          return 0;
                      };
                      bool found = false;
                      return env != nullptr && mdb_reader_list(env, look, &found) >= 0 && found ? 0 : 2;
                  });
              }),
              0);
}

TEST_F(Store, KilledReadersDoNotFillTheirTable) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    cfg_set("key", "value");
    for (int round = 0; round < 300; ++round)
        ASSERT_EQ(InChild([] {
                      if (Value("key") != "value") return 1;
                      kill(getpid(), SIGKILL);
                      return 2;
                  }),
                  128 + SIGKILL)
            << "round " << round;
}

TEST_F(Store, AReaderKilledInsideTheStoreDoesNotFillIt) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    cfg_set("key", "value");
    EXPECT_EQ(InChild([&] {
                  MDB_env* env = ForeignEnvironment(directory_);
                  MDB_txn* transaction = nullptr;
                  if (env == nullptr || mdb_txn_begin(env, nullptr, MDB_RDONLY, &transaction) != 0) return 1;
                  kill(getpid(), SIGKILL);
                  return 2;
              }),
              128 + SIGKILL);
    for (int i = 0; i < 2000; ++i)
        ASSERT_EQ(cfg_set("count", std::to_string(i).c_str()), 0) << i;
}

TEST_F(Store, ASettingWaitsForAReaderThatKeepsTheLastFreePages) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    cfg_set("key", "value");
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    pid_t reader = fork();
    if (reader == 0) {
        MDB_env* env = ForeignEnvironment(directory_);
        MDB_txn* transaction = nullptr;
        if (env == nullptr || mdb_txn_begin(env, nullptr, MDB_RDONLY, &transaction) != 0) _exit(1);
        if (write(ready[1], "r", 1) != 1) _exit(2);
        // In a child that reports nothing a pause is all it takes: the writer fills the store in less.
        usleep(400'000);
        mdb_txn_abort(transaction);
        _exit(0);
    }
    char byte;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    for (int i = 0; i < 2000; ++i)
        ASSERT_EQ(cfg_set("count", std::to_string(i).c_str()), 0) << i;
    int status = -1;
    waitpid(reader, &status, 0);
    EXPECT_EQ(status, 0);
    close(ready[0]);
    close(ready[1]);
}

TEST_F(Store, ReadersBesideAWriterKeepNoOldPagesAlive) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    cfg_set("text", std::string(2000, 'a').c_str());
    std::atomic<bool> stop{false};
    std::atomic<int> torn{0};
    std::vector<std::thread> readers;
    readers.reserve(8);
    // More than the store keeps places for.
    for (int i = 0; i < 8; ++i)
        readers.emplace_back([&] {
            while (!stop.load()) {
                usleep(20);
                const char* text = cfg_get("text");
                if (text == nullptr || strlen(text) != 2000 || text[0] != text[1999]) torn.fetch_add(1);
            }
        });
    int failed = 0;
    for (unsigned i = 0; i < 600; ++i)
        if (cfg_set("text", std::string(2000, static_cast<char>('a' + i % 26)).c_str()) != 0) ++failed;
    stop.store(true);
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(failed, 0);
    EXPECT_EQ(torn.load(), 0);
}

TEST_F(Store, TwoHundredThousandReadsTakeNothing) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    cfg_set("at_resp_debug", "on");
    ASSERT_EQ(Value("at_resp_debug"), "on");
    auto open_files = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    auto files = open_files();
    rusage before{};
    rusage after{};
    getrusage(RUSAGE_SELF, &before);
    size_t heap = mallinfo2().uordblks;
    size_t found = 0;
    for (int i = 0; i < 100'000; ++i) {
        found += cfg_get("at_resp_debug") != nullptr;
        found += cfg_get("no such key") != nullptr;
    }
    EXPECT_EQ(mallinfo2().uordblks, heap);
    getrusage(RUSAGE_SELF, &after);
    EXPECT_EQ(found, 100'000u);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 512);  // KB
    EXPECT_EQ(open_files(), files);
}

TEST_F(Store, AMissingParentIsSaidOnceAndNothingIsMade) {
    fs::path directory = parent_ / "missing" / "store";
    testing::internal::CaptureStderr();
    EXPECT_EQ(OpenStore(directory.c_str()), StoreResult::kUnreachable);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(cfg_get("key"), nullptr);
        EXPECT_NE(cfg_set("key", "value"), 0);
    }
    std::string said =
        "cannot open the configuration store " + directory.string() +
        ": No such file or directory; create its parent directory (scripts/sandbox gives a program "
        "one of its own)";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), said + "\n");
    EXPECT_EQ(LoggedLines().size(), 1u);
    EXPECT_TRUE(Logged(said, "platform", LOG_ERR));
    EXPECT_TRUE(fs::is_empty(parent_));
}

// Runs `body` as a user for whom file permissions count. Exit status 77 where there is none.
int AsOrdinaryUser(const std::function<int()>& body) {
    return InChild([&] {
        if (geteuid() == 0 && (setresgid(65534, 65534, 65534) != 0 || setresuid(65534, 65534, 65534) != 0))
            return kImpossible;
        return body();
    });
}

TEST_F(Store, ADirectoryThatCannotBeWrittenIsSaidAndLeftAlone) {
    fs::permissions(parent_, fs::perms(0555));
    int status = AsOrdinaryUser([&] {
        return Open() == StoreResult::kUnreachable && cfg_get("key") == nullptr && cfg_set("key", "1") != 0 &&
                       strstr(StoreComplaint(), "/store: Permission denied; run as the user that owns it") !=
                           nullptr
                   ? 0
                   : 1;
    });
    fs::permissions(parent_, fs::perms(0755));
    if (status == kImpossible) GTEST_SKIP() << "no ordinary user here";
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(fs::is_empty(parent_));
}

TEST_F(Store, AStoreOfAnotherUserIsSaidAndLeftAlone) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    cfg_set("key", "value");
    CloseStore();
    fs::permissions(parent_, fs::perms(0755));
    fs::permissions(directory_, fs::perms(0555));
    for (const char* file : {"data.mdb", "lock.mdb"})
        fs::permissions(directory_ / file, fs::perms(0444));
    int status = AsOrdinaryUser([&] {
        return Open() == StoreResult::kUnreachable &&
                       strstr(StoreComplaint(), "/store/lock.mdb: Permission denied") != nullptr
                   ? 0
                   : 1;
    });
    fs::permissions(directory_, fs::perms(0755));
    for (const char* file : {"data.mdb", "lock.mdb"})
        fs::permissions(directory_ / file, fs::perms(0644));
    if (status == kImpossible) GTEST_SKIP() << "no ordinary user here";
    EXPECT_EQ(status, 0);
    ASSERT_EQ(Open(), StoreResult::kOk);
    EXPECT_EQ(Value("key"), "value");
}

TEST_F(Store, WhatRootMakesBelongsToTheOwnerOfTheDirectoryAbove) {
    constexpr uid_t kUser = 12'345;
    constexpr gid_t kGroup = 23'456;
    if (chown(parent_.c_str(), kUser, kGroup) != 0) GTEST_SKIP() << "only root can give files away";
    ASSERT_EQ(Open(), StoreResult::kOk);
    cfg_set("key", "value");
    for (const fs::path& path : {directory_, directory_ / "data.mdb", directory_ / "lock.mdb"}) {
        struct stat about;
        ASSERT_EQ(stat(path.c_str(), &about), 0) << path;
        EXPECT_EQ(about.st_uid, kUser) << path;
        EXPECT_EQ(about.st_gid, kGroup) << path;
    }
}

TEST_F(Store, ALinkInThePlaceOfAFileIsNotFollowed) {
    const fs::path elsewhere = parent_ / "elsewhere";
    for (const char* file : {"data.mdb", "lock.mdb"}) {
        for (const bool symbolic : {true, false}) {
            fs::create_directory(directory_);
            // For root alone: it would give the file to this user.
            EXPECT_EQ(chown(directory_.c_str(), geteuid() == 0 ? 12'345 : geteuid(), getegid()), 0);
            std::ofstream(elsewhere) << "text";
            if (symbolic)
                fs::create_symlink(elsewhere, directory_ / file);
            else
                fs::create_hard_link(elsewhere, directory_ / file);
            EXPECT_EQ(Open(), StoreResult::kUnreachable) << file << symbolic;
            EXPECT_NE(strstr(StoreComplaint(), "; delete what stands"), nullptr) << StoreComplaint();
            EXPECT_TRUE(fs::exists(directory_ / file)) << file << symbolic;
            struct stat about;
            ASSERT_EQ(stat(elsewhere.c_str(), &about), 0);
            EXPECT_EQ(about.st_size, 4) << file << symbolic;
            EXPECT_EQ(about.st_uid, geteuid()) << file << symbolic;
            fs::remove_all(directory_);
        }
    }
}

TEST_F(Store, ALinkInThePlaceOfTheDirectoryIsNotFollowed) {
    const fs::path elsewhere = parent_ / "elsewhere";
    fs::create_directory(elsewhere);
    fs::create_directory_symlink(elsewhere, directory_);
    EXPECT_EQ(Open(), StoreResult::kUnreachable);
    EXPECT_NE(strstr(StoreComplaint(), "/store: Not a directory; delete what stands"), nullptr)
        << StoreComplaint();
    EXPECT_TRUE(fs::is_empty(elsewhere));
}

TEST_F(Store, APipeInThePlaceOfAFileIsSaid) {
    fs::create_directory(directory_);
    ASSERT_EQ(mkfifo((directory_ / "lock.mdb").c_str(), 0600), 0);
    EXPECT_EQ(Open(), StoreResult::kUnreachable);
    EXPECT_NE(strstr(StoreComplaint(), "/store/lock.mdb: Operation not supported; delete what stands"),
              nullptr)
        << StoreComplaint();
}

// Runs `body` in a child that has a file system of `kilobytes` on the parent directory.
int OnSmallDisk(const fs::path& at, int kilobytes, const std::function<int()>& body) {
    return InChild([&] {
        std::string size = "size=" + std::to_string(kilobytes) + "k";
        std::string user = "0 " + std::to_string(geteuid()) + " 1";
        std::string group = "0 " + std::to_string(getegid()) + " 1";
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return kImpossible;
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << user;
        std::ofstream("/proc/self/gid_map") << group;
        if (geteuid() != 0 || mount("none", at.c_str(), "tmpfs", 0, size.c_str()) != 0) return kImpossible;
        return body();
    });
}

TEST_F(Store, ADiskWithoutRoomIsSaidAndNothingIsMade) {
    for (int kilobytes : {16, 512}) {
        int status = OnSmallDisk(parent_, kilobytes, [&] {
            bool refused =
                Open() == StoreResult::kNoRoom && cfg_get("key") == nullptr && cfg_set("key", "1") != 0;
            bool told =
                strstr(StoreComplaint(), "No space left on device; free at least 2 MB there") != nullptr;
            return refused && told && fs::is_empty(parent_) ? 0 : 1;
        });
        if (status == kImpossible) GTEST_SKIP() << "no file system can be mounted here";
        EXPECT_EQ(status, 0) << kilobytes << " KB";
    }
}

TEST_F(Store, ADiskThatFillsUpLaterStopsNoSetting) {
    int status = OnSmallDisk(parent_, 1200, [&] {
        if (Open() != StoreResult::kOk) return 1;
        int filler = open((parent_ / "filler").c_str(), O_WRONLY | O_CREAT, 0600);
        std::vector<char> block(4096, 'x');
        while (write(filler, block.data(), block.size()) > 0) {
        }
        if (errno != ENOSPC) return 2;
        for (int i = 0; i < 400; ++i) {
            std::string key = "key" + std::to_string(i % 40);
            if (cfg_set(key.c_str(), std::string(1000, static_cast<char>('a' + i % 26)).c_str()) != 0)
                return 3;
        }
        return Value("key39") == std::string(1000, static_cast<char>('a' + 399 % 26)) ? 0 : 4;
    });
    if (status == kImpossible) GTEST_SKIP() << "no file system can be mounted here";
    EXPECT_EQ(status, 0);
}

void LimitFiles(rlim_t bytes) {
    signal(SIGXFSZ, SIG_IGN);
    rlimit limit{bytes, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &limit);
}

TEST_F(Store, ACreationThatFailsInTheMiddleLeavesNothing) {
    for (rlim_t bytes : {rlim_t{0}, rlim_t{4096}, rlim_t{20'000}})
        EXPECT_EQ(InChild([&] {
                      LimitFiles(bytes);
                      return Open() == StoreResult::kNoRoom && fs::is_empty(parent_) ? 0 : 1;
                  }),
                  0)
            << bytes;
    ASSERT_EQ(Open(), StoreResult::kOk);
    EXPECT_EQ(cfg_set("key", "value"), 0);
}

TEST_F(Store, AFailedSettingIsSaidOnceLeavesTheOldValueAndStopsNoLaterOne) {
    EXPECT_EQ(InChild([&] {
                  if (Open() != StoreResult::kOk || cfg_set("key", "old") != 0) return 1;
                  LimitFiles(fs::file_size(directory_ / "data.mdb"));
                  std::string value(3000, 'n');
                  testing::internal::CaptureStderr();
                  for (int i = 0; i < 3; ++i)
                      if (WriteStore("key", value.c_str()) != StoreResult::kNoRoom || Value("key") != "old")
                          return 2;
                  std::string said = testing::internal::GetCapturedStderr();
                  if (Lines(said) != 1 || said.find("cannot store key in the configuration store") != 0)
                      return 3;
                  LimitFiles(RLIM_INFINITY);
                  return cfg_set("key", value.c_str()) == 0 && Value("key") == value ? 0 : 4;
              }),
              0);
}

TEST_F(Store, AValueThatStandsIsNotWrittenAgain) {
    EXPECT_EQ(InChild([&] {
                  if (Open() != StoreResult::kOk || cfg_set("key", "value") != 0) return 1;
                  LimitFiles(0);  // the smallest write would fail
                  return cfg_set("key", "value") == 0 && cfg_set("key", "valu") != 0 ? 0 : 2;
              }),
              0);
}

TEST_F(Store, AFullStoreIsSaidOnceAndKeepsWhatItHas) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    testing::internal::CaptureStderr();
    std::string value(2000, 'x');
    int stored = 0;
    while (stored < 1000 && cfg_set(("key" + std::to_string(stored)).c_str(), value.c_str()) == 0)
        ++stored;
    EXPECT_EQ(WriteStore("one more", value.c_str()), StoreResult::kNoRoom);
    std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(Lines(said), 1u) << said;
    EXPECT_NE(said.find("is full (1024 KB): key" + std::to_string(stored) + " was not stored"),
              std::string::npos)
        << said;
    EXPECT_GT(stored, 200);
    for (int i = 0; i < stored; ++i)
        ASSERT_EQ(Value(("key" + std::to_string(i)).c_str()), value) << i;
    EXPECT_EQ(cfg_get("one more"), nullptr);
    CloseStore();
    ASSERT_EQ(Open(), StoreResult::kOk);
    EXPECT_EQ(Value("key0"), value);
}

TEST_F(Store, WhatACutOffCreationLeftIsNoObstacle) {
    for (size_t bytes : {0u, 1u, 100u, 4096u}) {
        fs::create_directory(directory_);
        for (const char* file : {"data.mdb", "lock.mdb"})
            std::ofstream(directory_ / file) << std::string(bytes, '\0');
        ASSERT_EQ(Open(), StoreResult::kOk) << bytes;
        EXPECT_EQ(cfg_set("key", "value"), 0);
        EXPECT_EQ(Value("key"), "value");
        CloseStore();
        fs::remove_all(directory_);
    }
}

TEST_F(Store, AFileOfAnotherKindIsSaidAndLeftAlone) {
    fs::create_directory(directory_);
    std::string text(20'000, 'x');
    std::ofstream(directory_ / "data.mdb") << text;
    testing::internal::CaptureStderr();
    EXPECT_EQ(Open(), StoreResult::kUnreachable);
    std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find("end what uses it and delete it to start with an empty one"), std::string::npos)
        << said;
    std::ifstream file(directory_ / "data.mdb");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), text);
}

TEST_F(Store, AWalkTellsEveryPairInOrder) {
    ASSERT_EQ(Open(), StoreResult::kOk);
    cfg_set("b", "2");
    cfg_set("a", "");
    cfg_set("C", "3");
    std::string all;
    auto append = [](const char* key, size_t key_length, const char* value, size_t value_length, void* arg) {
        *static_cast<std::string*>(arg) +=
            std::string(key, key_length) + "=" + std::string(value, value_length) + ";";
    };
    EXPECT_EQ(WalkStore(append, &all), StoreResult::kOk);
    EXPECT_EQ(all, "C=3;a=;b=2;");
}

}  // namespace
