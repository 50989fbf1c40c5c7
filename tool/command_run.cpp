#include "tool/command_run.h"

#include "base/print_as_format.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#if defined(__x86_64__)
#if defined(__clang__)
#define _Bool bool // the header speaks C; g++ understands
#endif
#include <sys/platform/x86.h>
#endif

namespace kestrion {

int16_t op_mode = OP_ENCRYPT;
char inputfile_path[file_name_size];
char outputfile_path[file_name_size];
char key_input[access_key_size];
const char *qvtxdir = nullptr;

command_run run;

namespace {

void wipe(void *start, size_t size) {
    if (start != nullptr)
        explicit_bzero(start, size);
}

// Also the values that the option loop did not come to. From the end, since a value may be "-k".
void blank_keys_in_arguments() {
    for (int i = run.argc - 1; i >= 2; --i)
        if (strcmp(run.argv[i - 1], "-k") == 0)
            explicit_bzero(run.argv[i], strlen(run.argv[i]));
}

// Copying and comparing leave the last bytes in vector registers, and the C library still saves
// those on the stack where it binds functions of its own during the exit.
__attribute__((noinline)) void wipe_vector_registers() {
#if defined(__x86_64__)
    if (CPU_FEATURE_ACTIVE(AVX512F))
        asm volatile(".irp n,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30,31\n\t"
                     "vpxorq %%zmm\\n, %%zmm\\n, %%zmm\\n\n\t"
                     ".endr" ::);
    if (CPU_FEATURE_ACTIVE(AVX))
        asm volatile("vzeroall" ::);
    else
        asm volatile(".irp n,0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15\n\t"
                     "pxor %%xmm\\n, %%xmm\\n\n\t"
                     ".endr" ::);
#endif
}

// The stack that calls have used and left: printing keeps text there, and so does whatever saved
// the registers before.
__attribute__((noinline)) void wipe_dead_stack() {
    char dead[32 * 1024];
    explicit_bzero(dead, sizeof dead);
}

bool is_leaving = false;

// Runs at every exit, so also at the one that the registry of variables takes when it cannot even
// hold its defaults. That is the only one which is not ours, and it prints nothing.
void wipe_secrets() {
    blank_keys_in_arguments();
    wipe(key_input, sizeof key_input);
    wipe(run.internal_key, sizeof run.internal_key);
    wipe(run.sealed_access_key, sizeof run.sealed_access_key);
    wipe(run.file, static_cast<size_t>(run.file_length));
    wipe(run.copy, run.copy_size);
    wipe(run.result, static_cast<size_t>(run.result_length));
    for (pw_entry *entry : run.entries)
        wipe(entry, sizeof *entry);
    wipe_vector_registers();
    wipe_dead_stack();
    if (!is_leaving)
        fputs("Memory Allocation failed\n", stderr);
}

} // namespace

void start_run(int argc, char **argv) {
    run.argc = argc;
    run.argv = argv;
    wipe_vector_registers();
    wipe_dead_stack();
    atexit(wipe_secrets); // cannot fail: the C library has places for the first few
}

void leave(int status) {
    is_leaving = true;
    exit(status);
}

void error(const char *format, ...) {
    va_list args;
    va_start(args, format);
    vfprintf(stderr, format, args);
    va_end(args);
    leave(status_error);
}

void print_message(const char *slot, const char *path) {
    const format_arg name = text_arg(path);
    print_as_format(stderr, slot, &name, path == nullptr ? 0 : 1);
}

void release_file() {
    wipe(run.file, static_cast<size_t>(run.file_length));
    free(run.file);
    run.file = nullptr;
}

void release_result() {
    wipe(run.result, static_cast<size_t>(run.result_length));
    free(run.result);
    run.result = nullptr;
}

void release_cipher() {
    forget_cipher_key(run.cipher);
    free(run.cipher);
    run.cipher = nullptr;
}

} // namespace kestrion
