#include "passwords/memory.h"

#include <string.h>

namespace kestrion {

void *ctx_malloc(pw_ctx *ctx, size_t size) {
    return ctx->alloc_fn(size == 0 ? 1 : size, pw_source_name, PW_LINE_ALLOC);
}

void *ctx_realloc(pw_ctx *ctx, void *block, size_t size) {
    return ctx->realloc_fn(block, size, pw_source_name, PW_LINE_GROW);
}

void release_wiped(pw_ctx *ctx, void *block, size_t size) {
    if (block == nullptr)
        return;
    explicit_bzero(block, size);
    ctx->free_fn(block);
}

key_buffer::~key_buffer() { explicit_bzero(bytes, sizeof bytes); }

} // namespace kestrion
