// Blocks that the runtime is known to leave allocated. What is allocated while one of these lives
// is not a leak to the leak checker; without one it does nothing.

#pragma once

extern "C" {
__attribute__((weak)) void __lsan_disable(void);
__attribute__((weak)) void __lsan_enable(void);
}

class stated_leaks {
public:
    stated_leaks() {
        if (__lsan_disable != nullptr)
            __lsan_disable();
    }
    ~stated_leaks() {
        if (__lsan_enable != nullptr)
            __lsan_enable();
    }
    stated_leaks(const stated_leaks &) = delete;
    stated_leaks &operator=(const stated_leaks &) = delete;
};
