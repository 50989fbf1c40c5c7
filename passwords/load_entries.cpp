// The two operations that read the sealed file for other programs. Both do the whole work
// each time and differ in what they do with the opened text.
//
// What a failure gives back to the caller's allocator is settled step by step below and seen by its
// trace: the cipher's record only from the reading of the file on, its provider context never.

#include "passwords/keys.h"
#include "passwords/leftovers.h"
#include "passwords/memory.h"
#include "passwords/password_text.h"
#include "passwords/sealed_file.h"
#include "passwords/whole_files.h"

#include <stdio.h>
#include <string.h>

namespace {

using namespace kestrion;

constexpr int path_room = PW_PATH_SIZE + 16;

// The blocks of one run.
struct opening {
    cipher_ctx *cipher = nullptr;
    char *sealed = nullptr; // the whole file
    int32_t sealed_length = 0;
    char *text = nullptr; // its opened payload
    int32_t text_length = 0;
};

int fail(const char *message) {
    fputs(message, stderr);
    return -1;
}

// A failure that gives nothing back.
int fail_keeping_blocks(opening *run, const char *message) {
    if (run->sealed != nullptr)
        explicit_bzero(run->sealed, static_cast<size_t>(run->sealed_length));
    forget_cipher_key(run->cipher);
    return fail(message);
}

void release_texts(pw_ctx *ctx, opening *run) {
    release_wiped(ctx, run->text, static_cast<size_t>(run->text_length));
    release_wiped(ctx, run->sealed, static_cast<size_t>(run->sealed_length));
    run->text = nullptr;
    run->sealed = nullptr;
}

// A failure that gives back all but the provider's context.
int fail_releasing_blocks(pw_ctx *ctx, opening *run, const char *message) {
    fail(message);
    release_texts(ctx, run);
    forget_cipher_key(run->cipher);
    ctx->free_fn(run->cipher);
    run->cipher = nullptr;
    return -1;
}

int get_cipher(pw_ctx *ctx, opening *run) {
    run->cipher = static_cast<cipher_ctx *>(ctx_malloc(ctx, sizeof(cipher_ctx)));
    if (run->cipher == nullptr)
        return fail("Memory Allocation failed\n");
    memset(run->cipher, 0, sizeof *run->cipher);
    return cipher_init(run->cipher) == 0 ? 0 : fail("crypt_init failed\n");
}

int read_sealed(pw_ctx *ctx, opening *run) {
    char path[path_room];
    snprintf(path, sizeof path, "%s/etc/passwd_file", ctx->install_dir);
    int32_t limit = first_read_limit;
    int32_t size = first_read_buffer;
    run->sealed = static_cast<char *>(ctx_malloc(ctx, static_cast<size_t>(size)));
    if (run->sealed == nullptr)
        return fail_keeping_blocks(run, "Memory Allocation failed\n");
    int result = 0;
    while ((result = read_file(ctx, path, run->sealed, limit, &run->sealed_length)) == -2) {
        explicit_bzero(run->sealed, static_cast<size_t>(run->sealed_length));
        void *grown = nullptr;
        if (next_read_size(&limit, &size))
            grown = ctx_realloc(ctx, run->sealed, static_cast<size_t>(size));
        if (grown == nullptr)
            return fail_keeping_blocks(run, "Memory Re-allocation error\n");
        run->sealed = static_cast<char *>(grown);
    }
    return result == 0 ? 0 : fail_releasing_blocks(ctx, run, "read_file failed\n");
}

int open_sealed(pw_ctx *ctx, opening *run) {
    key_buffer internal_key;
    key_buffer access_key;
    int32_t payload = run->sealed_length;
    if (extract_keys(ctx, run->cipher, run->sealed, &payload, internal_key.bytes,
                     access_key.bytes) != 0)
        return fail_releasing_blocks(ctx, run, "extract_keys failed\n");
    if (pw_decrypt(ctx, run->cipher, run->sealed, payload, internal_key.bytes, access_key.bytes,
                   &run->text, &run->text_length) != 0)
        return fail_releasing_blocks(ctx, run, "pw_decrypt failed\n");
    return 0;
}

int open_passwords(pw_ctx *ctx, opening *run) {
    return get_cipher(ctx, run) == 0 && read_sealed(ctx, run) == 0 ? open_sealed(ctx, run) : -1;
}

int close_passwords(pw_ctx *ctx, opening *run) {
    release_texts(ctx, run);
    return cipher_cleanup(ctx, run->cipher) == 0 ? 0 : fail("crypt_cleanup failed\n");
}

int32_t line_feeds(const char *text) {
    int32_t count = 0;
    for (; (text = strchr(text, '\n')) != nullptr; ++text)
        ++count;
    return count;
}

// The two run below their callers, who wipe the stack that they leave.
[[gnu::noinline]] int count_lines(pw_ctx *ctx, int32_t *count) {
    opening run;
    if (open_passwords(ctx, &run) != 0)
        return -1;
    *count = line_feeds(run.text);
    if (close_passwords(ctx, &run) != 0)
        return -1;
    ctx->counted_lines = *count;
    return 0;
}

[[gnu::noinline]] int load_lines(pw_ctx *ctx, int32_t *count, pw_entry **table) {
    opening run;
    if (open_passwords(ctx, &run) != 0)
        return -1;
    if (parse_lines(ctx, run.text, run.text_length, count, table, ctx->counted_lines) != 0)
        return fail_releasing_blocks(ctx, &run, "parse_file failed\n");
    return close_passwords(ctx, &run);
}

} // namespace

int pwGetLineCount(pw_ctx *ctx, int32_t *count) {
    if (ctx == nullptr || count == nullptr)
        return -1;
    *count = 0;
    const int result = count_lines(ctx, count);
    wipe_leftovers();
    return result;
}

int pwLoadPW(pw_ctx *ctx, int32_t *count, pw_entry **table) {
    if (ctx == nullptr || count == nullptr || table == nullptr)
        return -1;
    *count = 0;
    const int result = load_lines(ctx, count, table);
    wipe_leftovers();
    return result;
}
