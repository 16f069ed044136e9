// The entry that libFuzzer calls; which body it is, the build says.

#include "checks/fuzz/targets.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FUZZ_TARGET(data, size);
    return 0;
}
