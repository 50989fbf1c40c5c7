// Blocks of the password API: all come from the context's functions, and what held a key, a
// password or plain text is wiped before it goes back.

#pragma once

#include <kestrion/passwdapi.h>

#include <stddef.h>

namespace kestrion {

// Returns a block from the context's alloc_fn, or null. A size of 0 asks for 1 byte, so that null
// always means failure.
void *ctx_malloc(pw_ctx *ctx, size_t size);

inline constexpr char pw_source_name[] = "passwdapi"; // what every memory function is given

// Growth by the context's realloc_fn. The caller wipes the old content first and reads it again
// afterwards: a block that moves would leave a copy of it.
void *ctx_realloc(pw_ctx *ctx, void *block, size_t size);

// Wipes block[0..size) and gives it back. Null is accepted.
void release_wiped(pw_ctx *ctx, void *block, size_t size);

// A buffer for a key on the stack: 24 bytes, a terminator and room, wiped where its scope ends.
struct key_buffer {
    char bytes[32] = {};

    key_buffer() = default;
    key_buffer(const key_buffer &) = delete;
    key_buffer &operator=(const key_buffer &) = delete;
    ~key_buffer();
};

} // namespace kestrion
