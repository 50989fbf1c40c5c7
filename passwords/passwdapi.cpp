#include <kestrion/passwdapi.h>

#include "base/print_as_format.h"
#include "passwords/lock_hooks.h"
#include "passwords/memory.h"
#include "passwords/message_texts.h"
#include "passwords/password_text.h"
#include <kestrion/env_registry.h>
#include <kestrion/isi_api.h>

#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

using namespace kestrion;

namespace {

// Builds install_dir + name; false when it does not fit.
bool build_path(char (&path)[PW_PATH_SIZE], const char *directory, const char *name) {
    const int length = snprintf(path, sizeof path, "%s%s", directory, name);
    return length >= 0 && static_cast<size_t>(length) < sizeof path;
}

} // namespace

int pw_init(pw_ctx **ctx, pw_alloc_fn alloc_fn, pw_realloc_fn realloc_fn, pw_free_fn free_fn) {
    const char *directory = ggetenv("KESTRIONDIR");
    if (directory == nullptr) {
        kestrion::print_as_format(stderr, s_qvtxdir, nullptr, 0);
        return -1;
    }
    if (access(directory, F_OK) != 0) {
        fprintf(stderr, "The path %s does not exist, errno=%d\n", directory, errno);
        return -1;
    }
    pw_ctx made = {.alloc_fn = alloc_fn,
                   .realloc_fn = realloc_fn,
                   .free_fn = free_fn,
                   .keystore_path = {},
                   .install_dir = {},
                   .counted_lines = kestrion::any_line_count};
    if (!build_path(made.install_dir, directory, "") ||
        !build_path(made.keystore_path, directory, "/etc/keystore"))
        return -1;
    auto *block = alloc_fn(sizeof made, kestrion::pw_source_name, PW_LINE_CONTEXT);
    if (block == nullptr) {
        fputs("Memory Allocation failed\n", stderr);
        return -1;
    }
    *ctx = static_cast<pw_ctx *>(memcpy(block, &made, sizeof made));
    isi_init(); // without a provider the first call that needs it fails and reports why
    pw_create_lock_array(kestrion::lock_array_size);
    return 0;
}

int pw_cleanup(pw_ctx *ctx) {
    if (ctx != nullptr)
        ctx->free_fn(ctx);
    return 0;
}
