#include <kestrion/value_steps.h>

#include "values/convert/source.h"
#include "values/datetime/field_layout.h"
#include <kestrion/date_text.h>
#include <kestrion/datetime_fields.h>
#include <kestrion/datetime_now.h>
#include <kestrion/datetime_text.h>
#include <kestrion/decimal_text.h>
#include <kestrion/double_text.h>
#include <kestrion/error_numbers.h>
#include <kestrion/interval_text.h>
#include <kestrion/money_text.h>
#include <kestrion/value_types.h>

#include <stdlib.h>
#include <string.h>
#include <strings.h>

using namespace kestrion;

namespace {

constexpr int money_text_limit = 80;

// A terminated copy of a text, which ends at its first zero byte.
class terminated_text {
public:
    explicit terminated_text(const value_rec &value) {
        const text_bytes source(value);
        const size_t length =
            source.length > 0 ? strnlen(source.at, static_cast<size_t>(source.length)) : 0;
        text = length < sizeof inside ? inside : static_cast<char *>(malloc(length + 1));
        if (text == nullptr)
            return;
        if (length > 0)
            memcpy(text, source.at, length);
        text[length] = '\0';
    }
    ~terminated_text() {
        if (text != inside)
            free(text);
    }
    terminated_text(const terminated_text &) = delete;
    terminated_text &operator=(const terminated_text &) = delete;

    char *text; // null without memory

private:
    char inside[40]; // longer texts are rare
};

// Reads a text by `read`(terminated text).
template <typename reader> int read_text(const value_rec &v, reader read) {
    const terminated_text copy(v);
    return copy.text != nullptr ? read(copy.text) : +err_no_block;
}

bool is_blank(const text_bytes &text) {
    for (int32_t i = 0; i < text.length && text.at[i] != '\0'; ++i)
        if (text.at[i] != ' ')
            return false;
    return true;
}

// Any refusal of a text is that it is not a number; of a number, that it is out of range.
int number_text_code(int code) {
    return code == 0 || code == err_no_block ? code : +err_not_a_number;
}
int integer_code(int code) { return code == 0 ? 0 : +err_integer_range; }

// -- Decimals of the sources, whose results are dec_value ----------------------------------------

using cell = int (*)(const value_rec &source, int qualifier, void *result);

template <typename result_type> result_type &as(void *result) {
    return *static_cast<result_type *>(result);
}

int decimal_of_text(const value_rec &v, int, void *result) {
    const text_bytes text(v);
    return number_text_code(deccvasc(text.at, text.length, &as<dec_value>(result)));
}

int money_of_text(const value_rec &v, int, void *result) {
    const text_bytes text(v);
    int32_t length = text.length;
    while (length > 0 && text.at[length - 1] == ' ')
        --length;
    if (length > money_text_limit)
        return err_not_a_number;
    return number_text_code(rmondec(text.at, length, &as<dec_value>(result)));
}

int decimal_of_integer(const value_rec &v, int, void *result) {
    return deccvlong(v.payload.integer, &as<dec_value>(result));
}

int decimal_of_float(const value_rec &v, int, void *result) {
    auto &decimal = as<dec_value>(result);
    return is_small_float(v) ? deccvflt(&decimal, static_cast<double>(v.payload.single))
                             : deccvdbl(&decimal, v.payload.number);
}

int decimal_as_is(const value_rec &v, int, void *result) {
    as<dec_value>(result) = v.payload.decimal;
    return decverify(&v.payload.decimal);
}

int decimal_of_int8(const value_rec &v, int, void *result) {
    return qvt_int8_to_decimal(&v.payload.int8, &as<dec_value>(result));
}

int decimal_of_bigint(const value_rec &v, int, void *result) {
    return qvt_bigint_to_decimal(v.payload.bigint, &as<dec_value>(result));
}

// -- Integers ------------------------------------------------------------------------------------

// Goes through a decimal: a text keeps its own error, all else is out of range.
template <cell to_decimal, auto from_decimal, typename result_type>
int by_decimal(const value_rec &v, int, void *result) {
    dec_value decimal;
    const int code = to_decimal(v, 0, &decimal);
    if (code != 0)
        return to_decimal == decimal_of_text ? code : +err_integer_range;
    return integer_code(from_decimal(&decimal, &as<result_type>(result)));
}

template <cell to_decimal> constexpr cell long_by = by_decimal<to_decimal, dectolong, int32_t>;
template <cell to_decimal>
constexpr cell bigint_by = by_decimal<to_decimal, qvt_bigint_from_decimal, int64_t>;
template <cell to_decimal>
constexpr cell int8_by = by_decimal<to_decimal, qvt_int8_from_decimal, int8_value>;

int long_as_is(const value_rec &v, int, void *result) {
    as<int32_t>(result) = v.payload.integer;
    return v.payload.integer == INT32_MIN ? +err_integer_range : 0;
}

int long_of_int8(const value_rec &v, int, void *result) {
    return integer_code(qvt_int8tolong(&v.payload.int8, &as<int32_t>(result)));
}

// The result is cut down also when it is out of range; programs look at it.
int long_of_bigint(const value_rec &v, int, void *result) {
    const int64_t wide = v.payload.bigint;
    if (wide == INT64_MIN) {
        as<int32_t>(result) = INT32_MIN;
        return 0;
    }
    as<int32_t>(result) = static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(wide)));
    return wide > INT32_MAX || wide < -INT32_MAX ? +err_integer_range : 0;
}

int bigint_of_integer(const value_rec &v, int, void *result) {
    const int32_t narrow = v.payload.integer;
    as<int64_t>(result) = narrow == INT32_MIN ? INT64_MIN : int64_t{narrow};
    return 0;
}

int bigint_of_int8(const value_rec &v, int, void *result) {
    return integer_code(qvt_int8_to_bigint(&v.payload.int8, &as<int64_t>(result)));
}

int bigint_as_is(const value_rec &v, int, void *result) {
    as<int64_t>(result) = v.payload.bigint;
    return 0;
}

int int8_of_text(const value_rec &v, int, void *result) {
    const text_bytes text(v);
    const int code = qvt_int8cvasc(text.at, text.length, &as<int8_value>(result));
    return code == err_integer_range || code == err_no_block ? code : number_text_code(code);
}

int int8_of_integer(const value_rec &v, int, void *result) {
    return integer_code(qvt_int8_from_long(v.payload.integer, &as<int8_value>(result)));
}

// Floats take the way of their text without decimals, so they are rounded where others are cut.
int int8_of_float(const value_rec &v, int, void *result) {
    dec_value decimal;
    if (decimal_of_float(v, 0, &decimal) != 0)
        return err_integer_range;
    decround(&decimal, 0);
    return integer_code(qvt_int8_from_decimal(&decimal, &as<int8_value>(result)));
}

int int8_as_is(const value_rec &v, int, void *result) {
    as<int8_value>(result) = v.payload.int8;
    return 0;
}

int int8_of_bigint(const value_rec &v, int, void *result) {
    return integer_code(qvt_int8_from_bigint(v.payload.bigint, &as<int8_value>(result)));
}

// -- Doubles -------------------------------------------------------------------------------------

double null_double() {
    double value;
    memset(&value, 0xFF, sizeof value);
    return value;
}

int double_of_text(const value_rec &v, int, void *result) {
    return read_text(v, [&](const char *text) { return rstod(text, &as<double>(result)); });
}

int double_of_integer(const value_rec &v, int, void *result) {
    const int32_t value = v.payload.integer;
    as<double>(result) = value == INT32_MIN ? null_double() : static_cast<double>(value);
    return 0;
}

int double_as_is(const value_rec &v, int, void *result) {
    as<double>(result) =
        is_small_float(v) ? static_cast<double>(v.payload.single) : v.payload.number;
    return 0;
}

int double_of_decimal(const value_rec &v, int, void *result) {
    return dectodbl(&v.payload.decimal, &as<double>(result));
}

int double_of_int8(const value_rec &v, int, void *result) {
    return qvt_int8_to_double(&v.payload.int8, &as<double>(result));
}

int double_of_bigint(const value_rec &v, int, void *result) {
    return qvt_bigint_to_double(v.payload.bigint, &as<double>(result));
}

// -- Dates, datetimes, intervals -----------------------------------------------------------------

int date_of_text(const value_rec &v, int, void *result) {
    return read_text(v, [&](char *text) {
        size_t length = strlen(text);
        while (length > 0 && text[length - 1] == ' ')
            text[--length] = '\0';
        if (strcasecmp(text, "today") != 0)
            return rstrdate(text, &as<int32_t>(result));
        rtoday(&as<int32_t>(result));
        return 0;
    });
}

int date_of_datetime(const value_rec &v, int, void *result) {
    return rdttodate(&v.payload.decimal, v.length_word & 0xFFFF, &as<int32_t>(result));
}

int datetime_of_text(const value_rec &v, int qualifier, void *result) {
    return read_text(
        v, [&](const char *text) { return rstrdtime(text, &as<dec_value>(result), qualifier); });
}

int datetime_of_date(const value_rec &v, int qualifier, void *result) {
    if (sql_type_of(v) != sql_date)
        return err_no_conversion;
    return rdatedt(v.payload.integer, &as<dec_value>(result), qualifier);
}

int datetime_extended(const value_rec &v, int qualifier, void *result) {
    const int own = v.length_word & 0xFFFF;
    const int code = chk_dtinv(&v.payload.decimal, own, 1);
    return code != 0 ? code : rdtextend(&v.payload.decimal, own, &as<dec_value>(result), qualifier);
}

int interval_of_text(const value_rec &v, int qualifier, void *result) {
    return read_text(
        v, [&](const char *text) { return rstrinv(text, &as<dec_value>(result), qualifier); });
}

// As the decimal is held: its digits are taken for fields without being scaled. Programs that kept
// intervals in decimals store them back this way.
int interval_of_decimal(const value_rec &v, int, void *result) {
    return sql_type_of(v) == sql_decimal ? decimal_as_is(v, 0, result) : +err_no_conversion;
}

int interval_converted(const value_rec &v, int qualifier, void *result) {
    const int own = v.length_word & 0xFFFF;
    const int code = chk_dtinv(&v.payload.decimal, own, 0);
    return code != 0 ? code : rinvcopy(&v.payload.decimal, own, &as<dec_value>(result), qualifier);
}

// -- The matrix ----------------------------------------------------------------------------------

enum target {
    to_long,
    to_bigint,
    to_int8,
    to_double,
    to_decimal,
    to_money,
    to_date,
    to_datetime,
    to_interval,
    target_count
};

constexpr cell none = nullptr; // err_no_conversion

// clang-format off
constexpr cell matrix[target_count][matrix_columns] = {
//   text, integer, float, decimal, int8, bigint, datetime, interval
    {long_by<decimal_of_text>, long_as_is, long_by<decimal_of_float>, long_by<decimal_as_is>,
     long_of_int8, long_of_bigint, none, none},
    {bigint_by<decimal_of_text>, bigint_of_integer, bigint_by<decimal_of_float>, bigint_by<decimal_as_is>,
     bigint_of_int8, bigint_as_is, none, none},
    {int8_of_text, int8_of_integer, int8_of_float, int8_by<decimal_as_is>,
     int8_as_is, int8_of_bigint, none, none},
    {double_of_text, double_of_integer, double_as_is, double_of_decimal,
     double_of_int8, double_of_bigint, none, none},
    {decimal_of_text, decimal_of_integer, decimal_of_float, decimal_as_is,
     decimal_of_int8, decimal_of_bigint, none, none},
    {money_of_text, decimal_of_integer, decimal_of_float, decimal_as_is,
     decimal_of_int8, decimal_of_bigint, none, none},
    {date_of_text, long_as_is, long_by<decimal_of_float>, long_by<decimal_as_is>,
     long_of_int8, long_of_bigint, date_of_datetime, none},
    {datetime_of_text, datetime_of_date, none, none,
     none, none, datetime_extended, none},
    {interval_of_text, none, none, interval_of_decimal,
     none, none, none, interval_converted},
};
// clang-format on

// *result holds NULL when this begins.
int convert(target wanted, const value_rec *value, int qualifier, void *result) {
    const source_kind kind = kind_of(*value);
    if (kind == source_kind::null)
        return 0;
    if (kind == source_kind::blob)
        return err_blob_place;
    if (static_cast<int>(kind) >= matrix_columns)
        return err_no_conversion;
    const cell way = matrix[wanted][static_cast<int>(kind)];
    return way != none ? way(*value, qualifier, result) : +err_no_conversion;
}

template <typename result_type>
int run(target wanted, const value_rec *value, int qualifier, result_type null,
        result_type *result) {
    *result = null;
    const int code = convert(wanted, value, qualifier, result);
    if (code != 0)
        *result = null;
    return converted(code);
}

constexpr dec_value no_decimal = {0, dec_null_sign, 0, {}};

int run_dated(target wanted, bool valid, const value_rec *value, int qualifier, dec_value *result) {
    if (valid || kind_of(*value) == source_kind::null)
        return run(wanted, value, qualifier, no_decimal, result);
    *result = no_decimal;
    return converted(err_dt_qualifier);
}

int long_step(const value_rec *value, int32_t *result) {
    *result = INT32_MIN;
    const int code = convert(to_long, value, 0, result);
    if (code != 0 && kind_of(*value) != source_kind::bigint) // which is cut down
        *result = INT32_MIN;
    return code;
}

} // namespace

int tolong(const value_rec *value, int32_t *result) { return converted(long_step(value, result)); }

int toint(const value_rec *value, int32_t *result) {
    const int code = long_step(value, result);
    if (code == 0 && *result == INT32_MIN) {
        *result = INT16_MIN;
        return converted(0);
    }
    const bool fits = *result >= -INT16_MAX && *result <= INT16_MAX;
    return converted(code != 0 ? code : fits ? 0 : +err_smallint_range);
}

int tobigint(const value_rec *value, int64_t *result) {
    return run(to_bigint, value, 0, int64_t{INT64_MIN}, result);
}

int toint8(const value_rec *value, int8_value *result) {
    return run(to_int8, value, 0, int8_value{{0, 0}, 0}, result);
}

int todouble(const value_rec *value, double *result) {
    return run(to_double, value, 0, null_double(), result);
}

int todblnull(const value_rec *value, double *result, int16_t *null) {
    const source_kind kind = kind_of(*value);
    const bool blank = kind == source_kind::text && is_blank(text_bytes(*value));
    *result = 0.0;
    *null = 1;
    if (kind == source_kind::null || blank)
        return converted(0);
    const int code = todouble(value, result);
    const uint64_t all_ones = UINT64_MAX; // the NULL of a decimal or an integer
    const bool is_number = kind == source_kind::floating || kind == source_kind::text;
    *null = code == 0 && !is_number && memcmp(result, &all_ones, sizeof all_ones) == 0 ? 1 : 0;
    if (*null != 0 || code != 0)
        *result = 0.0;
    return code;
}

int todecimal(const value_rec *value, dec_value *result) {
    return run(to_decimal, value, 0, no_decimal, result);
}

int todecimalmon(const value_rec *value, dec_value *result) {
    return run(to_money, value, 0, no_decimal, result);
}

int todate(const value_rec *value, int32_t *date) {
    const int code = run(to_date, value, 0, int32_t{date_null}, date);
    if (code != 0 || *date == date_null || (*date >= date_first && *date <= date_last))
        return code;
    *date = date_null;
    return converted(err_date_range);
}

int todatetime(const value_rec *value, int qualifier, dec_value *result) {
    const int word = qualifier & 0xFFFF;
    return run_dated(to_datetime, is_datetime_qualifier(word), value, word, result);
}

int tointerval(const value_rec *value, int qualifier, dec_value *result) {
    const int word = qualifier & 0xFFFF;
    return run_dated(to_interval, is_interval_qualifier(word), value, word, result);
}

int tocbool(const value_rec *value, char *result) {
    *result = static_cast<char>(0xFF);
    const source_kind kind = kind_of(*value);
    if (kind == source_kind::null)
        return converted(0);
    if (kind == source_kind::blob)
        return converted(err_blob_place);
    const text_bytes text(*value);
    if ((kind != source_kind::boolean && kind != source_kind::text) || text.length != 1)
        return converted(err_no_conversion);
    if (kind == source_kind::boolean)
        *result = text.at[0];
    else if (text.at[0] == 't' || text.at[0] == 'T')
        *result = 1;
    else if (text.at[0] == 'f' || text.at[0] == 'F')
        *result = 0;
    else
        return converted(err_no_conversion);
    return converted(0);
}
