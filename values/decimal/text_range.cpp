#include "values/decimal/text_range.h"

#include <kestrion/char_length.h>

#include <algorithm>

using namespace kestrion;

namespace {

constexpr int32_t integer_limit = 1000000;

// Characters of a sign text, and bytes of the character at `text`, in the current locale.
size_t characters_of(const char *sign) {
    const size_t bytes = strlen(sign);
    if (bytes < 2)
        return bytes;
    const int32_t count =
        _qvt_gl_im_mbfslen(qvt_get_gl_locale_thread(), sign, static_cast<int32_t>(bytes));
    return count > 0 ? static_cast<size_t>(count) : bytes;
}

ptrdiff_t first_character(const text_range &text) {
    const auto limit = static_cast<int32_t>(std::min<ptrdiff_t>(text.end - text.at, 8));
    return std::max(gl_full_mblen(qvt_get_gl_locale_thread(), text.at, limit), 1);
}

} // namespace

int32_t text_range::take_integer() {
    const bool negative = at_char('-');
    if (negative || at_char('+'))
        ++at;
    int32_t value = 0;
    for (; at_digit(); ++at)
        value = std::min(value * 10 + (*at - '0'), integer_limit);
    return negative ? -value : value;
}

// A sign is compared over as many bytes as it has characters, and then one character is passed: the
// first byte is enough to know a minus of three. Texts were always read so.
bool text_range::passes_sign_text(const char *sign) {
    if (!at_text(sign, characters_of(sign)))
        return false;
    at += sign[1] == '\0' ? 1 : first_character(*this);
    return true;
}

bool text_range::take_sign(const lconv_rec *conventions) {
    if (takes_sign_text(conventions->negative_sign))
        return true;
    if (takes_sign_text(conventions->positive_sign))
        return false;
    const bool plus = conventions->positive_sign[0] == '\0' && at_char('+');
    const bool minus = !plus && at_char('-');
    if (plus || minus)
        ++at;
    return minus;
}
