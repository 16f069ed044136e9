/* Included before every C++ source where the compiler's C++ headers were made for another C library: what
 * they expect in <stdlib.h> and a small one lacks. Declared only; nobody calls it. */
#ifndef AT_CMAKE_FOREIGN_LIBC_H
#define AT_CMAKE_FOREIGN_LIBC_H

#include <features.h>
#include <stddef.h>

#ifndef __GLIBC_PREREQ
#define __GLIBC_PREREQ(major, minor) 0
#endif

#ifdef __cplusplus
extern "C" {
int at_quick_exit(void (*)(void));
[[noreturn]] void quick_exit(int);
int mblen(const char*, size_t);
int mbtowc(wchar_t*, const char*, size_t);
int wctomb(char*, wchar_t);
size_t mbstowcs(wchar_t*, const char*, size_t);
size_t wcstombs(char*, const wchar_t*, size_t);
}
#endif

#endif
