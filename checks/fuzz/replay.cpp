// Runs every file of a corpus through its body, with whatever compiler the checks are built with.

#include <stdio.h>
#include <string.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "checks/fuzz/targets.h"

int main(int argc, char** argv) {
    static constexpr struct {
        const char* name;
        void (*body)(const uint8_t*, size_t);
    } kTargets[] = {
        {"framing", FuzzFraming},   {"parse", FuzzParse},     {"decode", FuzzDecode},
        {"report", FuzzReport},     {"inifile", FuzzInifile}, {"generate", FuzzGenerate},
        {"delivery", FuzzDelivery},
    };
    if (argc != 3) return 2;
    int files = 0;
    for (const auto& target : kTargets) {
        if (strcmp(argv[1], target.name) != 0) continue;
        for (const auto& entry : std::filesystem::directory_iterator(argv[2])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
            fprintf(stderr, "%s\n", entry.path().c_str());
            target.body(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
            ++files;
        }
    }
    printf("%s: %d files\n", argv[1], files);
    return files == 0 ? 1 : 0;
}
