// How the engine fails: the error goes into the word of the context, and the result says so.

#pragma once

#include <kestrion/ext_funcs.h>
#include <kestrion/gls_errors.h>

namespace kestrion {

// Stores an error in the word of `ctx`.
inline void set_engine_error(void *ctx, int32_t code) { *_gl_ext_errno(ctx) = code; }

// The same out of line, so that the ways that succeed carry nothing for those that fail.
[[gnu::cold, gnu::noinline]] inline void store_failure(void *ctx, int32_t code) {
    set_engine_error(ctx, code);
}

// The ways to fail. They store the error and give the result of a failed operation: -1 from one
// that returns a number, false from one that asks, null from one that finds or makes something.
inline int fail(void *ctx, int32_t code) {
    store_failure(ctx, code);
    return -1;
}
inline bool refuse(void *ctx, int32_t code) {
    store_failure(ctx, code);
    return false;
}
inline decltype(nullptr) fail_with_null(void *ctx, int32_t code) {
    store_failure(ctx, code);
    return nullptr;
}

} // namespace kestrion
