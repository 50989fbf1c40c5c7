#include <kestrion/library.h>

#include <kestrion/strings.h>

#include <dlfcn.h>

void *qvt_load_library(const char *path, int mode) {
    return dlopen(path, mode != 0 ? mode : RTLD_NOW | RTLD_GLOBAL);
}

void *qvt_findsym_library(void *library, const char *name) { return dlsym(library, name); }

int qvt_close_library(void *library) { return dlclose(library); }

char *qvt_error_library(char *buffer, size_t size) {
    if (buffer == nullptr || size == 0)
        return buffer;
    const char *error = dlerror();
    stncopy(error != nullptr ? error : "", buffer, static_cast<ptrdiff_t>(size));
    return buffer;
}
