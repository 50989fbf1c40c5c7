#include "tool/command_run.h"

#include "base/print_as_format.h"
#include "passwords/leftovers.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

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

bool is_leaving = false;

// Runs at every exit, so also at the one that the registry of variables takes when it cannot even
// hold its defaults. That is the only one which is not ours, and it prints nothing.
void wipe_secrets() {
    wipe(key_input, sizeof key_input);
    wipe(run.internal_key, sizeof run.internal_key);
    wipe(run.sealed_access_key, sizeof run.sealed_access_key);
    wipe(run.file, static_cast<size_t>(run.file_length));
    wipe(run.copy, run.copy_size);
    wipe(run.result, static_cast<size_t>(run.result_length));
    for (pw_entry *entry : run.entries)
        wipe(entry, sizeof *entry);
    wipe_leftovers();
    if (!is_leaving)
        fputs("Memory Allocation failed\n", stderr);
}

} // namespace

void start_run(int argc, char **argv) {
    run.argc = argc;
    run.argv = argv;
    wipe_leftovers();
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
