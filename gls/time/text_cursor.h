// Walking a terminated text by characters, be it wide or multibyte.

#pragma once

#include "gls/text/char_walk.h"
#include <kestrion/char_convert.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

template <class unit> class text_cursor;

// Takes the ASCII digits from `at`, at most `most`; -1 when there is none.
template <class unit> inline int32_t take_digits(const unit *&at, int32_t most) {
    uint32_t digit = static_cast<uint32_t>(*at) - '0';
    if (digit > 9)
        return -1;
    uint32_t value = 0;
    do {
        value = value * 10 + digit;
        digit = static_cast<uint32_t>(*++at) - '0';
    } while (--most > 0 && digit <= 9);
    return static_cast<int32_t>(value);
}

struct character_found {
    gl_wchar wide;  // 0 at the end, and for what is not a character
    int32_t length; // units; 0 at the end, -1 for what is not a character
};

template <> class text_cursor<gl_wchar> {
public:
    text_cursor(locale_rec *, const gl_wchar *at) : at_(at) {}

    const gl_wchar *at() const { return at_; }
    character_found look() const { return {*at_, *at_ == 0 ? 0 : 1}; }
    gl_wchar character() const { return *at_; }
    bool is_broken() const { return false; }
    void advance() { ++at_; }
    void move_to(const gl_wchar *at) { at_ = at; }
    // A number of 1 to `most` digits, few enough for 32 bits.
    int32_t take_number(int32_t most) { return take_digits(at_, most); }

private:
    const gl_wchar *at_;
};

// What is not a character reads as the end does; `is_broken` distinguishes them. ASCII, which most
// formats and numbers are, is not decoded.
template <> class text_cursor<char> {
public:
    text_cursor(locale_rec *lc, const char *at)
        : lc_(lc), at_(at), has_ascii_(ctype_of(lc).ascii_bytes != 0) {}

    const char *at() const { return at_; }
    character_found look() const {
        return is_ascii() ? character_found{byte(), byte() == 0 ? 0 : 1} : decode(lc_, at_);
    }
    gl_wchar character() const { return look().wide; }
    bool is_broken() const { return look().length < 0; }
    void move_to(const char *at) { at_ = at; }
    void advance() { at_ += look().length; }
    int32_t take_number(int32_t most) {
        return has_ascii_ ? take_digits(at_, most) : take_wide_digits(most);
    }

private:
    unsigned char byte() const { return static_cast<unsigned char>(*at_); }
    bool is_ascii() const { return has_ascii_ && byte() < 0x80; } // the terminator, too
    // Not a member, so that a cursor can stay in registers.
    [[gnu::noinline]] static character_found decode(locale_rec *lc, const char *at) {
        if (*at == 0 && gl_ismbsterm(lc, at) != 0)
            return {0, 0};
        const ctype_rec &ct = ctype_of(lc);
        const decoded_char c = decode_text(ct, ct.class_walk, at);
        return is_char(c) ? character_found{c.wide, c.length} : character_found{0, -1};
    }

    int32_t take_wide_digits(int32_t most) {
        int32_t value = -1;
        for (gl_wchar digit; most > 0 && (digit = character() - '0') <= 9; --most) {
            value = (value < 0 ? 0 : value * 10) + static_cast<int32_t>(digit);
            advance();
        }
        return value;
    }

    locale_rec *lc_;
    const char *at_;
    bool has_ascii_;
};

} // namespace kestrion
