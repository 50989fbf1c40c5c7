// Loading of a shared library with a handle that remembers what went wrong.

#pragma once

#include <stdint.h>

typedef struct qvtx_dl_handle {
    int32_t error; // 0, -1 the system's loader failed, -2 handle or name missing
    char *text;    // text of the error; owned, null if none
    void *library; // the system's handle, null when not open
    char *path;    // name of the library; owned
} qvtx_dl_handle;

// Value of `flags` that means immediate binding and global symbols.
enum { qvtx_dl_default_flags = -99 };

#ifdef __cplusplus
extern "C" {
#endif

// Loads the library `path`. As root on behalf of another real user, it is loaded as that user; the
// effective identity comes back afterwards, or the process ends. Returns 0, or -1 with the handle's
// error filled (a copy of the path that can't be made is such a failure too). What the handle held
// is overwritten, not released; a failure's text is released by `qvtx_dlclose`.
int qvtx_dlopen(qvtx_dl_handle *handle, const char *path, int flags);

// Stores the address of `name` in *out. Returns 0, or -1 with the error filled; a missing handle,
// library or name is the code -2 and the text "Internal Error".
int qvtx_dlsym(qvtx_dl_handle *handle, void **out, const char *name);

// Closes the library and frees its path and the error text. Returns -1 when none is open (the text
// is freed then too), 0 when it closed, or the result of `qvtx_dlerror` when that failed.
int qvtx_dlclose(qvtx_dl_handle *handle);

// Replaces the handle's text by a copy of the system's, sets its code to -1 and returns errno.
int qvtx_dlerror(qvtx_dl_handle *handle);

#ifdef __cplusplus
}
#endif
