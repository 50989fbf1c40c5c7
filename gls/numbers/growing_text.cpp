#include "gls/numbers/growing_text.h"

#include <kestrion/ext_funcs.h>

#include <limits.h>
#include <string.h>

namespace kestrion {

growing_text::~growing_text() {
    if (elements_ != first_)
        _gl_ext_free(elements_);
}

gl_wchar *growing_text::add(int64_t count) {
    const int64_t wanted = length_ + count;
    if (wanted > room_ && !failed_) {
        const int64_t room = wanted * 2;
        void *bigger = nullptr;
        if (room <= INT_MAX)
            bigger = _gl_ext_malloc(static_cast<size_t>(room) * sizeof(gl_wchar));
        failed_ = bigger == nullptr;
        if (!failed_) {
            memcpy(bigger, elements_, static_cast<size_t>(length_) * sizeof(gl_wchar));
            if (elements_ != first_)
                _gl_ext_free(elements_);
            elements_ = static_cast<gl_wchar *>(bigger);
            room_ = static_cast<int32_t>(room);
        }
    }
    if (failed_)
        return nullptr;
    gl_wchar *const place = elements_ + length_;
    length_ = static_cast<int32_t>(wanted);
    return place;
}

void growing_text::add(wide_piece text) {
    gl_wchar *const place = add(text.length);
    for (int32_t i = 0; place != nullptr && i < text.length; ++i)
        place[i] = text.elements[i];
}

void growing_text::add_ascii(const char *text, int32_t length) {
    gl_wchar *const place = add(length);
    for (int32_t i = 0; place != nullptr && i < length; ++i)
        place[i] = static_cast<unsigned char>(text[i]);
}

void growing_text::fill(gl_wchar element, int64_t count) {
    gl_wchar *const place = count > 0 ? add(count) : nullptr;
    for (int64_t i = 0; place != nullptr && i < count; ++i)
        place[i] = element;
}

} // namespace kestrion
