// pwsealtool: seals a plain password text into $KESTRIONDIR/etc/passwd_file, and unseals that file
// for an administrator who gives the access key that was sealed in it.
//
// It prints to standard error alone, and on success nothing. Until the messages are loaded it
// prints fixed English texts.

#include "base/installation.h"
#include "passwords/keys.h"
#include "passwords/message_texts.h"
#include "passwords/password_text.h"
#include "passwords/sealed_file.h"
#include "passwords/whole_files.h"
#include "tool/command_options.h"
#include "tool/command_run.h"
#include <kestrion/message_slots.h>

#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace kestrion;

void *memAlloc(size_t size, const char *, int) { return malloc(size); }
void *memRealloc(void *block, size_t size, const char *, int) { return realloc(block, size); }

// A crash must not leave keys in a core file. The limit is not asked where core files go to a
// program.
void forbid_core_files() {
    constexpr rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
    prctl(PR_SET_DUMPABLE, 0);
}

// A write that these would end is to fail instead, with its message and its status.
void ignore_signals_of_writes() {
    signal(SIGXFSZ, SIG_IGN);
    signal(SIGPIPE, SIG_IGN);
}

int32_t pw_init_messages() {
    const int32_t failed = rldinit();
    return failed == 0 ? rldmgar(rdpwmsg) : failed;
}

// Before the options: a run without arguments, too, says first what its surroundings lack.
void check_surroundings() {
    qvtxdir = directory_from_environment();
    if (qvtxdir == nullptr)
        error("KESTRIONDIR env variable is not set\n");
    if (access(qvtxdir, F_OK) != 0)
        error("The path %s does not exist, errno=%d\n", qvtxdir, errno);
    if (pw_init_messages() != 0)
        error("Failed to load messages\n");
}

// Prints a message with the input's name or none and leaves with status 1.
[[noreturn]] void error_message(const char *slot, const char *path) {
    print_message(slot, path);
    leave(status_error);
}

void make_contexts() {
    // Looks at KESTRIONDIR again, through the registry: this value may differ from `qvtxdir`, and
    // the command asks of it only that the directory exists.
    if (pw_init(&run.ctx, memAlloc, memRealloc, free) == -1)
        error("Failed to initialize CRX context\n");
    run.cipher = static_cast<cipher_ctx *>(calloc(1, sizeof(cipher_ctx)));
    if (run.cipher == nullptr)
        error("Memory Allocation failed\n");
    if (cipher_init(run.cipher) == -1) {
        release_cipher();
        error_message(s_crxctxinit, nullptr);
    }
}

// The file is read again into a larger buffer, so that nothing of the old one has to be copied.
void grow_file(int32_t *limit, int32_t *size) {
    explicit_bzero(run.file, static_cast<size_t>(run.file_length));
    void *grown = nullptr;
    if (next_read_size(limit, size))
        grown = realloc(run.file, static_cast<size_t>(*size));
    if (grown == nullptr)
        error("Memory Re-allocation error\n");
    run.file = static_cast<char *>(grown);
}

void read_input() {
    int32_t limit = first_read_limit;
    int32_t size = first_read_buffer;
    run.file = static_cast<char *>(malloc(static_cast<size_t>(size)));
    if (run.file == nullptr)
        error("Memory Allocation failed\n");
    int result = 0;
    while ((result = read_file(run.ctx, inputfile_path, run.file, limit, &run.file_length)) == -2)
        grow_file(&limit, &size);
    if (result != 0) {
        release_cipher();
        error_message(s_errread, inputfile_path);
    }
}

// Proves the text well-formed. What is sealed is the untouched buffer, with what follows the last
// line feed.
void check_text() {
    run.copy_size = static_cast<size_t>(run.file_length) + 1;
    run.copy = static_cast<char *>(malloc(run.copy_size));
    bool good = false;
    if (run.copy == nullptr) {
        fputs("Memory allocation failed \n", stderr);
    } else {
        memcpy(run.copy, run.file, run.copy_size);
        int32_t count = 0;
        good = parse_lines(run.ctx, run.copy, run.file_length, &count, run.entries,
                           checked_lines) == 0;
        if (!good)
            print_message(s_err_format, inputfile_path);
    }
    if (good)
        return;
    release_file();
    release_cipher();
    leave(status_failure);
}

void seal() {
    check_text();
    if (generate_internal_key(run.ctx, key_input, run.internal_key) == -1) {
        print_message(s_errkeygen, nullptr);
        release_cipher();
        leave(status_failure);
    }
    if (pw_encrypt(run.ctx, run.cipher, run.file, run.file_length, run.internal_key, key_input,
                   &run.result, &run.result_length) == -1) {
        print_message(s_errencr, nullptr);
        release_result();
        release_cipher();
        leave(status_failure);
    }
}

void unseal() {
    int32_t payload = run.file_length;
    if (extract_keys(run.ctx, run.cipher, run.file, &payload, run.internal_key,
                     run.sealed_access_key) == -1) {
        if (!provider_gave_reason())
            fputs("Memory Allocation failed\n", stderr);
        release_cipher();
        leave(status_failure);
    }
    if (compare_keys(key_input, run.sealed_access_key) != 0) {
        release_cipher();
        error_message(s_keycmpfail, nullptr);
    }
    if (pw_decrypt(run.ctx, run.cipher, run.file, payload, run.internal_key, key_input, &run.result,
                   &run.result_length) == -1) {
        release_cipher();
        error_message(s_errdecr, nullptr);
    }
}

void write_output() {
    if (write_file(outputfile_path, run.result, run.result_length) == -1) {
        print_message(s_errwrite, outputfile_path);
        release_result();
        release_cipher();
        leave(status_failure);
    }
    release_result();
    cipher_ctx *cipher = run.cipher;
    run.cipher = nullptr;
    if (cipher_cleanup(run.ctx, cipher) == -1) {
        print_message(s_ctxcleanup, nullptr);
        leave(status_failure);
    }
}

} // namespace

int main(int argc, char **argv) {
    take_keys(argc, argv);
    forbid_core_files();
    ignore_signals_of_writes();
    start_run(argc, argv);
    check_surroundings();
    if (argc <= 1)
        usage();
    read_options();
    make_contexts();
    read_input();
    if (op_mode == OP_ENCRYPT)
        seal();
    else
        unseal();
    write_output();
    leave(pw_cleanup(run.ctx) == 0 ? status_ok : status_failure);
}
