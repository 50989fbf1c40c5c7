// Dynamic libraries: the dynamic linker under the names of the runtime.

#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

// As dlopen(). A `mode` of 0 stands for RTLD_NOW | RTLD_GLOBAL.
void *qvt_load_library(const char *path, int mode);

void *qvt_findsym_library(void *library, const char *name); // as dlsym()
int qvt_close_library(void *library);                       // as dlclose()

// Writes the pending dlerror() text into buffer[0..size), cut to fit and terminated; empty when no
// error is pending. Returns `buffer`, untouched when it is null or `size` is 0.
char *qvt_error_library(char *buffer, size_t size);

#ifdef __cplusplus
}
#endif
