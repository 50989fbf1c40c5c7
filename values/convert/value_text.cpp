#include <kestrion/value_text.h>

#include "values/convert/cut_text.h"
#include "values/convert/source.h"
#include "values/decimal/c_locale_scope.h"
#include <kestrion/date_text.h>
#include <kestrion/datetime_format.h>
#include <kestrion/datetime_text.h>
#include <kestrion/decimal_text.h>
#include <kestrion/double_text.h>
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/format_mask.h>
#include <kestrion/gentcb.h>
#include <kestrion/gls_env.h>
#include <kestrion/interval_text.h>
#include <kestrion/money_format.h>
#include <kestrion/money_text.h>
#include <kestrion/value_types.h>

#include <algorithm>
#include <math.h>
#include <stdio.h>
#include <string.h>

using namespace kestrion;

namespace {

constexpr int work_size = 81;
constexpr int floating_scale = 255;
constexpr double least_fixed = 1e-130; // floats in this range are written without exponent
constexpr double greatest_fixed = 1e124;

// Where and how a text is wanted.
struct field {
    char *buffer;
    int width; // 0: terminated
    bool left;
};

void fill(const field &to, char filler) {
    if (to.width > 0)
        memset(to.buffer, filler, static_cast<size_t>(to.width));
    else
        *to.buffer = '\0';
}

int stars(const field &to) {
    fill(to, '*');
    return err_display_width;
}

int place(const field &to, const char *text) {
    const auto length = static_cast<int>(strlen(text));
    if (to.width != 0 && length > to.width)
        return stars(to);
    fill(to, ' ');
    char *start = to.buffer + (to.left || to.width == 0 ? 0 : to.width - length);
    memcpy(start, text, static_cast<size_t>(length));
    if (to.width == 0)
        start[length] = '\0';
    return 0;
}

// -- Texts ---------------------------------------------------------------------------------------

// Whether QVT_PAD_VARCHAR leaves varying texts unpadded; asked for once in a thread.
bool varying_unpadded() {
    static thread_local constinit int8_t known = -1;
    if (known < 0) {
        const char *given = ggetenv("QVT_PAD_VARCHAR");
        known = given != nullptr && *given == '0' ? 1 : 0;
    }
    return known == 1;
}

int write_text(const value_rec &v, const field &to) {
    const text_bytes text(v);
    if (to.width == 0) {
        if (text.length > 0)
            memmove(to.buffer, text.at, static_cast<size_t>(text.length));
        to.buffer[text.length] = '\0';
        return 0;
    }
    const int written = copy_cut(text.at, text.length, to.buffer, to.width);
    const int type = sql_type_of(v);
    if (written == to.width)
        return 0;
    if ((type == sql_varchar || type == sql_nvarchar) && varying_unpadded())
        to.buffer[written] = '\0';
    else
        memset(to.buffer + written, ' ', static_cast<size_t>(to.width - written));
    return 0;
}

// -- Numbers -------------------------------------------------------------------------------------
// Writers make a text in work[0..81) that may end in blanks; `w` is the room that it has to fit.

int write_integer(const value_rec &v, char *work, int) {
    snprintf(work, work_size, "%d", v.payload.integer);
    return 0;
}

int write_bigint(const value_rec &v, char *work, int) {
    snprintf(work, work_size, "%lld", static_cast<long long>(v.payload.bigint));
    return 0;
}

int write_int8(const value_rec &v, char *work, int w) {
    work[w] = '\0';
    return qvt_int8tostr(&v.payload.int8, work, w) == 0 ? 0 : +err_display_width;
}

// The digits after the point that leave room for the rest of "-1.5e+200". One alone is given up
// together with the point.
int exponent_digits(double value, int w) {
    const int digits = std::clamp(dbfltprec, 0, 6);
    if (w >= digits + 9)
        return digits;
    const int room = w - (value < 0 ? 8 : 7) - 1;
    return room < 2 ? 0 : room;
}

int write_with_exponent(double value, int digits, char *work) {
    {
        const c_locale_scope c_locale;
        snprintf(work, work_size, "%.*e", digits, value);
    }
    if (strchr(work, 'e') == nullptr)
        return err_float_range;
    return rdecstr(work, work_size);
}

int write_float(const value_rec &v, char *work, int w) {
    const double value = v.payload.number;
    const double magnitude = fabs(value);
    if (magnitude != 0 && !(magnitude >= least_fixed && magnitude <= greatest_fixed))
        return write_with_exponent(value, exponent_digits(value, w), work);
    dec_value decimal;
    work[w] = '\0';
    const bool written =
        deccvdbl(&decimal, value) == 0 && dbltoasc(&decimal, work, w, dbfltprec) == 0;
    return written ? 0 : +err_display_width;
}

int write_smallfloat(const value_rec &v, char *work, int w) {
    dec_value decimal;
    work[w] = '\0';
    const int digits = dbsmfltprec == -1 ? dbfltprec : dbsmfltprec;
    const bool written = deccvflt(&decimal, static_cast<double>(v.payload.single)) == 0 &&
                         dbltoasc(&decimal, work, w, digits) == 0;
    return written ? 0 : +err_display_width;
}

int write_float_of_either_size(const value_rec &v, char *work, int w) {
    return is_small_float(v) ? write_smallfloat(v, work, w) : write_float(v, work, w);
}

int scale_of(const value_rec &v, int floating) {
    const int scale = v.length_word & 0xFF;
    return scale == floating_scale ? floating : scale;
}

int digits_before_point(const dec_value &dec) {
    if (dec.exponent < 1 || dec.ndigits < 1)
        return 1;
    return 2 * dec.exponent - (dec.digits[0] < 10 ? 1 : 0);
}

// An amount without symbols: as many decimals as the field has room for beside the texts that are
// put around amounts elsewhere, so that columns of both kinds agree.
int write_plain_amount(locale_rec *lc, const value_rec &v, char *work, int w) {
    const dec_value &dec = v.payload.decimal;
    const int scale = scale_of(v, genlcscale());
    const int taken =
        (dec.sign == dec_negative ? 1 : 0) + rfrontlen() + rbacklen() + digits_before_point(dec);
    const int room = std::clamp(w - taken - 1, 0, scale);
    char mask[24];
    snprintf(mask, sizeof mask, "%%^!.%dn", std::min(room, 99));
    double value;
    dectodbl(&dec, &value);
    return gl_mbsfmon(lc, work, work_size, mask, value) >= 0 ? 0 : +err_display_width;
}

int write_money(const value_rec &v, char *work, int w) {
    if (decverify(&v.payload.decimal) != 0)
        return err_display_width;
    const int scale = scale_of(v, genlcscale()); // starts the locale
    locale_rec *lc = CheckGlsEnv()->cur_lc;
    if (ggetenv("DBMONEY") == nullptr && lc != nullptr && v.payload.decimal.sign != dec_null_sign)
        return write_plain_amount(lc, v, work, w);
    work[w] = '\0';
    return rdecmon(&v.payload.decimal, work, w, scale) == 0 ? 0 : +err_display_width;
}

int write_decimal(const value_rec &v, char *work, int w) {
    if (sql_type_of(v) == sql_money)
        return write_money(v, work, w);
    work[w] = '\0';
    const int failed = dectoasc(&v.payload.decimal, work, w, scale_of(v, dbfltprec));
    return failed == 0 ? 0 : +err_display_width;
}

int write_date(value_rec &v, char *work) {
    const int code = rdatestr(v.payload.integer, work);
    v.payload.text.text_length = static_cast<int32_t>(strnlen(work, work_size));
    return code;
}

int write_datetime(const value_rec &v, char *work, int) {
    if (get_usedtenv() == 0)
        return rdtimestr(&v.payload.decimal, v.length_word & 0xFFFF, work);
    dtime_value record;
    record.qualifier = static_cast<int16_t>(v.length_word & 0xFFFF);
    record.value = v.payload.decimal;
    return dttofmtasc(&record, work, work_size, nullptr);
}

int write_interval(const value_rec &v, char *work, int) {
    return rinvstr(&v.payload.decimal, v.length_word & 0xFFFF, work);
}

using writer = int (*)(const value_rec &v, char *work, int w);

// By source_kind.
constexpr writer writers[matrix_columns] = {
    nullptr,                    // text
    write_integer,              // integer; dates have a writer of their own
    write_float_of_either_size, // floating
    write_decimal,              // decimal
    write_int8,                 // int8
    write_bigint,               // bigint
    write_datetime,             // datetime
    write_interval,             // interval
};

int write_other(value_rec &v, source_kind kind, const field &to) {
    char work[work_size] = {};
    const int w = to.width == 0 ? work_size - 1 : std::min(to.width, work_size - 1);
    const int code = sql_type_of(v) == sql_date ? write_date(v, work)
                                                : writers[static_cast<int>(kind)](v, work, w);
    if (code == err_display_width)
        return stars(to);
    if (code != 0) {
        fill(to, ' ');
        return code;
    }
    size_t length = strlen(work);
    while (length > 0 && work[length - 1] == ' ')
        work[--length] = '\0';
    return place(to, work);
}

int write_value(value_rec &v, const field &to) {
    const source_kind kind = kind_of(v);
    if (kind == source_kind::null) {
        fill(to, ' ');
        return 0;
    }
    if (kind == source_kind::text)
        return write_text(v, to);
    if (kind == source_kind::boolean) {
        const text_bytes byte(v);
        return place({to.buffer, to.width, true}, byte.length > 0 && *byte.at != 0 ? "t" : "f");
    }
    if (static_cast<int>(kind) < matrix_columns)
        return write_other(v, kind, to);
    fill(to, ' ');
    return err_no_conversion;
}

int write_long_float(double value, const field &to) {
    constexpr double greatest_short = 1.797693134862315e308;
    char work[work_size];
    const int code = fabs(value) > greatest_short && isfinite(value)
                         ? write_with_exponent(value, 16, work)
                         : _gnftoasc(value, work);
    return code != 0 ? stars(to) : place(to, work);
}

// Reads an integer of a magnitude up to `limit`; 1 for blanks alone.
int read_integer(const char *text, int64_t limit, int out_of_range, int64_t *out) {
    while (*text == ' ')
        ++text;
    if (*text == '\0' || *text == '\n')
        return 1;
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+')
        ++text;
    if (*text < '0' || *text > '9')
        return err_not_a_number;
    int64_t value = 0;
    for (; *text >= '0' && *text <= '9'; ++text) {
        value = value * 10 + (*text - '0');
        if (value > limit)
            return out_of_range;
    }
    if (*text != ' ' && *text != '\0' && *text != '\n')
        return err_not_a_number;
    *out = negative ? -value : value;
    return 0;
}

} // namespace

int rvalstr(value_rec *value, char *buffer, int width, int left) {
    if (CheckGenInit() == nullptr)
        return 0;
    if (width < 0)
        return converted(err_display_width);
    return converted(write_value(*value, {buffer, width, left != 0}));
}

int rvalstr_16prec(value_rec *value, char *buffer, int width, int left) {
    if (kind_of(*value) != source_kind::floating || is_small_float(*value) || width < 0)
        return rvalstr(value, buffer, width, left);
    if (CheckGenInit() == nullptr)
        return 0;
    return converted(write_long_float(value->payload.number, {buffer, width, left != 0}));
}

int rstoi(const char *text, int32_t *out) {
    int64_t value;
    const int code = read_integer(text, INT16_MAX, err_smallint_range, &value);
    if (code < 0)
        return code;
    *out = code == 0 ? static_cast<int32_t>(value) : INT16_MIN;
    return 0;
}

int rstol(const char *text, int64_t *out) {
    int64_t value;
    const int code = read_integer(text, INT32_MAX, err_integer_range, &value);
    if (code < 0)
        return code;
    *out = code == 0 ? value : int64_t{INT32_MIN};
    return 0;
}

int rdatastr(const void *stored, int column_type, int column_length, char *buffer, int width) {
    value_rec value = {};
    const int code = rdataval(stored, column_type, column_length, &value);
    return code < 0 ? code : rvalstr(&value, buffer, width, 1);
}
