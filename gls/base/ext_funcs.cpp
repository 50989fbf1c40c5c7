#include <kestrion/ext_funcs.h>

#include "base/installation.h"
#include "base/regular_file.h"
#include "gls/base/engine_error.h"

#include <iterator>
#include <stdlib.h>
#include <string.h>
#include <time.h>

using namespace kestrion;

namespace {

// The function to call for `slot`: the host's if it has filled the slot, else the built-in.
template <typename Function> Function *of_slot(gl_ext_slot slot, Function *built_in) {
    const gl_function hosts = _gl_ext_func != 0 ? funcptr_arr[slot] : nullptr;
    return hosts != nullptr ? reinterpret_cast<Function *>(hosts) : built_in;
}

bool local_time_now(tm &now) {
    const time_t seconds = time(nullptr);
    tzset(); // a host may change TZ while it runs; localtime_r alone looks at it once
    return localtime_r(&seconds, &now) != nullptr;
}

} // namespace

constinit gl_function funcptr_arr[GL_SLOTS] = {};
constinit int32_t _gl_ext_func = 0;
constinit int32_t temperr = 0;

constinit const gl_file_functions gl_ext_functions = {.allocate = _gl_ext_malloc,
                                                      .release = _gl_ext_free,
                                                      .open = _gl_ext_fopen,
                                                      .close = _gl_ext_fclose};
constinit const gl_file_functions gl_reg_functions = {
    .allocate = malloc, .release = free, .open = gl_ext_fopen, .close = fclose};

int gl_setextfunc(void *ctx, uint32_t slot, gl_function function) {
    if (slot >= GL_SLOTS)
        return fail(ctx, GLS_ERR_ARGUMENT);
    funcptr_arr[slot] = function;
    _gl_ext_func = 1;
    return 0;
}

gl_function _gl_get_ext_funcptr(uint32_t slot) {
    return slot < GL_SLOTS ? funcptr_arr[slot] : nullptr;
}

void _gl_set_ext_funcptr(uint32_t slot, gl_function function) {
    if (slot < GL_SLOTS)
        funcptr_arr[slot] = function;
}

void _gl_reset_ext_func(void) { _gl_ext_func = 0; }

int32_t *_gl_ext_errno(void *ctx) { return of_slot(GL_SLOT_ERRNO, gl_ext_errno)(ctx); }

char *_gl_ext_getenv(const char *name) { return of_slot(GL_SLOT_GETENV, gl_ext_getenv)(name); }

int _gl_ext_putenv(const char *text) { return of_slot(GL_SLOT_PUTENV, gl_ext_putenv)(text); }

void *_gl_ext_malloc(size_t size) { return of_slot(GL_SLOT_MALLOC, gl_ext_malloc)(size); }

void *_gl_ext_calloc(size_t count, size_t size) {
    return of_slot(GL_SLOT_CALLOC, gl_ext_calloc)(count, size);
}

void *_gl_ext_realloc(void *block, size_t size) {
    return of_slot(GL_SLOT_REALLOC, gl_ext_realloc)(block, size);
}

void _gl_ext_free(void *block) { of_slot(GL_SLOT_FREE, gl_ext_free)(block); }

FILE *_gl_ext_fopen(const char *name, const char *mode) {
    return of_slot(GL_SLOT_FOPEN, gl_ext_fopen)(name, mode);
}

int _gl_ext_fclose(FILE *file) { return of_slot(GL_SLOT_FCLOSE, gl_ext_fclose)(file); }

int _gl_ext_fgetc(FILE *file) { return of_slot(GL_SLOT_FGETC, gl_ext_fgetc)(file); }

int _gl_ext_getc(FILE *file) { return of_slot(GL_SLOT_GETC, gl_ext_getc)(file); }

int _gl_ext_ungetc(int character, FILE *file) {
    return of_slot(GL_SLOT_UNGETC, gl_ext_ungetc)(character, file);
}

char *_gl_ext_fgets(char *buffer, int size, FILE *file) {
    return of_slot(GL_SLOT_FGETS, gl_ext_fgets)(buffer, size, file);
}

size_t _gl_ext_fwrite(const void *data, size_t size, size_t count, FILE *file) {
    return of_slot(GL_SLOT_FWRITE, gl_ext_fwrite)(data, size, count, file);
}

int _gl_ext_feof(FILE *file) { return of_slot(GL_SLOT_FEOF, gl_ext_feof)(file); }

int _gl_ext_ferror(FILE *file) { return of_slot(GL_SLOT_FERROR, gl_ext_ferror)(file); }

int _gl_ext_fseek(FILE *file, long offset, int whence) {
    return of_slot(GL_SLOT_FSEEK, gl_ext_fseek)(file, offset, whence);
}

long _gl_ext_ftell(FILE *file) { return of_slot(GL_SLOT_FTELL, gl_ext_ftell)(file); }

int _gl_ext_currdate(gl_date_rec *record) {
    return of_slot(GL_SLOT_CURRDATE, gl_ext_currdate)(record);
}

int _gl_ext_currtime(gl_time_rec *record) {
    return of_slot(GL_SLOT_CURRTIME, gl_ext_currtime)(record);
}

int _gl_ext_UCA(void) {
    gl_uca_fn *const hosts = of_slot<gl_uca_fn>(GL_SLOT_UCA, nullptr);
    return hosts != nullptr ? hosts() : -1;
}

void *_gl_ext1_malloc(void *, size_t size) { return _gl_ext_malloc(size); }

void *_gl_ext1_calloc(void *, size_t count, size_t size) { return _gl_ext_calloc(count, size); }

void *_gl_ext1_realloc(void *, void *block, size_t size) { return _gl_ext_realloc(block, size); }

void _gl_ext1_free(void *, void *block) { _gl_ext_free(block); }

void *_gl_alloc_ptr(size_t size) { return size == 0 ? nullptr : _gl_ext_malloc(size); }

void _gl_free_ptr(void *block) {
    if (block != nullptr)
        _gl_ext_free(block);
}

void gl_destroystring(void *text) { _gl_free_ptr(text); }

char *_gl_get_env_var(const char *name) {
    char *const value = _gl_ext_getenv(name);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

char *gl_ext_getenv(const char *name) { return kestrion::place_from_environment(name); }

int32_t *gl_ext_errno(void *ctx) { return ctx != nullptr ? static_cast<int32_t *>(ctx) : &temperr; }

int gl_ext_fclose(FILE *file) { return fclose(file); }

int gl_ext_feof(FILE *file) { return feof(file); }

int gl_ext_ferror(FILE *file) { return ferror(file); }

// The engine's files are its own and it reads them by the byte: taking the stream's lock for each
// would be most of the time of a load.
int gl_ext_fgetc(FILE *file) { return getc_unlocked(file); }

char *gl_ext_fgets(char *buffer, int size, FILE *file) { return fgets(buffer, size, file); }

FILE *gl_ext_fopen(const char *name, const char *mode) {
    return strcmp(mode, "r") == 0 ? open_regular_stream(name) : fopen(name, mode);
}

void gl_ext_free(void *block) { free(block); }

int gl_ext_fseek(FILE *file, long offset, int whence) { return fseek(file, offset, whence); }

long gl_ext_ftell(FILE *file) { return ftell(file); }

size_t gl_ext_fwrite(const void *data, size_t size, size_t count, FILE *file) {
    return fwrite(data, size, count, file);
}

int gl_ext_getc(FILE *file) { return getc_unlocked(file); }

void *gl_ext_malloc(size_t size) { return malloc(size); }

int gl_ext_ungetc(int character, FILE *file) { return ungetc(character, file); }

int gl_ext_putenv(const char *text) {
    // The environment keeps the block itself, so it is a copy and is never released.
    char *const kept = strdup(text);
    return kept != nullptr ? putenv(kept) : -1;
}

int gl_ext_currdate(gl_date_rec *record) {
    tm now;
    if (!local_time_now(now))
        return -1;
    *record = {.month = static_cast<uint16_t>(now.tm_mon + 1),
               .day = static_cast<uint16_t>(now.tm_mday),
               .year = static_cast<uint16_t>(now.tm_year + 1900)};
    return 0;
}

int gl_ext_currtime(gl_time_rec *record) {
    tm now;
    if (!local_time_now(now))
        return -1;
    *record = {.head = 0,
               .second = now.tm_sec,
               .minute = now.tm_min,
               .hour = now.tm_hour,
               .day = now.tm_mday,
               .month = now.tm_mon,
               .year = now.tm_year,
               .weekday = now.tm_wday,
               .day_of_year = now.tm_yday,
               .daylight = now.tm_isdst,
               .utc_offset = 0,
               .zone = nullptr};
    return 0;
}

void *gl_ext_calloc(size_t count, size_t size) { return calloc(count, size); }

void *gl_ext_realloc(void *block, size_t size) { return realloc(block, size); }
