// A wide text that grows, first on the stack. When memory runs out it keeps what it has and is
// marked as failed; what is added afterwards is dropped.

#pragma once

#include "gls/numbers/number_conventions.h"
#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

class growing_text {
public:
    growing_text() = default;
    ~growing_text();
    growing_text(const growing_text &) = delete;
    growing_text &operator=(const growing_text &) = delete;

    // Adds `count` elements for the caller to fill; null when memory ran out.
    gl_wchar *add(int64_t count);
    void add(wide_piece text);
    void add_ascii(const char *text, int32_t length);
    void fill(gl_wchar element, int64_t count); // nothing for a count below 1

    wide_piece piece() const { return {elements_, length_}; }
    bool failed() const { return failed_; }

private:
    static constexpr int32_t on_stack = 256;

    gl_wchar *elements_ = first_;
    int32_t length_ = 0;
    int32_t room_ = on_stack;
    bool failed_ = false;
    gl_wchar first_[on_stack];
};

} // namespace kestrion
