#include "checks/support/work_directory.h"

#include <stdio.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

namespace {

[[noreturn]] void Fail(const char* what) {
    perror(what);
    abort();
}

}  // namespace

WorkDirectory::WorkDirectory() : before_(std::filesystem::current_path()) {
    std::string pattern = std::filesystem::temp_directory_path() / "at-check-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) Fail("mkdtemp");
    path_ = pattern;
    std::filesystem::current_path(path_);
}

WorkDirectory::~WorkDirectory() {
    std::error_code ignored;
    std::filesystem::current_path(before_, ignored);
    std::filesystem::remove_all(path_, ignored);
}

void WorkDirectory::Write(const std::string& path, const std::string& content) const {
    std::filesystem::path full = std::filesystem::path(path_) / path;
    std::filesystem::create_directories(full.parent_path());
    std::ofstream file(full, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!file) Fail(full.c_str());
}
