#include <kestrion/statement_walk.h>

#include "sql/statement_cursor.h"

#include <kestrion/char_case.h>
#include <kestrion/char_convert.h>
#include <kestrion/gls_env.h>

#include <stdlib.h>

#include <algorithm>

using namespace kestrion;

namespace {

constexpr int32_t compared_limit = 256; // characters that a comparison looks at

statement_cursor cursor_at(const char *position) {
    return {.lc = qvt_get_gl_locale_thread(), .at = position};
}

// The first characters of a text, ended by a zero one unless all of the limit are there.
struct wide_text {
    gl_wchar characters[compared_limit];
    bool valid = true;

    wide_text(locale_rec *lc, const char *text, int32_t count) {
        statement_cursor from = {.lc = lc, .at = text};
        for (int32_t i = 0; i < std::min(count, compared_limit); ++i) {
            characters[i] = 0;
            if (from.over())
                return;
            const int32_t length = gl_full_mbtowc(lc, &characters[i], from.at, from.room());
            if (length < 1) {
                valid = false;
                return;
            }
            from.at += length;
        }
    }
};

int order_of(gl_wchar a, gl_wchar b) { return a < b ? -1 : a > b; }

int compare_bytes(const char *a, const char *b, int32_t count) {
    const int order = strncmp(a, b, static_cast<size_t>(count));
    return (order > 0) - (order < 0);
}

} // namespace

namespace kestrion {

bool statement_cursor::skip_comments() {
    const char *before = at;
    for (skip_white(); is('{') || (is('-') && is_next('-', 1)); skip_white()) {
        const char close = *at == '{' ? '}' : '\n';
        while (!over() && *at != close)
            step();
        if (over()) {
            at = before;
            return false;
        }
        ++at;
    }
    return true;
}

} // namespace kestrion

const char *skipwhite(const char *position) {
    statement_cursor cursor = cursor_at(position);
    cursor.skip_white();
    return cursor.at;
}

const char *skipquote(const char *position) {
    statement_cursor cursor = cursor_at(position);
    if (!cursor.over())
        cursor.skip_to_closing_quote();
    return cursor.at;
}

const char *skipword(const char *position) {
    statement_cursor cursor = cursor_at(position);
    if (cursor.is_quote()) {
        cursor.skip_to_closing_quote();
        cursor.step();
        return cursor.at;
    }
    const bool word = cursor.is('_') || cursor.has_class(CT_ALNUM);
    cursor.step();
    while (word && (cursor.is('_') || cursor.is('$') || cursor.has_class(CT_ALNUM)))
        cursor.step();
    return cursor.at;
}

int32_t skipcomments(const char **position) {
    statement_cursor cursor = cursor_at(*position);
    const bool closed = cursor.skip_comments();
    *position = cursor.at;
    return closed ? 0 : 1;
}

int32_t cbncmpr(const char *pattern, const char *text, int32_t count) {
    locale_rec *lc = qvt_get_gl_locale_thread();
    const wide_text wanted(lc, pattern, count);
    const wide_text given(lc, text, count);
    if (!wanted.valid || !given.valid || count > compared_limit)
        return 1;
    for (int32_t i = 0; i < count; ++i) {
        if (_gl_im_towlower(lc, given.characters[i]) != wanted.characters[i])
            return 1;
        if (wanted.characters[i] == 0)
            return 0;
    }
    return 0;
}

int32_t bycbcmpr(const char *a, const char *b, int32_t count) {
    count = std::max(count, 0);
    locale_rec *lc = qvt_get_gl_locale_thread();
    const wide_text first(lc, a, count);
    const wide_text second(lc, b, count);
    if (!first.valid || !second.valid)
        return compare_bytes(a, b, count);
    for (int32_t i = 0; i < std::min(count, compared_limit); ++i) {
        gl_wchar x = first.characters[i];
        gl_wchar y = second.characters[i];
        if (x != y && x != 0 && y != 0 && _gl_im_iswctype(lc, x, CT_ALPHA) != 0 &&
            _gl_im_iswctype(lc, y, CT_ALPHA) != 0) {
            x = _gl_im_towlower(lc, x);
            y = _gl_im_towlower(lc, y);
        }
        if (x != y || x == 0)
            return order_of(x, y);
    }
    return 0;
}

void rightshift(char *first, char *last, ptrdiff_t distance) {
    if (first == nullptr || last == nullptr || last < first || distance < 1)
        return;
    memmove(first + distance, first, static_cast<size_t>(last - first) + 1);
}
