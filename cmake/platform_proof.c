/* Linked with the router's platform library while configuring: uses every function that the daemon needs of
 * it. */

#include "platform/platform.h"

static int Fired(void* arg) {
    (void)arg;
    return 0;
}

int main(void) {
    return cfg_get("key") == 0 || cfg_set("key", "value") != 0 || CreateSoftTimer(1, 0, 1000, Fired, 0) != 0;
}
