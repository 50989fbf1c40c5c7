// A wide text that grows, first on the stack. When memory runs out it is marked as failed, and what
// it holds is of no use.

#pragma once

#include "gls/numbers/grouping.h"
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
    gl_wchar *add(int64_t count) {
        if (count > room_ - length_ && !grow(count))
            return nullptr;
        gl_wchar *const place = elements_ + length_;
        length_ += static_cast<int32_t>(count);
        return place;
    }
    void add(wide_piece text) {
        gl_wchar *const place = add(text.length);
        for (int32_t i = 0; place != nullptr && i < text.length; ++i)
            place[i] = text.elements[i];
    }
    void add(ascii_piece text) {
        gl_wchar *const place = add(text.length);
        for (int32_t i = 0; place != nullptr && i < text.length; ++i)
            place[i] = static_cast<unsigned char>(text.text[i]);
    }
    // Nothing for a count below 1.
    void fill(gl_wchar element, int64_t count) {
        gl_wchar *const place = count > 0 ? add(count) : nullptr;
        for (int64_t i = 0; place != nullptr && i < count; ++i)
            place[i] = element;
    }

    // The same before all that is there.
    void fill_front(gl_wchar element, int64_t count);

    wide_piece piece() const { return {elements_, length_}; }
    bool failed() const { return failed_; }

private:
    static constexpr int32_t on_stack = 256;

    // Makes room for `count` elements more.
    bool grow(int64_t count);

    gl_wchar *elements_ = first_;
    int32_t length_ = 0;
    int32_t room_ = on_stack;
    bool failed_ = false;
    gl_wchar first_[on_stack];
};

} // namespace kestrion
