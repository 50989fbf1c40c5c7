// Printing floats with a point, whatever locale the host has set.

#pragma once

#include <locale.h>

namespace kestrion {

// The C library's "C" locale, which takes no memory, is the thread's while this lives.
class c_locale_scope {
public:
    c_locale_scope() : before_(uselocale(newlocale(LC_ALL_MASK, "C", nullptr))) {}
    ~c_locale_scope() { uselocale(before_); }
    c_locale_scope(const c_locale_scope &) = delete;
    c_locale_scope &operator=(const c_locale_scope &) = delete;

private:
    locale_t before_;
};

} // namespace kestrion
