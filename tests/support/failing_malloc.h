// Allocation failures on demand. A test program that links `failing_malloc` has every malloc,
// calloc, realloc and free of its own objects and of the runtime's archive counted and, where a
// test asks for it, refused. Shared libraries are not touched.
//
//     for (size_t k = 1;; ++k) {
//         failing_malloc::scope refused(k); // the k-th allocation from here on fails
//         ... run; check the failure's result ...
//         if (!refused.happened())
//             break;
//     }

#pragma once

#include <stddef.h>

namespace failing_malloc {

class scope {
public:
    explicit scope(size_t k); // k counts from 1; 0 refuses none and only counts
    ~scope();
    scope(const scope &) = delete;
    scope &operator=(const scope &) = delete;

    bool happened() const; // the k-th allocation came, and was refused
    size_t calls() const;  // allocations asked for
    long live() const;     // blocks given less blocks released
};

} // namespace failing_malloc
