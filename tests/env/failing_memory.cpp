#include "failing_memory.h"

#include <cerrno>
#include <cstddef>
#include <vector>

namespace {

int until_failure = 0; // 0: none ordered
bool failed = false;
long held = 0;

bool fails_now() {
    if (until_failure == 0 || --until_failure > 0)
        return false;
    failed = true;
    errno = ENOMEM;
    return true;
}

} // namespace

void fail_allocation(int nth) {
    until_failure = nth;
    failed = false;
}
bool allocation_failed() { return failed; }
long blocks_held() { return held; }

extern "C" {
void *__real_malloc(size_t size);
void *__real_calloc(size_t count, size_t size);
void *__real_realloc(void *block, size_t size);
void __real_free(void *block);
int __real_putenv(char *text);

void *__wrap_malloc(size_t size) {
    if (fails_now())
        return nullptr;
    ++held;
    return __real_malloc(size);
}

void *__wrap_calloc(size_t count, size_t size) {
    if (fails_now())
        return nullptr;
    ++held;
    return __real_calloc(count, size);
}

void *__wrap_realloc(void *block, size_t size) {
    if (fails_now())
        return nullptr;
    held += block == nullptr ? 1 : 0;
    return __real_realloc(block, size);
}

void __wrap_free(void *block) {
    held -= block == nullptr ? 0 : 1;
    __real_free(block);
}

int __wrap_putenv(char *text) {
    if (fails_now())
        return -1;
    // Kept in sight of the leak checker, which takes a replaced text for lost: it is, on purpose.
    static auto *given_away = new std::vector<char *>;
    given_away->push_back(text);
    --held;
    return __real_putenv(text);
}
}
