// A text being read, within its bounds: blanks, signs and small integers.

#pragma once

#include <kestrion/gls_env.h>

#include "base/ascii_class.h"

#include <string.h>

namespace kestrion {

// Signs, radix and separator mostly have one byte or none.
inline size_t length_of(const char *text) {
    return text[0] == '\0' ? 0 : text[1] == '\0' ? 1 : strlen(text);
}

struct text_range {
    const char *at, *end;

    // A text of `length` bytes, which also ends at a zero byte; below 0 it is empty.
    static text_range of(const char *text, int length) {
        return {text, text + (length > 0 ? strnlen(text, static_cast<size_t>(length)) : 0)};
    }

    bool empty() const { return at == end; }
    bool at_char(char c) const { return at != end && *at == c; }
    bool at_digit() const { return at != end && is_ascii_digit(static_cast<unsigned char>(*at)); }
    // Of no text it is never at the start or at the end.
    bool at_text(const char *text, size_t length) const {
        return length != 0 && static_cast<size_t>(end - at) >= length && *at == *text &&
               (length == 1 || memcmp(at, text, length) == 0);
    }
    bool ends_with(const char *text, size_t length) const {
        return length != 0 && static_cast<size_t>(end - at) >= length &&
               memcmp(end - length, text, length) == 0;
    }
    // Blanks and then a line end, after which nothing counts, or the end.
    bool ends() const {
        text_range rest = *this;
        rest.skip_blanks();
        return rest.empty() || *rest.at == '\n';
    }

    void skip_blanks() {
        while (at_char(' '))
            ++at;
    }
    void cut_blanks() {
        while (at != end && end[-1] == ' ')
            --end;
    }

    // "+" or "-" and digits; values beyond +-1000000 are held there, no digits are 0.
    int32_t take_integer();

    // A sign by the conventions: their negative sign, their positive sign, "+" if they have none,
    // or "-". Returns whether the number is negative.
    bool take_sign(const lconv_rec *conventions);

private:
    bool takes_sign_text(const char *sign) {
        return at != end && *at == *sign && passes_sign_text(sign);
    }
    bool passes_sign_text(const char *sign);
};

} // namespace kestrion
