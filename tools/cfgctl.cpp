// cfgctl: reads and changes the configuration store from a shell.

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <initializer_list>

#include "platform/host_store.h"
#include "tools/shared/edit_distance.h"

namespace {

enum Exit { kDone = 0, kNoSuchKey = 1, kMisuse = 2, kNoStore = 3, kNoPermission = 4 };

constexpr char kHelp[] =
    "Usage: cfgctl get KEY          print the value of KEY; exit 1 when it is missing\n"
    "       cfgctl set KEY VALUE    store VALUE under KEY\n"
    "       cfgctl list             print KEY=VALUE for every key, sorted by key\n"
    "       cfgctl --help | --version\n"
    "\n"
    "The store is /etc_rw/config/.store; it is made when /etc_rw/config exists.\n"
    "KEY has 1 to 255 bytes, no control characters and no '='; VALUE has up to 4095 bytes.\n"
    "'list' shows control characters of a value as \\n, \\r, \\t or \\xHH; 'get' prints it as it is.\n"
    "\n"
    "Exit status: 0 done, 1 no such key, 2 misuse, 3 the store or the output cannot be used,\n"
    "4 no permission to use the store.\n";
static_assert(kStoreKeyMax == 255 && kStoreValueMax == 4095);

int Misuse(const char* what) {
    fprintf(stderr, "cfgctl: %s; try cfgctl --help\n", what);
    return kMisuse;
}

// Null when `key` can be one, else what is wrong with it.
const char* KeyFault(const char* key) {
    size_t length = strlen(key);
    if (length == 0) return "KEY is empty";
    if (length > kStoreKeyMax) return "KEY is longer than 255 bytes";
    for (const char* at = key; *at != '\0'; ++at)
        if (*at == '=' || static_cast<unsigned char>(*at) < ' ' || *at == 0x7f)
            return "KEY contains '=' or a control character";
    return nullptr;
}

int Unusable() {
    fprintf(stderr, "cfgctl: %s\n", StoreComplaint());
    const char* const place = access(kStoreDirectory, F_OK) == 0 ? kStoreDirectory : kStoreParent;
    // Looking for it fails in the same way where a directory above may not be entered.
    const bool refused = access(place, R_OK | W_OK | X_OK) != 0 && errno == EACCES;
    return refused ? kNoPermission : kNoStore;
}

// The name nearest to what was typed, of those it is shown.
class Nearest {
  public:
    explicit Nearest(const char* typed) : typed_(typed), least_(2 + strlen(typed) / 4) {}

    void Look(const char* name, size_t length) {
        const size_t distance = EditDistance(typed_, strlen(typed_), name, length);
        if (distance >= least_ || length > kStoreKeyMax) return;
        for (size_t i = 0; i < length; ++i)
            if (static_cast<unsigned char>(name[i]) < ' ' || name[i] == 0x7f) return;
        least_ = distance;
        memcpy(name_, name, length);
        name_[length] = '\0';
    }
    // "; did you mean NAME?" on standard error, if there is one.
    void Suggest() const {
        if (*name_ != '\0') fprintf(stderr, "; did you mean %s?", name_);
    }

  private:
    const char* typed_;
    size_t least_;  // what is as far away is not near
    char name_[kStoreKeyMax + 1] = {};
};

void LookAtKey(const char* key, size_t key_length, const char*, size_t, void* nearest) {
    static_cast<Nearest*>(nearest)->Look(key, key_length);
}

int NoSuchKey(const char* key) {
    Nearest nearest(key);
    WalkStore(LookAtKey, &nearest);
    fprintf(stderr, "cfgctl: there is no key %s", key);
    nearest.Suggest();
    fputc('\n', stderr);
    return kNoSuchKey;
}

int UnknownCommand(const char* command) {
    Nearest nearest(command);
    for (const char* const known : {"get", "set", "list"})
        nearest.Look(known, strlen(known));
    fprintf(stderr, "cfgctl: there is no command %s", command);
    nearest.Suggest();
    fputs("; try cfgctl --help\n", stderr);
    return kMisuse;
}

int Written() {
    if (fflush(stdout) == 0 && ferror(stdout) == 0) return kDone;
    perror("cfgctl: standard output");
    return kNoStore;
}

int Get(const char* key) {
    static char value[kStoreValueMax + 1];
    switch (ReadStore(key, value, sizeof value)) {
        case StoreResult::kOk:
            puts(value);
            return Written();
        case StoreResult::kMissing:
            return NoSuchKey(key);
        default:
            return Unusable();
    }
}

int Set(const char* key, const char* value) {
    if (strlen(value) > kStoreValueMax) return Misuse("VALUE is longer than 4095 bytes");
    return WriteStore(key, value) == StoreResult::kOk ? kDone : Unusable();
}

// A text that grows. Once the memory is used up it stays as it is and says so.
struct Text {
    char* bytes = nullptr;
    size_t length = 0;
    size_t room = 0;
    bool whole = true;

    Text() = default;
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    ~Text() { free(bytes); }

    void Append(const char* added, size_t count) {
        if (room - length < count) {
            const size_t wanted = 2 * (length + count);
            char* grown = static_cast<char*>(realloc(bytes, wanted));
            whole = whole && grown != nullptr;
            if (!whole) return;
            bytes = grown;
            room = wanted;
        }
        memcpy(bytes + length, added, count);
        length += count;
    }
};

void AppendPair(const char* key, size_t key_length, const char* value, size_t value_length, void* arg) {
    Text& out = *static_cast<Text*>(arg);
    out.Append(key, key_length);
    out.Append("=", 1);
    for (size_t i = 0; i < value_length; ++i) {
        auto byte = static_cast<unsigned char>(value[i]);
        char shown[8] = {value[i]};
        if (byte == '\n') {
            strcpy(shown, "\\n");
        } else if (byte == '\r') {
            strcpy(shown, "\\r");
        } else if (byte == '\t') {
            strcpy(shown, "\\t");
        } else if (byte < ' ' || byte == 0x7f) {
            snprintf(shown, sizeof shown, "\\x%02X", byte);
        }
        out.Append(shown, strlen(shown));
    }
    out.Append("\n", 1);
}

// Gathers first and prints then: a reader that stands before a full pipe would keep old pages of the store
// alive.
int List() {
    Text out;
    if (WalkStore(AppendPair, &out) != StoreResult::kOk) return Unusable();
    if (!out.whole) {
        fputs("cfgctl: no memory for the list; free some and try again\n", stderr);
        return kNoStore;
    }
    if (out.length > 0) fwrite(out.bytes, 1, out.length, stdout);
    return Written();
}

}  // namespace

int main(int argc, char** argv) {
    SetStoreComplaints(false);
    if (argc < 2) return Misuse("no command is given");
    const char* command = argv[1];
    if (strcmp(command, "--help") == 0 || strcmp(command, "-h") == 0) {
        fputs(kHelp, stdout);
        return Written();
    }
    if (strcmp(command, "--version") == 0) {
        puts("cfgctl " AT_VERSION);
        return Written();
    }
    if (strcmp(command, "list") == 0) return argc == 2 ? List() : Misuse("list takes no arguments");
    bool get = strcmp(command, "get") == 0;
    if (!get && strcmp(command, "set") != 0) return UnknownCommand(command);
    if (argc != (get ? 3 : 4)) return Misuse(get ? "get takes KEY" : "set takes KEY and VALUE");
    if (const char* fault = KeyFault(argv[2])) return Misuse(fault);
    return get ? Get(argv[2]) : Set(argv[2], argv[3]);
}
