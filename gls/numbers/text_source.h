// Text to be scanned, wide or multibyte, character by character. A source is a small value: a copy
// of it is a place to come back to.

#pragma once

#include "gls/text/char_walk.h"
#include <kestrion/locale_rec.h>

#include <limits.h>
#include <stdint.h>

namespace kestrion {

// What stands for bytes that are no character; no text of a locale has it.
inline constexpr gl_wchar no_character = 0xffffffff;

class wide_source {
public:
    using pointer = const gl_wchar *;

    wide_source(locale_rec *lc, pointer text) : lc_(lc), at_(text) {}

    // The character here; 0 at the end.
    gl_wchar peek() { return left_ > 0 ? *at_ : 0; }
    // To the next one; there must be one here, and it must have been looked at.
    void next() {
        ++at_;
        left_ -= left_ != INT_MAX;
    }
    // The elements from here on when ASCII among them can be read as it stands; else null.
    pointer plain() const { return left_ == INT_MAX ? at_ : nullptr; }
    // Passes over elements of plain().
    void skip(int64_t elements) { at_ += elements; }
    pointer at() const { return at_; }
    locale_rec *locale() const { return lc_; }
    // Ends the text after so many characters more.
    void limit(int32_t characters) { left_ = characters < left_ ? characters : left_; }
    int32_t left() const { return left_; }

private:
    locale_rec *lc_;
    pointer at_;
    int32_t left_ = INT_MAX; // characters; INT_MAX for no limit
};

class multibyte_source {
public:
    using pointer = const char *;

    multibyte_source(locale_rec *lc, pointer text)
        : lc_(lc), category_(&ctype_of(lc)), at_(text), ascii_(category_->ascii_bytes != 0) {}

    gl_wchar peek() {
        if (left_ <= 0)
            return 0;
        const auto byte = static_cast<unsigned char>(*at_);
        if (byte >= 0x80 || !ascii_)
            return decoded();
        length_ = 1;
        return byte;
    }
    void next() {
        at_ += length_;
        left_ -= left_ != INT_MAX;
    }
    const unsigned char *plain() const {
        return ascii_ && left_ == INT_MAX ? reinterpret_cast<const unsigned char *>(at_) : nullptr;
    }
    void skip(int64_t elements) { at_ += elements; }
    pointer at() const { return at_; }
    locale_rec *locale() const { return lc_; }
    void limit(int32_t characters) { left_ = characters < left_ ? characters : left_; }
    int32_t left() const { return left_; }

private:
    gl_wchar decoded() {
        const decoded_char c = decode_text(*category_, category_->class_walk, at_);
        length_ = c.length;
        return is_char(c) ? c.wide : no_character;
    }

    locale_rec *lc_;
    const ctype_rec *category_;
    pointer at_;
    bool ascii_;         // the bytes 01-7F are characters, and a text ends with one zero byte
    int32_t length_ = 1; // bytes of the character that was looked at
    int32_t left_ = INT_MAX;
};

// Consumes a terminated wide text if the source goes on with it. An empty one is never found.
template <class source>
[[gnu::always_inline]] inline bool takes(source &text, const gl_wchar *wanted) {
    if (*wanted == 0 || text.peek() != *wanted)
        return false;
    if (wanted[1] == 0) {
        text.next();
        return true;
    }
    source ahead = text;
    for (; *wanted != 0; ++wanted, ahead.next())
        if (ahead.peek() != *wanted)
            return false;
    text = ahead;
    return true;
}

} // namespace kestrion
