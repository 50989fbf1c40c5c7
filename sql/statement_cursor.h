// A place in statement text and where the text ends, which is at its terminator or before a given
// place. Characters are those of a locale, null for single-byte ASCII.

#pragma once

#include <kestrion/char_class.h>
#include <kestrion/char_length.h>
#include <kestrion/ctype_masks.h>

#include <stddef.h>
#include <string.h>

namespace kestrion {

struct statement_cursor {
    locale_rec *lc;
    const char *at;
    const char *end = nullptr; // null: the terminator alone ends the text

    bool over() const { return at == end || *at == '\0'; }

    // Bytes that a character may have here.
    int32_t room() const {
        const size_t most = end != nullptr && end - at < gl_char_bytes
                                ? static_cast<size_t>(end - at)
                                : size_t{gl_char_bytes};
        return static_cast<int32_t>(strnlen(at, most));
    }
    bool is(char character) const { return !over() && *at == character; }
    bool is_quote() const { return is('\'') || is('"'); }
    // Looks `distance` bytes on; false beyond the end.
    bool is_next(char character, ptrdiff_t distance) const {
        return static_cast<size_t>(distance) < left(static_cast<size_t>(distance) + 1) &&
               at[distance] == character;
    }
    size_t left(size_t limit) const {
        const size_t most = end != nullptr && static_cast<size_t>(end - at) < limit
                                ? static_cast<size_t>(end - at)
                                : limit;
        return strnlen(at, most);
    }
    bool has_class(uint32_t mask) const {
        return !over() && _qvt_gl_im_ismctype(lc, at, room(), mask) != 0;
    }
    // One character on; an invalid one is a byte.
    void step() {
        if (over())
            return;
        const int32_t length = gl_full_mblen(lc, at, room());
        at += length > 0 ? length : 1;
    }
    void skip_white() {
        while (has_class(CT_SPACE))
            step();
    }
    // From a quote to its closing one, or to the end.
    void skip_to_closing_quote() {
        const char quote = *at;
        do
            step();
        while (!over() && *at != quote);
    }
    // Past white space and comments; false, at the place of before, for a comment that is not closed.
    bool skip_comments();
};

} // namespace kestrion
