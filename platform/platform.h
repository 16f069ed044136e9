#ifndef AT_PLATFORM_PLATFORM_H
#define AT_PLATFORM_PLATFORM_H

/* What the router provides to its daemons: a key/value configuration store and soft timers.
 * On a router both come from the router's own library; platform/ holds a stand-in for any Linux machine.
 * Usable from C11 and C++. */

#ifdef __cplusplus
extern "C" {
#endif

/* The value stored under `key`, NUL-terminated, or null when the key is missing. The text stays valid until
 * the same thread calls cfg_get again. Takes no lock. */
const char* cfg_get(const char* key);

/* Stores `value` under `key`. 0 on success, anything else when it could not be stored: the server does not
 * repeat it, so the library logs why. Called by the request thread, the response thread and soft timers, also
 * at the same time. `value` may be what cfg_get has just given to the same thread. */
int cfg_set(const char* key, const char* value);

/* Starts soft timer `id`: `callback(arg)` after `period_ms` milliseconds, again and again when `periodic` is
 * not 0. The callback runs on a thread of the timer service, with none of the library's locks held: it calls
 * cfg_get and cfg_set, and may wait for a shell. 0 on success. */
int CreateSoftTimer(int id, int periodic, unsigned period_ms, int (*callback)(void*), void* arg);

#ifdef __cplusplus
}
#endif

#endif
