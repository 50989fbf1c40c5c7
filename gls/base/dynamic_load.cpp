#include <kestrion/dynamic_load.h>

#include "gls/base/real_identity.h"
#include <kestrion/ext_funcs.h>

#include <dlfcn.h>
#include <errno.h>
#include <string.h>

namespace {

char *copy_of(const char *text) {
    const size_t size = strlen(text) + 1;
    char *const copy = static_cast<char *>(_gl_ext_malloc(size));
    if (copy != nullptr)
        memcpy(copy, text, size);
    return copy;
}

void forget(char *&text) {
    _gl_free_ptr(text);
    text = nullptr;
}

void set_text(qvtx_dl_handle *handle, const char *text) {
    forget(handle->text);
    handle->text = copy_of(text);
}

int internal_error(qvtx_dl_handle *handle) {
    if (handle != nullptr) {
        set_text(handle, "Internal Error");
        handle->error = -2;
    }
    return -1;
}

} // namespace

int qvtx_dlopen(qvtx_dl_handle *handle, const char *path, int flags) {
    *handle = {};
    if (path == nullptr)
        return internal_error(handle);
    handle->path = copy_of(path);
    kestrion::real_identity identity;
    if (handle->path == nullptr || !identity.take()) {
        forget(handle->path);
        handle->error = -1;
        return -1;
    }
    handle->library = dlopen(path, flags == qvtx_dl_default_flags ? RTLD_NOW | RTLD_GLOBAL : flags);
    identity.give_back();
    if (handle->library != nullptr)
        return 0;
    forget(handle->path);
    qvtx_dlerror(handle);
    return -1;
}

int qvtx_dlsym(qvtx_dl_handle *handle, void **out, const char *name) {
    if (handle == nullptr || handle->library == nullptr || name == nullptr || out == nullptr)
        return internal_error(handle);
    *out = dlsym(handle->library, name);
    if (*out != nullptr)
        return 0;
    qvtx_dlerror(handle);
    return -1;
}

int qvtx_dlclose(qvtx_dl_handle *handle) {
    if (handle == nullptr)
        return -1;
    forget(handle->text); // also of a handle that failed to open
    if (handle->library == nullptr)
        return -1;
    const int closed = dlclose(handle->library);
    handle->library = nullptr;
    forget(handle->path);
    return closed != 0 ? qvtx_dlerror(handle) : 0;
}

int qvtx_dlerror(qvtx_dl_handle *handle) {
    const int number = errno;
    const char *const text = dlerror();
    set_text(handle, text != nullptr ? text : "");
    handle->error = -1;
    return number;
}
