#ifndef AT_PLATFORM_HOST_STORE_H
#define AT_PLATFORM_HOST_STORE_H

#include <stddef.h>

// The stand-in's configuration store: one LMDB environment, shared by all processes of the machine. Programs
// use cfg_get and cfg_set of platform.h; this header is for cfgctl and for the checks, which need more than
// that.

inline constexpr char kStoreParent[] = "/etc_rw/config";            // has to exist
inline constexpr char kStoreDirectory[] = "/etc_rw/config/.store";  // made when it is missing

// Room of the whole store: keys, values and the free pages that a change needs while readers look at the old
// ones. Taken from the disk when the store is made, so that a disk that fills up later does not stop a
// setting.
inline constexpr size_t kStoreBytes = size_t{1} << 20;
inline constexpr size_t kStoreKeyMax = 255;     // longest key, without its NUL
inline constexpr size_t kStoreValueMax = 4095;  // longest value, without its NUL

// What became of an operation. Everything but kOk and kMissing leaves one line on standard error and in the
// system log, once per process and cause.
enum class StoreResult {
    kOk,
    kMissing,      // no such key
    kBadKey,       // no key, an empty one, or longer than kStoreKeyMax
    kTooLong,      // no value, or longer than kStoreValueMax
    kNoRoom,       // the store or its disk is full; what was stored before stands
    kUnreachable,  // the store could not be opened, read or written
};

// Opens the store in `directory`, whose parent exists, after closing the one that is open. Only for checks:
// everyone else is served by the first cfg_get or cfg_set, which opens kStoreDirectory. No other thread may
// use the store meanwhile.
StoreResult OpenStore(const char* directory);
void CloseStore();

// Copies the value of `key` and a NUL into `value`, which holds `room` bytes (kStoreValueMax + 1 is always
// enough).
StoreResult ReadStore(const char* key, char* value, size_t room);
StoreResult WriteStore(const char* key, const char* value);

// Calls `each` for every pair, ordered by key, texts not NUL-terminated. `each` runs inside a read
// transaction and must not wait for anything: while it runs no page of the store is used again.
StoreResult WalkStore(void (*each)(const char* key, size_t key_length, const char* value, size_t value_length,
                                   void* arg),
                      void* arg);

// The last thing that went wrong in this process, as one line without a line feed; "" when nothing did.
const char* StoreComplaint();

// When false, nothing is written to standard error or the system log; StoreComplaint() still tells.
void SetStoreComplaints(bool on);

#endif
