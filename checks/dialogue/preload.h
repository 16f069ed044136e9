#ifndef AT_CHECKS_DIALOGUE_PRELOAD_H
#define AT_CHECKS_DIALOGUE_PRELOAD_H

#include <fcntl.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

// Programs that are started while it lives get a library in front of their others. Its path comes from the
// environment; it is not there where a sanitizer or an emulator stands in front already.
class Preload {
  public:
    explicit Preload(const char* variable) {
        const char* library = getenv(variable);
        if (library != nullptr) setenv("LD_PRELOAD", library, 1);
        there_ = library != nullptr;
    }
    ~Preload() { unsetenv("LD_PRELOAD"); }
    Preload(const Preload&) = delete;
    Preload& operator=(const Preload&) = delete;

    bool there() const { return there_; }

  private:
    bool there_ = false;
};

// A number that a preloaded library reads while it works: in a file that both have mapped.
template <typename T>
class SharedNumber {
  public:
    explicit SharedNumber(const char* path) {
        const int file = open(path, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        void* mapped = MAP_FAILED;
        if (file >= 0 && ftruncate(file, sizeof(T)) == 0)
            mapped = mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        if (file >= 0) close(file);
        if (mapped == MAP_FAILED) throw std::runtime_error(std::string("cannot share ") + path);
        number_ = static_cast<volatile T*>(mapped);
    }
    void Set(T value) { *number_ = value; }

  private:
    volatile T* number_;
};

#endif
