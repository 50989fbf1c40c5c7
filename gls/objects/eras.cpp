#include "gls/objects/eras.h"

#include "gls/objects/category_data.h"
#include <kestrion/char_convert.h>

using namespace kestrion;

namespace {

constexpr int year_digits = 9; // years stay far inside 32 bits
constexpr int field_count = 7;

// A piece of a wide text.
struct wide_piece {
    const gl_wchar *at;
    const gl_wchar *end;

    bool take(char c) {
        if (at == end || *at != static_cast<unsigned char>(c))
            return false;
        ++at;
        return true;
    }
    bool ended() const { return at == end; }
};

// Takes 1 to `digits` decimal digits.
bool take_digits(wide_piece &piece, int digits, int32_t &out) {
    const gl_wchar *start = piece.at;
    out = 0;
    for (; piece.at != piece.end && *piece.at >= '0' && *piece.at <= '9'; ++piece.at) {
        if (piece.at - start == digits)
            return false;
        out = out * 10 + static_cast<int32_t>(*piece.at - '0');
    }
    return piece.at != start;
}

bool take_number(wide_piece &piece, int32_t &out) {
    bool negative = piece.take('-');
    if (!take_digits(piece, year_digits, out))
        return false;
    out = negative ? -out : out;
    return true;
}

bool take_date(wide_piece &piece, int32_t &year, int32_t &month, int32_t &day) {
    return take_number(piece, year) && piece.take('/') && take_digits(piece, 2, month) &&
           piece.take('/') && take_digits(piece, 2, day) && month >= 1 && month <= 12 && day >= 1 &&
           day <= 31;
}

// Takes an end without a date. Leaves the piece as it is when it is none.
bool take_open_end(wide_piece &piece, int32_t &open_end) {
    if (piece.end - piece.at != 2 || piece.at[1] != '*' ||
        (piece.at[0] != '+' && piece.at[0] != '-'))
        return false;
    open_end = piece.at[0] == '+' ? 1 : -1;
    piece.at = piece.end;
    return true;
}

// Splits at the colons; the last field takes the rest.
bool split(const gl_wchar *text, wide_piece (&fields)[field_count]) {
    for (int i = 0; i < field_count; ++i) {
        bool last = i == field_count - 1;
        fields[i].at = text;
        while (*text != 0 && (last || *text != ':'))
            ++text;
        fields[i].end = text;
        if (!last && *text++ != ':')
            return false;
    }
    return true;
}

bool parse_numbers(wide_piece (&fields)[field_count], era_rec &era) {
    era.direction = fields[0].take('+') ? 1 : fields[0].take('-') ? -1 : 0;
    return era.direction != 0 && take_number(fields[1], era.offset) &&
           take_date(fields[2], era.start_year, era.start_month, era.start_day) &&
           (take_open_end(fields[3], era.open_end) ||
            take_date(fields[3], era.end_year, era.end_month, era.end_day)) &&
           fields[0].ended() && fields[1].ended() && fields[2].ended() && fields[3].ended();
}

// Keeps a field in both forms.
bool keep_field(locale_rec *lc, const wide_piece &field, char *&text, gl_wchar *&wide) {
    size_t length = static_cast<size_t>(field.end - field.at);
    gl_wchar *wide_copy;
    if (!make_array(lc, wide_copy, length + 1))
        return false;
    wide = wide_copy;
    for (size_t i = 0; i < length; ++i)
        wide[i] = field.at[i];
    size_t size = gl_char_bytes * length + text_tail;
    char *copy;
    if (!make_array(lc, copy, size))
        return false;
    text = copy;
    return gl_full_wcstombs(lc, text, wide, static_cast<int32_t>(size)) >= 0;
}

bool parse_era(locale_rec *lc, const gl_wchar *text, era_rec &era) {
    wide_piece fields[field_count];
    if (!split(text, fields) || !parse_numbers(fields, era))
        return refuse(lc, GLS_ERR_MALFORMED);
    return keep_field(lc, fields[4], era.name, era.wide_name) &&
           keep_field(lc, fields[5], era.second_name, era.wide_second_name) &&
           keep_field(lc, fields[6], era.format, era.wide_format);
}

} // namespace

namespace kestrion {

bool parse_eras(locale_rec *lc) {
    time_rec &r = lc->time_cat;
    free_eras(lc);
    if (r.era_count == 0)
        return true;
    if (!make_array(lc, r.eras, static_cast<size_t>(r.era_count)))
        return false;
    gl_wchar *wide = no_wide_text;
    bool parsed = true;
    for (int32_t i = 0; parsed && i < r.era_count; ++i)
        parsed = widen_text(lc, r.era_texts[i], wide) && parse_era(lc, wide, r.eras[i]);
    free_wide(wide);
    return parsed;
}

void free_eras(locale_rec *lc) {
    time_rec &r = lc->time_cat;
    for (int32_t i = 0; r.eras != nullptr && i < r.era_count; ++i) {
        era_rec &era = r.eras[i];
        _gl_free_ptr(era.name);
        _gl_free_ptr(era.second_name);
        _gl_free_ptr(era.format);
        _gl_free_ptr(era.wide_name);
        _gl_free_ptr(era.wide_second_name);
        _gl_free_ptr(era.wide_format);
    }
    free_array(r.eras);
}

} // namespace kestrion
