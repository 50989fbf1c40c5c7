// How the engine fails: the error goes into the word of the context, and the result says so.

#pragma once

#include <kestrion/ext_funcs.h>
#include <kestrion/gls_errors.h>

namespace kestrion {

// Stores an error in the word of `ctx`.
inline void set_engine_error(void *ctx, int32_t code) { *_gl_ext_errno(ctx) = code; }

// The two ways to fail. They store the error and give the result of a failed operation: -1 from one
// that returns a number, false from one that asks.
inline int fail(void *ctx, int32_t code) {
    set_engine_error(ctx, code);
    return -1;
}
inline bool refuse(void *ctx, int32_t code) {
    set_engine_error(ctx, code);
    return false;
}

} // namespace kestrion
