#include "gls/numbers/growing_text.h"

#include <kestrion/ext_funcs.h>

#include <limits.h>
#include <string.h>

namespace kestrion {

growing_text::~growing_text() {
    if (elements_ != first_)
        _gl_ext_free(elements_);
}

void growing_text::fill_front(gl_wchar element, int64_t count) {
    const int32_t length = length_;
    if (count <= 0 || add(count) == nullptr)
        return;
    memmove(elements_ + count, elements_, static_cast<size_t>(length) * sizeof *elements_);
    for (int64_t i = 0; i < count; ++i)
        elements_[i] = element;
}

bool growing_text::grow(int64_t count) {
    const int64_t room = (length_ + count) * 2;
    void *bigger = nullptr;
    if (!failed_ && room <= INT_MAX)
        bigger = _gl_ext_malloc(static_cast<size_t>(room) * sizeof(gl_wchar));
    failed_ = bigger == nullptr;
    if (failed_)
        return false;
    memcpy(bigger, elements_, static_cast<size_t>(length_) * sizeof(gl_wchar));
    if (elements_ != first_)
        _gl_ext_free(elements_);
    elements_ = static_cast<gl_wchar *>(bigger);
    room_ = static_cast<int32_t>(room);
    return true;
}

} // namespace kestrion
