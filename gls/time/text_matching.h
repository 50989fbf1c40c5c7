// Reading names and digits from a text.

#pragma once

#include "gls/time/number_shape.h"
#include "gls/time/text_cursor.h"
#include <kestrion/locale_rec.h>

#include <algorithm>
#include <stdint.h>

namespace kestrion {

bool is_space_beyond_ascii(const locale_rec *lc, gl_wchar c);

template <class unit> constexpr bool is_ascii_space(unit c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

inline bool is_space(const locale_rec *lc, gl_wchar c) {
    return c < 0x80 ? is_ascii_space(c) : is_space_beyond_ascii(lc, c);
}

// Whether two characters are the same but for their case.
bool is_same_letter(locale_rec *lc, gl_wchar a, gl_wchar b);

// Returns how many it has passed.
template <class unit> inline int32_t skip_spaces(const locale_rec *lc, text_cursor<unit> &at) {
    int32_t count = 0;
    for (; is_space(lc, at.character()); at.advance())
        ++count;
    return count;
}

// Takes a character that is equal unit by unit; no further than the first difference, which a
// terminator is.
template <class unit>
bool take_units(text_cursor<unit> &at, const unit *character, const unit *end) {
    const unit *text = at.at();
    for (; character != end; ++character, ++text)
        if (*text != *character)
            return false;
    at.move_to(text);
    return true;
}

template <class unit> bool take_character(text_cursor<unit> &at, gl_wchar c) {
    if (at.character() != c)
        return false;
    at.advance();
    return true;
}

// Takes a text without regard to case. A cursor that fails has moved.
template <class unit>
bool take_text(locale_rec *lc, text_cursor<unit> &at, const gl_wchar *text, int32_t &length) {
    for (length = 0; text != nullptr && text[length] != 0; ++length) {
        if (!is_same_letter(lc, at.character(), text[length]))
            return false;
        at.advance();
    }
    return text != nullptr;
}

// The longest of some texts; the first of two that are as long. Empty ones match everywhere. Blanks
// that a text begins with may have gone to white space of the format before it.
template <class unit> struct longest_match {
    text_cursor<unit> start;
    text_cursor<unit> end = start;
    gl_wchar first = start.character();
    int32_t chosen = -1;
    int32_t length = -1;

    void offer(locale_rec *lc, const gl_wchar *text, int32_t choice) {
        while (text != nullptr && is_space(lc, *text) && !is_space(lc, first))
            ++text;
        if (text != nullptr && *text != 0 && !is_same_letter(lc, first, *text))
            return; // most of them
        text_cursor<unit> at = start;
        int32_t found;
        if (take_text(lc, at, text, found) && found > length) {
            end = at;
            chosen = choice;
            length = found;
        }
    }
};

// ---- Numbers

inline constexpr int64_t large_number = 1000000000000; // what goes beyond counts as this

struct scanned_digits {
    int64_t value = 0;
    int32_t count = 0;

    void add(int64_t digit) {
        value = std::min(value * 10 + digit, large_number);
        ++count;
    }
};

// Takes the digit of the cursor and moves on.
template <class unit> bool take_ordinary_digit(text_cursor<unit> &at, scanned_digits &digits) {
    const gl_wchar digit = at.character() - '0';
    if (digit > 9)
        return false;
    digits.add(digit);
    at.advance();
    return true;
}

// Takes a text where a digit follows it.
template <class unit>
void take_separator(locale_rec *lc, text_cursor<unit> &at, const gl_wchar *separator) {
    text_cursor<unit> ahead = at;
    int32_t length;
    if (take_text(lc, ahead, separator, length) && ahead.character() >= '0' &&
        ahead.character() <= '9')
        at = ahead;
}

// Takes a number of at most `most` digits, or as many as its modifiers may have made of it, with
// what pads it. `take_digit` takes one digit. Returns false when there is none.
template <class unit, class take>
bool take_number(locale_rec *lc, text_cursor<unit> &at, int32_t most, const number_shape &shape,
                 take take_digit, scanned_digits &out) {
    const int32_t blanks = skip_spaces(lc, at);
    const numeric_rec *signs = lc == nullptr ? nullptr : &lc->numeric_cat;
    int32_t length;
    text_cursor<unit> ahead = at;
    if ((shape.flags & gl_flag_plus) != 0 &&
        (take_character(ahead, '+') ||
         (signs != nullptr && take_text(lc, ahead = at, signs->wide_positive_sign, length))))
        at = ahead;
    const int32_t limit = std::max({most, shape.precision, shape.width - blanks});
    while (out.count < limit && take_digit(at, out))
        if (out.count < limit && (shape.flags & gl_flag_group) != 0 && signs != nullptr)
            take_separator(lc, at, signs->wide_thousands_sep);
    if ((shape.flags & gl_flag_left) != 0)
        skip_spaces(lc, at);
    return out.count != 0;
}

} // namespace kestrion
