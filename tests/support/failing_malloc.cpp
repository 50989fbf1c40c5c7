#include "support/failing_malloc.h"

namespace {

bool counting = false;
size_t refused_call = 0;
size_t call_count = 0;
long live_count = 0;

bool refuses() { return counting && ++call_count == refused_call; }

void *given(void *block) {
    if (counting && block != nullptr)
        ++live_count;
    return block;
}

} // namespace

extern "C" {

void *__real_malloc(size_t size);
void *__real_calloc(size_t count, size_t size);
void *__real_realloc(void *block, size_t size);
void __real_free(void *block);

// Absurd sizes are refused under the sanitizers too, instead of ending the program.
const char *__asan_default_options(void);
const char *__asan_default_options(void) { return "allocator_may_return_null=1"; }

void *__wrap_malloc(size_t size) { return refuses() ? nullptr : given(__real_malloc(size)); }

void *__wrap_calloc(size_t count, size_t size) {
    return refuses() ? nullptr : given(__real_calloc(count, size));
}

void *__wrap_realloc(void *block, size_t size) {
    if (refuses())
        return nullptr;
    void *moved = __real_realloc(block, size);
    return block == nullptr ? given(moved) : moved;
}

void __wrap_free(void *block) {
    if (counting && block != nullptr)
        --live_count;
    __real_free(block);
}
}

namespace failing_malloc {

scope::scope(size_t k) {
    refused_call = k;
    call_count = 0;
    live_count = 0;
    counting = true;
}

scope::~scope() { counting = false; }

bool scope::happened() const { return refused_call != 0 && call_count >= refused_call; }
size_t scope::calls() const { return call_count; }
long scope::live() const { return live_count; }

} // namespace failing_malloc
