// The configuration store of a machine that is no router, on LMDB: readers take no lock, a writer that is
// killed leaves the last complete state, and the next writer goes on.

#include "platform/host_store.h"

#include <errno.h>
#include <fcntl.h>
#include <lmdb.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>

#include "platform/log.h"
#include "platform/platform.h"

namespace {

constexpr char kLogSource[] = "platform";

// Readers of this process that can be inside the store at once without a memory allocation. A reader holds
// its place for a microsecond; a daemon has three threads.
constexpr int kReaders = 4;

// Size of LMDB's reader table on disk: about 500 places of 64 bytes, room for 120 processes.
constexpr off_t kLockBytes = 32'768;

// Smaller files were left by a creation that was cut off: LMDB's data begin with two pages of 4096 bytes or
// more, and its smallest reader table takes as much.
constexpr off_t kEmptyBytes = 8192;

// How long a setting waits for readers that keep the store's last free pages: a second in all.
constexpr int kHeldAttempts = 100;
constexpr useconds_t kHeldWaitUs = 10'000;

enum State : uint32_t { kUnopened, kOpen, kFailed };

struct Reader {
    std::atomic<uint32_t> taken;
    MDB_txn* transaction;  // reset between two reads: keeps its place in the table, but no old page alive
};

enum Cause : uint32_t {
    kCauseOpen = 1,
    kCauseKey = 2,
    kCauseValue = 4,
    kCauseRoom = 8,
    kCauseRead = 16,
    kCauseWrite = 32
};

// A short value as a thread last read it. It stands as long as nothing was stored anywhere, which costs one
// look at the store's state in place of a walk through its pages: the daemon asks for the same key 100 times
// a second.
struct Remembered {
    uint32_t opening;  // 0: nothing
    bool missing;
    size_t state;  // the number of the transaction that stored last
    char key[32];
    char value[64];
};
constexpr size_t kRemembered = 8;

// All of this belongs to the process and is shared by its threads: set under g_open_lock before g_state says
// kOpen.
pthread_mutex_t g_open_lock = PTHREAD_MUTEX_INITIALIZER;
std::atomic<uint32_t> g_state{kUnopened};
MDB_env* g_env = nullptr;
MDB_dbi g_dbi = 0;
std::atomic<uint32_t> g_openings{0};  // counts what makes g_env another one
Reader g_readers[kReaders];
char g_directory[512];
bool g_fork_handler = false;

std::atomic<uint32_t> g_said{0};  // causes that were told already
std::atomic<bool> g_loud{true};
pthread_mutex_t g_complaint_lock = PTHREAD_MUTEX_INITIALIZER;
char g_complaint[1024];

__attribute__((format(printf, 2, 3))) void Complain(Cause cause, const char* format, ...) {
    bool first = (g_said.fetch_or(cause) & cause) == 0;
    pthread_mutex_lock(&g_complaint_lock);
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(g_complaint, sizeof g_complaint, format, arguments);
    va_end(arguments);
    if (first && g_loud.load()) {
        dprintf(STDERR_FILENO, "%s\n", g_complaint);
        AT_LOG(LOG_ERR, "%s", g_complaint);
    }
    pthread_mutex_unlock(&g_complaint_lock);
}

// LMDB's open environment is of no use to a forked child: its locks are the parent's. The child leaves all of
// it alone and opens the store anew when it first asks. (A program started by system() or exec never comes
// here.)
void ForgetAfterFork() {
    g_open_lock = PTHREAD_MUTEX_INITIALIZER;
    g_complaint_lock = PTHREAD_MUTEX_INITIALIZER;
    for (Reader& reader : g_readers) {
        reader.transaction = nullptr;
        reader.taken.store(0);
    }
    g_env = nullptr;
    g_openings.fetch_add(1, std::memory_order_relaxed);
    uint32_t open = kOpen;
    g_state.compare_exchange_strong(open, kUnopened);
}

// What to do about `error`, for the end of a complaint.
const char* Advice(int error) {
    switch (error) {
        case ENOENT:
            return "create its parent directory (scripts/sandbox gives a program one of its own)";
        case EACCES:
        case EPERM:
            return "run as the user that owns it, or in scripts/sandbox";
        case ELOOP:
        case EMLINK:
        case ENOTDIR:
        case EOPNOTSUPP:
            return "delete what stands in its place: the store is a directory with two plain files, none of "
                   "them a link";
        case EROFS:
            return "mount it for writing, or run in scripts/sandbox";
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return "free at least 2 MB there";
        case MDB_READERS_FULL:
            return "end some of the programs that use it";
        case MDB_INVALID:
        case MDB_CORRUPTED:
        case MDB_VERSION_MISMATCH:
        case MDB_PAGE_NOTFOUND:
        case MDB_PANIC:
            return "end what uses it and delete it to start with an empty one";
        default:
            return "see to it and start again";
    }
}

bool IsNoRoom(int error) {
    return error == MDB_MAP_FULL || error == ENOSPC || error == EDQUOT || error == EFBIG;
}

StoreResult CannotOpen(const char* path, int error) {
    Complain(kCauseOpen, "cannot open the configuration store %s: %s; %s", path, mdb_strerror(error),
             Advice(error));
    return IsNoRoom(error) ? StoreResult::kNoRoom : StoreResult::kUnreachable;
}

// Takes the store's room from the disk, without changing the size of `file`: 0 is how LMDB knows a new one.
// 0, or the error. A file system that cannot reserve is no error.
int Reserve(int file) {
    int result;
    do {
        result = fallocate(file, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(kStoreBytes));
    } while (result != 0 && errno == EINTR);
    return result == 0 || errno == EOPNOTSUPP || errno == ENOSYS ? 0 : errno;
}

// What root makes belongs to whom the store's directory belongs: to the user of the daemon, which must be
// able to open it, whoever asked first. Refused where that user does not exist for this process: then it
// stays root's.
void GiveTo(int file, const struct stat& owner) {
    struct stat about;
    if (geteuid() != 0 || fstat(file, &about) != 0) return;
    if (about.st_uid == owner.st_uid && about.st_gid == owner.st_gid) return;
    if (fchown(file, owner.st_uid, owner.st_gid) != 0) return;
}

// Writes `count` zeros, a multiple of 4096, at the beginning of `file`. 0, or the error.
int WriteZeros(int file, off_t count) {
    static const char zeros[4096] = {};
    for (off_t at = 0; at < count; at += static_cast<off_t>(sizeof zeros)) {
        const ssize_t written = pwrite(file, zeros, sizeof zeros, at);
        if (written != static_cast<ssize_t>(sizeof zeros)) return written < 0 ? errno : ENOSPC;
    }
    return 0;
}

// Opens file `name` of the store, made where it is missing. Root must not be led out of the directory of
// another user, nor give away what that user gave a second name there: a link of either kind is refused. -1
// with errno.
int OpenFile(int directory, const char* name, struct stat* about) {
    const int file = openat(directory, name, O_RDWR | O_CREAT | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC, 0644);
    if (file < 0) return -1;
    int error = 0;
    if (fstat(file, about) != 0)
        error = errno;
    else if (!S_ISREG(about->st_mode))
        error = EOPNOTSUPP;
    else if (about->st_nlink > 1)
        error = EMLINK;
    if (error == 0) return file;
    close(file);
    errno = error;
    return -1;
}

// Makes sure that LMDB finds both files with their room on the disk. The reader table is written through a
// memory map, where a full disk would end the process with SIGBUS, so its bytes are really written when they
// cannot be reserved. What a killed or failed creation left is emptied. 0, or the error with *culprit naming
// the file.
int PrepareFiles(int directory, const struct stat& owner, const char** culprit) {
    *culprit = "/lock.mdb";
    struct stat about;
    int file = OpenFile(directory, "lock.mdb", &about);
    if (file < 0) return errno;
    int error = 0;
    if (about.st_size < kEmptyBytes) {
        GiveTo(file, owner);
        error = WriteZeros(file, kLockBytes);
        if (error != 0 && ftruncate(file, 0) != 0) error = errno;
    }
    close(file);
    if (error != 0) return error;

    *culprit = "/data.mdb";
    file = OpenFile(directory, "data.mdb", &about);
    if (file < 0) return errno;
    if (about.st_size < kEmptyBytes) {
        GiveTo(file, owner);
        if (about.st_size != 0 && ftruncate(file, 0) != 0) error = errno;
        if (error == 0) error = Reserve(file);
    }
    close(file);
    return error;
}

// Takes away a store that never came into being.
void RemoveUnborn(int files, const char* directory, bool made) {
    struct stat about;
    if (fstatat(files, "data.mdb", &about, AT_SYMLINK_NOFOLLOW) == 0 && about.st_size >= kEmptyBytes) return;
    unlinkat(files, "data.mdb", 0);
    unlinkat(files, "lock.mdb", 0);
    if (made) rmdir(directory);
}

// Frees the places of processes that were killed. True when there were any.
bool RemoveDeadReaders() {
    int dead = 0;
    return mdb_reader_check(g_env, &dead) == 0 && dead > 0;
}

// True when a reader of any process is inside the store. LMDB tells its readers as lines of a table that end
// with the number of the state they look at, or with "-".
bool ReaderInside() {
    bool inside = false;
    auto look = [](const char* line, void* found) {
        const char* last = strrchr(line, ' ');
        if (last != nullptr && last[1] >= '0' && last[1] <= '9') *static_cast<bool*>(found) = true;
        return 0;
    };
    mdb_reader_list(g_env, look, &inside);
    return inside;
}

int OpenEnvironment(const char* directory) {
    int error = mdb_env_create(&g_env);
    if (error != 0) return error;
    mdb_env_set_mapsize(g_env, kStoreBytes);
    // No thread-bound readers: ours are pooled. Without the meta page's own sync a power cut can lose the
    // last setting, never the store, and a setting costs one disk wait instead of two.
    error = mdb_env_open(g_env, directory, MDB_NOTLS | MDB_NOMETASYNC, 0644);
    if (error != 0) return error;
    int file;
    if (mdb_env_get_fd(g_env, &file) == 0) fcntl(file, F_SETFD, FD_CLOEXEC);
    RemoveDeadReaders();

    MDB_txn* transaction;
    error = mdb_txn_begin(g_env, nullptr, MDB_RDONLY, &transaction);
    if (error == 0) {
        error = mdb_dbi_open(transaction, nullptr, 0, &g_dbi);
        if (error == 0)
            error = mdb_txn_commit(transaction);
        else
            mdb_txn_abort(transaction);
    }
    for (Reader& reader : g_readers) {
        if (error != 0) break;
        error = mdb_txn_begin(g_env, nullptr, MDB_RDONLY, &reader.transaction);
        if (error == 0)
            mdb_txn_reset(reader.transaction);
        else
            reader.transaction = nullptr;
    }
    return error;
}

void CloseEnvironment() {
    g_openings.fetch_add(1, std::memory_order_relaxed);
    for (Reader& reader : g_readers) {
        if (reader.transaction != nullptr) mdb_txn_abort(reader.transaction);
        reader.transaction = nullptr;
        reader.taken.store(0);
    }
    if (g_env != nullptr) mdb_env_close(g_env);
    g_env = nullptr;
}

StoreResult OpenLocked(const char* directory) {
    if (!g_fork_handler) {
        pthread_atfork(nullptr, nullptr, ForgetAfterFork);
        g_fork_handler = true;
    }
    if (strlen(directory) >= sizeof g_directory) return CannotOpen(directory, ENAMETOOLONG);
    if (directory != g_directory) snprintf(g_directory, sizeof g_directory, "%s", directory);

    bool made = mkdir(directory, 0755) == 0;
    if (!made && errno != EEXIST) return CannotOpen(directory, errno);
    // One process at a time makes the store; the lock goes with its holder. LMDB's own locks come later.
    int lock = open(directory, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (lock < 0) return CannotOpen(directory, errno);
    while (flock(lock, LOCK_EX) != 0 && errno == EINTR) {
    }
    const char* culprit = "";
    struct stat owner;
    if (made && fstatat(lock, "..", &owner, 0) == 0) GiveTo(lock, owner);
    int error = fstat(lock, &owner) == 0 ? PrepareFiles(lock, owner, &culprit) : errno;
    if (error == 0) {
        error = OpenEnvironment(directory);
        if (error != 0) CloseEnvironment();
        culprit = "";
    }
    // Somebody's link or device is told and left alone.
    const bool foreign = error == ELOOP || error == EMLINK || error == EOPNOTSUPP;
    if (error != 0 && !foreign) RemoveUnborn(lock, directory, made);
    close(lock);
    if (error == 0) return StoreResult::kOk;
    char path[sizeof g_directory + 16];
    snprintf(path, sizeof path, "%s%s", directory, culprit);
    return CannotOpen(path, error);
}

// True when the store is open. A store that could not be opened is not tried again: the reader that asks 100
// times a second must not pay for it.
bool Ready() {
    uint32_t state = g_state.load(std::memory_order_acquire);
    if (state == kUnopened) {
        pthread_mutex_lock(&g_open_lock);
        state = g_state.load(std::memory_order_relaxed);
        if (state == kUnopened) {
            const char* directory = g_directory[0] != '\0' ? g_directory : kStoreDirectory;
            state = OpenLocked(directory) == StoreResult::kOk ? kOpen : kFailed;
            g_state.store(state, std::memory_order_release);
        }
        pthread_mutex_unlock(&g_open_lock);
    }
    return state == kOpen;
}

// A read transaction for the time of its life: from the pool, or of its own when more threads read than that.
class ReadTransaction {
  public:
    ReadTransaction() {
        for (Reader& reader : g_readers) {
            if (reader.taken.exchange(1, std::memory_order_acquire) != 0) continue;
            reader_ = &reader;
            error_ = mdb_txn_renew(reader.transaction);
            if (error_ == 0) transaction_ = reader.transaction;
            return;
        }
        error_ = mdb_txn_begin(g_env, nullptr, MDB_RDONLY, &transaction_);
        if (error_ == MDB_READERS_FULL && RemoveDeadReaders())
            error_ = mdb_txn_begin(g_env, nullptr, MDB_RDONLY, &transaction_);
        if (error_ != 0) transaction_ = nullptr;
    }
    ~ReadTransaction() {
        if (reader_ == nullptr) {
            if (transaction_ != nullptr) mdb_txn_abort(transaction_);
            return;
        }
        if (transaction_ != nullptr) mdb_txn_reset(transaction_);
        reader_->taken.store(0, std::memory_order_release);
    }
    ReadTransaction(const ReadTransaction&) = delete;
    ReadTransaction& operator=(const ReadTransaction&) = delete;

    int error() const { return error_; }
    MDB_txn* get() const { return transaction_; }

  private:
    Reader* reader_ = nullptr;
    MDB_txn* transaction_ = nullptr;
    int error_ = 0;
};

// The place of `key` among what this thread remembers; null when it is too long to be kept.
Remembered* PlaceOf(const char* key) {
    static thread_local Remembered remembered[kRemembered];
    const size_t length = key == nullptr ? 0 : strnlen(key, sizeof Remembered::key);
    if (length == 0 || length == sizeof Remembered::key) return nullptr;
    return &remembered[(static_cast<unsigned char>(key[0]) + length) % kRemembered];
}

// Whether what stands at `place` is what the store holds for `key` now. For an open store.
bool IsCurrent(const Remembered& place, const char* key) {
    if (place.opening != g_openings.load(std::memory_order_relaxed) + 1) return false;
    MDB_envinfo info;
    return mdb_env_info(g_env, &info) == 0 && info.me_last_txnid == place.state &&
           strcmp(place.key, key) == 0;
}

StoreResult CannotRead(int error) {
    Complain(kCauseRead, "cannot read the configuration store %s: %s; %s", g_directory, mdb_strerror(error),
             Advice(error));
    return StoreResult::kUnreachable;
}

// The bytes of `text` as LMDB takes them; it does not write through the pointer.
MDB_val Bytes(const char* text, size_t length) {
    return {length, const_cast<char*>(text)};
}

int Put(MDB_val key, MDB_val value) {
    MDB_txn* transaction;
    int error = mdb_txn_begin(g_env, nullptr, 0, &transaction);
    if (error != 0) return error;
    error = mdb_put(transaction, g_dbi, &key, &value, 0);
    if (error != 0) {
        mdb_txn_abort(transaction);
        return error;
    }
    return mdb_txn_commit(transaction);
}

// The length of a key that can be stored, or 0.
size_t KeyLength(const char* key) {
    size_t length = key == nullptr ? 0 : strnlen(key, kStoreKeyMax + 1);
    if (length == 0 || length > kStoreKeyMax) {
        Complain(kCauseKey, "a configuration key has 1 to %zu bytes; refused: %s%.40s", kStoreKeyMax,
                 length == 0 ? "an empty one" : "", length == 0 ? "" : key);
        return 0;
    }
    return length;
}

}  // namespace

StoreResult OpenStore(const char* directory) {
    pthread_mutex_lock(&g_open_lock);
    CloseEnvironment();
    g_said.store(0);
    g_complaint[0] = '\0';
    StoreResult result = OpenLocked(directory);
    g_state.store(result == StoreResult::kOk ? kOpen : kFailed, std::memory_order_release);
    pthread_mutex_unlock(&g_open_lock);
    return result;
}

void CloseStore() {
    pthread_mutex_lock(&g_open_lock);
    CloseEnvironment();
    g_directory[0] = '\0';
    g_state.store(kUnopened, std::memory_order_release);
    pthread_mutex_unlock(&g_open_lock);
}

// Reads `key`. `state` becomes the number of the transaction that stored last when it was read.
static StoreResult Read(const char* key, char* value, size_t room, size_t& state) {
    size_t length = KeyLength(key);
    if (length == 0) return StoreResult::kBadKey;
    if (!Ready()) return StoreResult::kUnreachable;
    ReadTransaction transaction;
    if (transaction.error() != 0) return CannotRead(transaction.error());
    state = mdb_txn_id(transaction.get());
    MDB_val name = Bytes(key, length);
    MDB_val found;
    int error = mdb_get(transaction.get(), g_dbi, &name, &found);
    if (error == MDB_NOTFOUND) return StoreResult::kMissing;
    if (error != 0) return CannotRead(error);
    if (found.mv_size >= room) return CannotRead(MDB_BAD_VALSIZE);
    memcpy(value, found.mv_data, found.mv_size);
    value[found.mv_size] = '\0';
    return StoreResult::kOk;
}

StoreResult ReadStore(const char* key, char* value, size_t room) {
    size_t state;
    return Read(key, value, room, state);
}

StoreResult WriteStore(const char* key, const char* value) {
    size_t key_length = KeyLength(key);
    if (key_length == 0) return StoreResult::kBadKey;
    size_t length = value == nullptr ? kStoreValueMax + 1 : strnlen(value, kStoreValueMax + 1);
    if (length > kStoreValueMax) {
        Complain(kCauseValue, "the value of configuration key %s was refused: %s", key,
                 value == nullptr ? "there is none" : "it is longer than 4095 bytes");
        static_assert(kStoreValueMax == 4095);
        return StoreResult::kTooLong;
    }
    if (!Ready()) return StoreResult::kUnreachable;

    MDB_val name = Bytes(key, key_length);
    MDB_val wanted = Bytes(value, length);
    {
        // Most settings repeat what stands already; that needs no disk.
        ReadTransaction transaction;
        MDB_val found;
        if (transaction.error() == 0 && mdb_get(transaction.get(), g_dbi, &name, &found) == 0 &&
            found.mv_size == length && memcmp(found.mv_data, value, length) == 0)
            return StoreResult::kOk;
    }
    int error = Put(name, wanted);
    // Full may mean no more than that a reader was killed or lost the processor inside the store and keeps
    // old pages alive: they are free as soon as its place is taken away or it goes on.
    bool held = true;
    for (int attempt = 0; error == MDB_MAP_FULL && held && attempt < kHeldAttempts; ++attempt) {
        RemoveDeadReaders();
        held = ReaderInside();
        if (held) usleep(kHeldWaitUs);
        error = Put(name, wanted);
    }
    if (error == 0) return StoreResult::kOk;
    if (error == MDB_MAP_FULL) {
        Complain(kCauseRoom,
                 "the configuration store %s is full (%zu KB): %s was not stored; end what uses it and "
                 "delete it to "
                 "start with an empty one",
                 g_directory, kStoreBytes / 1024, key);
        return StoreResult::kNoRoom;
    }
    Complain(IsNoRoom(error) ? kCauseRoom : kCauseWrite,
             "cannot store %s in the configuration store %s: %s; %s", key, g_directory, mdb_strerror(error),
             Advice(error));
    return IsNoRoom(error) ? StoreResult::kNoRoom : StoreResult::kUnreachable;
}

StoreResult WalkStore(void (*each)(const char*, size_t, const char*, size_t, void*), void* arg) {
    if (!Ready()) return StoreResult::kUnreachable;
    ReadTransaction transaction;
    if (transaction.error() != 0) return CannotRead(transaction.error());
    MDB_cursor* cursor;
    int error = mdb_cursor_open(transaction.get(), g_dbi, &cursor);
    if (error != 0) return CannotRead(error);
    MDB_val key;
    MDB_val value;
    while ((error = mdb_cursor_get(cursor, &key, &value, MDB_NEXT)) == 0)
        each(static_cast<const char*>(key.mv_data), key.mv_size, static_cast<const char*>(value.mv_data),
             value.mv_size, arg);
    mdb_cursor_close(cursor);
    return error == MDB_NOTFOUND ? StoreResult::kOk : CannotRead(error);
}

const char* StoreComplaint() {
    return g_complaint;
}

void SetStoreComplaints(bool on) {
    g_loud.store(on);
}

extern "C" const char* cfg_get(const char* key) {
    static thread_local char value[kStoreValueMax + 1];
    Remembered* const place = PlaceOf(key);
    if (place != nullptr && Ready() && IsCurrent(*place, key)) return place->missing ? nullptr : place->value;

    size_t state = 0;
    const StoreResult result = Read(key, value, sizeof value, state);
    const bool known = result == StoreResult::kMissing || result == StoreResult::kOk;
    if (place != nullptr && known) {
        place->missing = result == StoreResult::kMissing;
        const size_t length = place->missing ? 0 : strlen(value);
        place->opening = length < sizeof place->value ? g_openings.load(std::memory_order_relaxed) + 1 : 0;
        if (place->opening != 0) {
            place->state = state;
            snprintf(place->key, sizeof place->key, "%s", key);
            memcpy(place->value, value, length);
            place->value[length] = '\0';
        }
    }
    return result == StoreResult::kOk ? value : nullptr;
}

extern "C" int cfg_set(const char* key, const char* value) {
    return WriteStore(key, value) == StoreResult::kOk ? 0 : -1;
}
