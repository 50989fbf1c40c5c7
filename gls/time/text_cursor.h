// Walking a terminated text by characters, be it wide or multibyte.

#pragma once

#include "gls/text/char_walk.h"
#include <kestrion/char_convert.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

template <class unit> class text_cursor;

template <> class text_cursor<gl_wchar> {
public:
    text_cursor(locale_rec *, const gl_wchar *at) : at_(at) {}

    const gl_wchar *at() const { return at_; }
    gl_wchar character() const { return *at_; } // 0 at the end
    bool is_broken() const { return false; }
    void advance() { ++at_; }

private:
    const gl_wchar *at_;
};

// The walk ends at what is not a character as it does at the end; `is_broken` tells the two apart.
template <> class text_cursor<char> {
public:
    text_cursor(locale_rec *lc, const char *at) : lc_(lc), ct_(&ctype_of(lc)), at_(at) { look(); }

    const char *at() const { return at_; }
    gl_wchar character() const { return character_; }
    bool is_broken() const { return length_ < 0; }
    void advance() {
        at_ += length_;
        look();
    }

private:
    void look() {
        const auto byte = static_cast<unsigned char>(*at_);
        if (is_ascii_above_zero(byte) && ct_->ascii_bytes != 0) {
            character_ = byte;
            length_ = 1;
        } else {
            decode();
        }
    }
    void decode() {
        character_ = 0;
        length_ = 0;
        if (gl_ismbsterm(lc_, at_) != 0)
            return;
        const decoded_char found = decode_text(*ct_, ct_->class_walk, at_);
        if (is_char(found))
            character_ = found.wide;
        length_ = is_char(found) ? found.length : -1;
    }

    locale_rec *lc_;
    const ctype_rec *ct_;
    const char *at_;
    gl_wchar character_ = 0;
    int32_t length_ = 0;
};

} // namespace kestrion
