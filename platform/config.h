#ifndef AT_PLATFORM_CONFIG_H
#define AT_PLATFORM_CONFIG_H

#include <string.h>

#include "platform/platform.h"

// Reads of the configuration store in the one way the daemon uses it: a missing key is the empty text.

// The value of `key`, never null. Valid until the same thread reads the store again.
inline const char* ConfigText(const char* key) {
    const char* value = cfg_get(key);
    return value != nullptr ? value : "";
}

// True when the value of `key` is exactly `wanted`.
inline bool ConfigIs(const char* key, const char* wanted) {
    return strcmp(ConfigText(key), wanted) == 0;
}

#endif
