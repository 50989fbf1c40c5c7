// Where a time is written, be it wide or multibyte text.

#pragma once

#include "gls/text/char_walk.h"
#include "gls/time/format_walk.h"
#include <kestrion/char_convert.h>
#include <kestrion/gls_errors.h>
#include <kestrion/locale_rec.h>

#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace kestrion {

// Numbers of two digits, which most are: a pair goes to the text in one piece.
struct pairs_of_digits {
    char text[200];
};

constexpr pairs_of_digits make_digit_pairs() {
    pairs_of_digits made = {};
    for (int i = 0; i < 100; ++i) {
        made.text[2 * i] = static_cast<char>('0' + i / 10);
        made.text[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return made;
}

inline constexpr pairs_of_digits digit_pairs = make_digit_pairs();

// The room from `at_` on, without the terminator.
template <class unit> class destination_range {
public:
    bool has_room_for_terminator() const { return end_ != nullptr; }

    // Writes plain numbers and text as the walk does, at twice its speed: all stays in registers.
    // Returns where it stopped, which is before anything else.
    const unit *write_plain_part(const ctype_rec &ct, const unit *format, const gl_tm &time,
                                 bool gregorian) {
        unit *at = at_;
        while (end_ - at >= 4) {
            if (is_plain_text(*format) || *format == ' ') {
                *at++ = *format++;
                continue;
            }
            const time_number *number = plain_number(format);
            if (number == nullptr) {
                const int32_t length = plain_length(ct, format);
                if (length == 0)
                    break;
                for (int32_t i = 0; i < length; ++i)
                    *at++ = *format++;
                continue;
            }
            if (range_error(*number, time, gregorian) != GLS_OK)
                break;
            const int32_t value = number_of_field(*number, time.*number->field);
            if (value < 100 && number->precision == 2) {
                put_pair(at, value);
            } else if (value >= 1000 && value < 10000) {
                put_pair(at, value / 100);
                put_pair(at, value % 100);
            } else {
                break;
            }
            format += 2;
        }
        at_ = at;
        return format;
    }

protected:
    destination_range(unit *start, int32_t size, int32_t terminator)
        : start_(start), at_(start),
          end_(size < terminator ? nullptr : start + (size - terminator)) {}

    static void put_pair(unit *&at, int32_t number) {
        const char *pair = digit_pairs.text + 2 * number;
        at[0] = static_cast<unit>(pair[0]);
        at[1] = static_cast<unit>(pair[1]);
        at += 2;
    }

    unit *start_, *at_, *end_;
};

template <class unit> class destination;

template <> class destination<gl_wchar> : public destination_range<gl_wchar> {
public:
    destination(locale_rec *, gl_wchar *dst, int32_t size) : destination_range(dst, size, 1) {}

    int32_t copy(const gl_wchar *text, ptrdiff_t length) {
        if (length > end_ - at_)
            return GLS_ERR_NO_ROOM;
        for (ptrdiff_t i = 0; i < length; ++i)
            at_[i] = text[i];
        at_ += length;
        return GLS_OK;
    }
    int32_t ascii(const char *text, ptrdiff_t length) {
        if (length > end_ - at_)
            return GLS_ERR_NO_ROOM;
        for (ptrdiff_t i = 0; i < length; ++i)
            at_[i] = static_cast<unsigned char>(text[i]);
        at_ += length;
        return GLS_OK;
    }
    int32_t characters(const gl_wchar *text, ptrdiff_t length) { return copy(text, length); }
    int32_t finish() {
        *at_ = 0;
        return static_cast<int32_t>(at_ - start_);
    }
};

template <> class destination<char> : public destination_range<char> {
public:
    destination(locale_rec *lc, char *dst, int32_t size)
        : destination_range(dst, size, ctype_of(lc).mb_loc_min), lc_(lc), ct_(ctype_of(lc)) {}

    int32_t copy(const char *text, ptrdiff_t length) {
        if (length > end_ - at_)
            return GLS_ERR_NO_ROOM;
        if (length == 1)
            *at_ = *text;
        else
            memcpy(at_, text, static_cast<size_t>(length));
        at_ += length;
        return GLS_OK;
    }
    int32_t ascii(const char *text, ptrdiff_t length) {
        if (ct_.ascii_bytes != 0)
            return copy(text, length);
        int32_t error = GLS_OK;
        for (ptrdiff_t i = 0; error == GLS_OK && i < length; ++i)
            error = character(static_cast<unsigned char>(text[i]));
        return error;
    }
    int32_t characters(const gl_wchar *text, ptrdiff_t length) {
        int32_t error = GLS_OK;
        for (ptrdiff_t i = 0; error == GLS_OK && i < length; ++i)
            error = character(text[i]);
        return error;
    }
    int32_t finish() {
        if (ct_.mb_loc_min == 1)
            *at_ = 0;
        else
            gl_mbsterm(lc_, at_);
        return static_cast<int32_t>(at_ - start_);
    }

private:
    int32_t character(gl_wchar c) {
        if (wide_length(c, ct_.mb_loc_min) > end_ - at_)
            return GLS_ERR_NO_ROOM;
        const int32_t length = encode_wide(ct_, reinterpret_cast<unsigned char *>(at_), c);
        at_ += length;
        return length == 0 ? GLS_ERR_BAD_CHARACTER : GLS_OK;
    }

    locale_rec *lc_;
    const ctype_rec &ct_;
};

} // namespace kestrion
