#include <kestrion/interval.h>

#include "values/datetime/interval_count.h"
#include <kestrion/qualifier.h>

using namespace kestrion;

namespace {

// Base-100 digits left of the point that an interval's count never reaches.
constexpr unsigned __int128 count_limit = 1'000'000'000'000'000'000;

int convert(const dec_value &value, const field_layout &from, const field_layout &to,
            dec_value *result) {
    if (is_year_month(from) != is_year_month(to) || !starts_by(from, to.end))
        return err_dt_incompatible;
    if (is_null(value)) {
        *result = null_decimal;
        return 0;
    }
    digit_word word = 0;
    const int code = spread_count(count_fields(field_word(value, from), from, to.end), &word, to);
    return code != 0 ? code : pack_word(result, to, word, value.sign);
}

int copy(const dec_value *value, int from, int to, dec_value *result) {
    if (!is_interval_qualifier(from) || !is_interval_qualifier(to))
        return err_dt_qualifier;
    if (decverify(value) != 0)
        return -1;
    if (from != to)
        return convert(*value, field_layout(from), field_layout(to), result);
    *result = *value;
    return 0;
}

// The two conversions below may have their result in their operand.
int to_decimal(const dec_value &value, const field_layout &q, dec_value *result) {
    if (is_null(value)) {
        *result = null_decimal;
        return 0;
    }
    const interval_count count = count_fields(field_word(value, q), q, q.end);
    unsigned char digits[22] = {};
    int at = 19; // base-100 digits left of the point
    digits[19] = static_cast<unsigned char>(count.fraction / 1000);
    digits[20] = static_cast<unsigned char>(count.fraction / 10 % 100);
    digits[21] = static_cast<unsigned char>(count.fraction % 10 * 10);
    for (unsigned __int128 left = count.whole; left != 0; left /= 100)
        digits[--at] = static_cast<unsigned char>(left % 100);
    return decload(result, value.sign, 19 - at, digits + at, 22 - at);
}

// The number's part left of the point, held at the limit, and five decimals of the rest.
interval_count split_number(const dec_value &number) {
    interval_count count = {.whole = 0, .fraction = 0};
    for (int i = 0; i < number.exponent && count.whole < count_limit; ++i)
        count.whole = count.whole * 100 + (i < number.ndigits ? number.digits[i] : 0);
    for (int i = number.exponent; i < number.exponent + 3; ++i) {
        count.fraction =
            count.fraction * 100 + (i >= 0 && i < number.ndigits ? number.digits[i] : 0);
    }
    count.fraction /= 10;
    return count;
}

int from_decimal(const dec_value &number, const field_layout &q, dec_value *result) {
    if (is_null(number)) {
        *result = null_decimal;
        return 0;
    }
    digit_word word = 0;
    const int code = spread_count(split_number(number), &word, q);
    return code != 0 ? code : pack_word(result, q, word, number.sign);
}

using decimal_operation = int (*)(const dec_value *, const dec_value *, dec_value *);

int scale(const intv_value &value, const dec_value *number, decimal_operation operation,
          exprec_operation kind, int qualifier, dec_value *result) {
    dec_value work;
    if (!is_interval_qualifier(value.qualifier) || !is_interval_qualifier(qualifier))
        return err_dt_qualifier;
    if (decverify(&value.value) != 0 || decverify(number) != 0)
        return -1;
    if (is_null(value.value) || is_null(*number)) {
        *result = null_decimal;
        return 0;
    }
    if (const int code = copy(&value.value, value.qualifier, qualifier, &work); code != 0)
        return code;
    to_decimal(work, field_layout(qualifier), &work);
    if (const int code = operation(&work, number, &work); code != 0)
        return code;
    const int wide = exprec(kind, qualifier);
    if (const int code = from_decimal(work, field_layout(wide), &work); code != 0)
        return code;
    return copy(&work, wide, qualifier, result);
}

int scale_into(const intv_value *value, const dec_value *number, decimal_operation operation,
               exprec_operation kind, intv_value *result) {
    return finish(scale(*value, number, operation, kind, result->qualifier, &result->value),
                  &result->value);
}

int scale_by_double(const intv_value *value, double number, decimal_operation operation,
                    exprec_operation kind, intv_value *result) {
    dec_value decimal;
    if (!is_interval_qualifier(value->qualifier) || !is_interval_qualifier(result->qualifier))
        return finish(err_dt_qualifier, &result->value);
    if (const int code = deccvdbl(&decimal, number); code != 0)
        return finish(code, &result->value);
    return scale_into(value, &decimal, operation, kind, result);
}

// The units of both, with the width of the one that starts first, of the wider when both do.
int common_qualifier(int a, int b) {
    const field_layout qa(a);
    const field_layout qb(b);
    const bool first =
        qa.start < qb.start || (qa.start == qb.start && qa.leading_digits() >= qb.leading_digits());
    const field_layout &q = first ? qa : qb;
    const int end = qa.end > qb.end ? qa.end : qb.end;
    return qualifier_word(q.leading_digits() + end - q.start, q.start, end);
}

int ratio_of(const intv_value &a, const intv_value &b, double *ratio) {
    if (!is_interval_qualifier(a.qualifier) || !is_interval_qualifier(b.qualifier))
        return err_dt_qualifier;
    const int common =
        a.qualifier == b.qualifier ? a.qualifier : common_qualifier(a.qualifier, b.qualifier);
    dec_value dividend;
    dec_value divisor;
    if (const int code = copy(&a.value, a.qualifier, common, &dividend); code != 0)
        return code;
    if (const int code = copy(&b.value, b.qualifier, common, &divisor); code != 0)
        return code;
    const field_layout q(common);
    to_decimal(dividend, q, &dividend);
    to_decimal(divisor, q, &divisor);
    if (const int code = decdiv(&dividend, &divisor, &dividend); code != 0)
        return code;
    return dectodbl(&dividend, ratio);
}

} // namespace

int rinvcopy(const dec_value *value, int qualifier, dec_value *target, int target_qualifier) {
    return finish(copy(value, qualifier, target_qualifier, target), target);
}

int invextend(const intv_value *value, intv_value *target) {
    return rinvcopy(&value->value, value->qualifier, &target->value, target->qualifier);
}

void rinvtodec(const dec_value *value, int qualifier, dec_value *count) {
    const int code = !is_interval_qualifier(qualifier) ? +err_dt_qualifier
                     : decverify(value) != 0           ? -1
                                                       : 0;
    if (code == 0)
        to_decimal(*value, field_layout(qualifier), count);
    finish(code, count);
}

int rdectoinv(const dec_value *count, dec_value *value, int qualifier) {
    int code = !is_interval_qualifier(qualifier) ? +err_dt_qualifier
               : decverify(count) != 0           ? -1
                                                 : 0;
    if (code == 0)
        code = from_decimal(*count, field_layout(qualifier), value);
    return finish(code, value);
}

int invmuldec(const intv_value *value, const dec_value *factor, intv_value *result) {
    return scale_into(value, factor, decmul, exprec_product, result);
}

int invmuldbl(const intv_value *value, double factor, intv_value *result) {
    return scale_by_double(value, factor, decmul, exprec_product, result);
}

int invdivdec(const intv_value *value, const dec_value *divisor, intv_value *result) {
    return scale_into(value, divisor, decdiv, exprec_quotient, result);
}

int invdivdbl(const intv_value *value, double divisor, intv_value *result) {
    return scale_by_double(value, divisor, decdiv, exprec_quotient, result);
}

int invdivinv(const intv_value *a, const intv_value *b, double *ratio) {
    *ratio = 0.0;
    return answer(ratio_of(*a, *b, ratio));
}
