#include "isi/diagnostics.h"

#include "base/installation.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

constinit void *libisiHandle = nullptr;

namespace {

using kestrion::isi_source_name;
using kestrion::place_from_environment;
using kestrion::trace_calls;
using kestrion::trace_functions;
using kestrion::trace_load;

// The provider's file, opened for root; -1 for all others. It stays open while the library is loaded,
// which goes by the number of this descriptor in the process.
constinit int provider_file = -1;

constexpr const char *default_provider = "libisi.so.1";
constexpr int required_major = 1;
constexpr int required_minor = 2;

constexpr int bound = 0;
constexpr int not_bound = 1;
constexpr int no_memory = 2;

#define LOG_ERR(kind, operation, code, ...)                                                        \
    isi_log_err(kind, operation, code, "isi_init", isi_source_name, __LINE__, __VA_ARGS__)

bool open_main_program() {
    if (isi_shared_globals.main_handle == nullptr)
        isi_shared_globals.main_handle = dlopen(nullptr, RTLD_NOW | RTLD_GLOBAL);
    if (isi_shared_globals.main_handle != nullptr)
        return true;
    LOG_ERR(ISI_ERR_DLERROR, "GET_MAIN_HANDLE", 0, "cannot set main handle");
    return false;
}

// Hands the function of the running program that the variable names to `install`.
void read_callback(const char *variable, const char *kind, int (*install)(isi_line_callback)) {
    const char *name = place_from_environment(variable);
    if (name == nullptr)
        return;
    void *function = dlsym(isi_shared_globals.main_handle, name);
    if (function != nullptr)
        install(reinterpret_cast<isi_line_callback>(function));
    else
        LOG_ERR(ISI_ERR_PLACE, "DLSYM", 0, "cannot get address of %s callback function '%s'", kind,
                name);
}

void read_settings() {
    if (const char *name = place_from_environment("ISI_ERR_FILE"))
        isi_set_err_file(name);
    read_callback("ISI_ERR_CALLBACK", "err", isi_set_err_callback);
    if (const char *level = place_from_environment("ISI_TRACE_LEVEL"))
        isi_set_trace_level(static_cast<int>(strtol(level, nullptr, 10)));
    if (const char *name = place_from_environment("ISI_TRACE_FILE"))
        isi_set_trace_file(name);
    read_callback("ISI_TRACE_CALLBACK", "trace", isi_set_trace_callback);
}

// An owned path, or null with the result set.
char *provider_path(int *result) {
    const char *name = place_from_environment("LIBISI_NAME");
    if (name == nullptr)
        name = default_provider;
    const char *directory = kestrion::directory_from_environment();
    if (directory == nullptr) {
        LOG_ERR(ISI_ERR_PLACE, "getenv", 0,
                "please set KESTRIONDIR to enable loading of $KESTRIONDIR/lib/%s", name);
        return nullptr;
    }
    const size_t size = strlen(directory) + strlen(name) + sizeof "/lib/";
    auto path = static_cast<char *>(isi_malloc(size));
    if (path == nullptr) {
        LOG_ERR(ISI_ERR_PLACE, "malloc", 0, "cannot allocate %ld bytes", static_cast<long>(size));
        *result = no_memory;
        return nullptr;
    }
    snprintf(path, size, "%s/lib/%s", directory, name);
    return path;
}

// The linker finds a library by the name under which it was loaded before, also one that was closed
// and stays in memory. So each provider gets a number that no earlier one had, as long as there are
// any.
int with_new_number(int descriptor) {
    static constinit int next_number = 0;
    int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, next_number);
    if (moved < 0)
        moved = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    close(descriptor);
    next_number = moved + 1;
    return moved;
}

// For root the file is opened, so that the one that is judged is the one that is loaded whatever
// happens to the path meanwhile.
int look_at_file(const char *path, struct stat *status) {
    if (geteuid() != 0)
        return stat(path, status);
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (descriptor < 0)
        return -1;
    provider_file = with_new_number(descriptor);
    return provider_file < 0 ? -1 : fstat(provider_file, status);
}

// For root a provider must be root's own: whoever can replace it would run as root. Links are
// followed, so it is the target that is judged.
bool is_acceptable_file(const char *path) {
    struct stat status;
    const int code = look_at_file(path, &status);
    if (code != 0) {
        LOG_ERR(ISI_ERR_ERRNO, "stat", code, "cannot access %s", path);
        return false;
    }
    if (geteuid() == 0 && status.st_uid != 0) {
        LOG_ERR(ISI_ERR_MESSAGE, nullptr, 0, "%s exists, but is not owned by root", path);
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        LOG_ERR(ISI_ERR_MESSAGE, nullptr, 0,
                "%s exists, but is not a regular file or symbolic link", path);
        return false;
    }
    return true;
}

bool open_provider(const char *path) {
    char opened[sizeof "/proc/self/fd/" + 10];
    snprintf(opened, sizeof opened, "/proc/self/fd/%d", provider_file);
    libisiHandle = dlopen(provider_file >= 0 ? opened : path, RTLD_NOW | RTLD_GLOBAL);
    if (libisiHandle == nullptr) {
        LOG_ERR(ISI_ERR_DLERROR, "OPEN_LIB", 0, "cannot load library %s", path);
        return false;
    }
    isi_trace(trace_load, "using %s", path);
    return true;
}

bool bind_functions() {
    for (int row = 0; row < ISI_FUNCTION_COUNT; ++row) {
        isi_functab_row &function = isi_functab[row];
        void *address = dlsym(libisiHandle, function.name);
        function.isi_fp.address = reinterpret_cast<void (*)()>(address);
        isi_trace(trace_functions, "isi_init: %02d %s = %p", row, function.name, address);
        if (address == nullptr) {
            LOG_ERR(ISI_ERR_DLERROR, "DLSYM", 0, "cannot load address of function %s",
                    function.name);
            return false;
        }
    }
    return true;
}

bool start_provider(const char *path) {
    const int code = ISI_BOUND(ISI_INIT_INT)(&isi_shared_globals, &isi_shared_thread_globals);
    if (code == 0)
        return true;
    LOG_ERR(ISI_ERR_PLACE, "isi_init_int", code, "initialization of %s failed", path);
    return false;
}

// All four versions are asked before anything is logged: asking empties the error stack.
bool has_required_version(const char *path) {
    const int major = isi_lib_version_major();
    const int minor = isi_lib_version_minor();
    const int wanted_major = isi_build_version_major();
    const int wanted_minor = isi_build_version_minor();
    if (major != wanted_major) {
        LOG_ERR(ISI_ERR_MESSAGE, nullptr, 0,
                "%s is major version %d, but major version %d is required", path, major,
                wanted_major);
        return false;
    }
    if (minor < wanted_minor) {
        LOG_ERR(ISI_ERR_MESSAGE, nullptr, 0,
                "%s is minor version %d, but minor version %d or higher is required", path, minor,
                wanted_minor);
        return false;
    }
    return true;
}

bool load_provider(const char *path) {
    if (!is_acceptable_file(path) || !open_provider(path) || !bind_functions() ||
        !start_provider(path) || !has_required_version(path))
        return false;
    isi_trace(trace_load, "version info: %s", isi_lib_version_string());
    return true;
}

int bind_provider() {
    if (!open_main_program())
        return not_bound;
    read_settings();
    int result = not_bound;
    char *path = provider_path(&result);
    if (path != nullptr && load_provider(path))
        result = bound;
    isi_free(path);
    return result;
}

void close_library(void **handle) {
    if (*handle != nullptr)
        dlclose(*handle);
    *handle = nullptr;
}

} // namespace

int isi_build_version_major() {
    isi_err_stack_reset(&isi_shared_thread_globals);
    return required_major;
}

int isi_build_version_minor() {
    isi_err_stack_reset(&isi_shared_thread_globals);
    return required_minor;
}

int isi_init() {
    if (libisiHandle != nullptr)
        return bound;
    // Emptied rather than only zeroed: an earlier attempt may have left items.
    isi_err_stack_clear(&isi_shared_thread_globals);
    const int result = bind_provider();
    if (result != bound)
        isi_cleanup();
    isi_trace(trace_calls, "ret=%d", result);
    return result;
}

void isi_cleanup() {
    if (auto cleanup = ISI_BOUND(ISI_CLEANUP_INT))
        cleanup();
    for (isi_functab_row &function : isi_functab)
        function.isi_fp.address = nullptr;
    close_library(&libisiHandle);
    if (provider_file >= 0)
        close(provider_file);
    provider_file = -1;
    close_library(&isi_shared_globals.main_handle);
}
