#include "base/owned_text.h"
#include "isi/diagnostics.h"

#include <stdlib.h>
#include <string.h>

constinit struct isi_shared_globals isi_shared_globals = {
    .allocate = malloc,
    .release = free,
};
constinit thread_local struct isi_shared_thread_globals isi_shared_thread_globals = {};

void isi_set_memfunc(isi_allocate_fn allocate, isi_free_fn release) {
    if (allocate != nullptr)
        isi_shared_globals.allocate = allocate;
    if (release != nullptr)
        isi_shared_globals.release = release;
}

int isi_use_threads(int threads) {
    const int old = isi_shared_globals.threads;
    isi_shared_globals.threads = threads;
    return old;
}

void *isi_malloc(size_t size) { return isi_shared_globals.allocate(size != 0 ? size : 1); }

void isi_free(void *block) {
    if (block != nullptr)
        isi_shared_globals.release(block);
}

int isi_setstr(char **slot, const char *text) {
    if (*slot == text || (*slot != nullptr && text != nullptr && strcmp(*slot, text) == 0))
        return 0;
    char *copy = nullptr;
    if (text != nullptr) {
        copy = kestrion::copied_text(text, isi_malloc);
        if (copy == nullptr)
            return 2;
    }
    isi_free(*slot);
    *slot = copy;
    return 0;
}

int isi_set_trace_level(int level) {
    isi_err_stack_reset(&isi_shared_thread_globals);
    isi_shared_globals.trace_level = level;
    return 0;
}

int isi_set_trace_file(const char *name) {
    isi_err_stack_reset(&isi_shared_thread_globals);
    return isi_setstr(&isi_shared_globals.trace_file, name);
}

int isi_set_trace_callback(isi_line_callback callback) {
    isi_err_stack_reset(&isi_shared_thread_globals);
    isi_shared_globals.trace_callback = callback;
    return 0;
}

int isi_set_err_file(const char *name) {
    isi_err_stack_reset(&isi_shared_thread_globals);
    return isi_setstr(&isi_shared_globals.err_file, name);
}

int isi_set_err_callback(isi_line_callback callback) {
    isi_err_stack_reset(&isi_shared_thread_globals);
    isi_shared_globals.err_callback = callback;
    return 0;
}
