// Sums, differences and conversions beside std::chrono and plain integers.

#include <kestrion/datetime_arithmetic.h>
#include <kestrion/datetime_fields.h>

#include "support/random_cases.h"
#include "values/datetime/plain_values.h"
#include <kestrion/datetime_now.h>
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>

namespace {

using namespace std::chrono;
using plain::fields;
using plain::ticks;
using plain::words;

// What an operation should give: an error number, or a text.
struct outcome {
    int code;
    std::string text;

    bool operator==(const outcome &) const = default;
};
std::ostream &operator<<(std::ostream &out, const outcome &what) {
    return out << what.code << " [" << what.text << ']';
}

// The present that values without a year live in.
constexpr int present_year = 2023;
void set_present() {
    const words q{unit_year, unit_fraction5, 4};
    const dtime_value now =
        plain::datetime(plain::moment(year{present_year} / March / 15, 360000000), q);
    rdtsetcurr(&now.value);
}

bool fits_together(const words &d, const words &i) {
    return i.end <= d.end && (i.start >= d.start || i.start == unit_second);
}

outcome plain_month_sum(fields value, const words &d, int64_t months) {
    if (d.start == unit_year) {
        const int64_t total = value.at[0] * 12 + value.at[1] - 1 + months;
        if (total < 12 || total >= 120000)
            return {err_dt_result, ""};
        const auto sum = year{value.at[0]} / value.at[1] + std::chrono::months{months};
        value.at[0] = static_cast<int>(sum.year());
        value.at[1] = static_cast<int>(static_cast<unsigned>(sum.month()));
        if (d.end >= unit_day && !(sum / value.at[2]).ok())
            value.at[2] = static_cast<int>(static_cast<unsigned>((sum / last).day()));
    } else {
        value.at[1] += static_cast<int>(std::clamp<int64_t>(months, -100, 100));
        if (value.at[1] < 1 || value.at[1] > 12)
            return {err_dt_result, ""};
        // Without a year February has 29 days.
        const auto end = (2024y / value.at[1] / last).day();
        value.at[2] = std::min(value.at[2], static_cast<int>(static_cast<unsigned>(end)));
    }
    return {0, value.text(d)};
}

outcome plain_day_sum(const fields &value, const words &d, ticks delta) {
    const ticks day = plain::ticks_of(unit_day);
    ticks date = 0;
    if (d.start <= unit_month) {
        fields full = value;
        if (d.start == unit_month)
            full.at[0] = present_year;
        if (!full.date().ok())
            return {err_date_day, ""};
        date = sys_days{full.date()}.time_since_epoch().count();
    } else if (d.start == unit_day) {
        date = value.at[2];
    }
    const ticks total = date * day + value.time_of_day() + delta;
    if (d.start > unit_day) {
        const ticks above = d.start == unit_fraction ? 100000 : plain::ticks_of(d.start - 2);
        if (total < 0 || total >= above)
            return {err_dt_result, ""};
        return {0, plain::moment(1y / January / 1, static_cast<int64_t>(total)).text(d)};
    }
    const ticks days_after = total >= 0 ? total / day : (total + 1) / day - 1;
    const auto time = static_cast<int64_t>(total - days_after * day);
    if (d.start == unit_day) {
        if (days_after < 1 || days_after > 31)
            return {err_dt_result, ""};
        fields after = plain::moment(2024y / January / 1, time);
        after.at[2] = static_cast<int>(days_after);
        return {0, after.text(d)};
    }
    if (days_after < sys_days{1y / January / 1}.time_since_epoch().count() ||
        days_after > sys_days{9999y / December / 31}.time_since_epoch().count())
        return {err_date_year, ""};
    const fields after = plain::moment(sys_days{days{static_cast<int>(days_after)}}, time);
    if (d.start == unit_month && after.at[0] != present_year)
        return {err_dt_result, ""};
    return {0, after.text(d)};
}

// A random interval: its value in ticks or months, a multiple of its last unit.
ticks any_interval(std::mt19937_64 &random, const words &q, const std::vector<words> &, int near) {
    ticks unit = q.end > unit_second ? 1 : plain::ticks_of(q.end);
    for (int i = q.decimals(); q.end > unit_second && i < 5; ++i)
        unit *= 10;
    const ticks first = q.start == unit_fraction ? 1 : plain::any_count(random, near);
    const ticks below = q.start == unit_fraction ? 100000 : plain::ticks_of(q.start);
    const ticks rest = static_cast<ticks>(random() % 100000000000u) % below;
    ticks total = q.start == unit_fraction ? rest : first * below + rest;
    total -= total % unit;
    return random() % 2 == 0 ? total : -total;
}

intv_value interval(ticks total, const words &q) {
    intv_value made = {.qualifier = static_cast<int16_t>(q.word()), .value = {}};
    EXPECT_EQ(incvasc(plain::interval_text(total, q).c_str(), &made), 0)
        << plain::interval_text(total, q);
    return made;
}

int first_count(const words &q) {
    int count = 1;
    for (int i = 0; i < std::min(q.width, 9); ++i)
        count *= 10;
    return count;
}

TEST(DatetimeSum, AgreesWithTheCalendar) {
    std::mt19937_64 random(85);
    set_present();
    const std::vector<words> all = plain::datetimes();
    const std::vector<words> spans = plain::intervals(9);
    int good = 0;
    const long cases = random_cases(500000);
    for (long i = 0; i < cases;) {
        const words &d = all[random() % all.size()];
        const words &q = spans[random() % spans.size()];
        if (!fits_together(d, q) && random() % 50 != 0)
            continue;
        ++i;
        const fields value = plain::cut(plain::any_moment(random), d);
        const ticks delta = any_interval(random, q, spans, first_count(q));
        const dtime_value left = plain::datetime(value, d);
        const intv_value right = interval(delta, q);
        outcome wanted = {err_dt_incompatible, ""};
        if (fits_together(d, q)) {
            wanted = q.start <= unit_month ? plain_month_sum(value, d, static_cast<int64_t>(delta))
                                           : plain_day_sum(value, d, delta);
        }
        dtime_value sum;
        const int code = dtaddinv(&left, &right, &sum);
        ASSERT_EQ(get_toerrno(), code);
        ASSERT_EQ((outcome{code, plain::text_of(sum)}), wanted)
            << value.text(d) << " + " << plain::interval_text(delta, q) << " word " << d.word();
        ASSERT_EQ(sum.qualifier, left.qualifier);
        good += code == 0;
        if (delta != 0) {
            const intv_value negative = interval(-delta, q);
            dtime_value other;
            ASSERT_EQ(dtsubinv(&left, &negative, &other), code);
            ASSERT_EQ(plain::text_of(other), wanted.text);
        }
    }
    rdtsetcurr(nullptr);
    EXPECT_GT(good, cases / 3);
}

// Differences of values of one start, so that no present takes part, into any interval.
TEST(DatetimeDifference, AgreesWithTheCalendar) {
    std::mt19937_64 random(58);
    set_present();
    const std::vector<words> all = plain::datetimes();
    const std::vector<words> spans = plain::intervals(9);
    int good = 0;
    const long cases = random_cases(500000);
    for (long i = 0; i < cases; ++i) {
        const words &d = all[random() % all.size()];
        const words &other = all[random() % all.size()];
        const words &b = other.start == d.start ? other : d;
        const words &q = spans[random() % spans.size()];
        fields left = plain::cut(plain::any_moment(random), d);
        fields right = plain::cut(random() % 4 == 0 ? left : plain::any_moment(random), b);
        right = plain::cut(right, b);
        const dtime_value x = plain::datetime(left, d);
        const dtime_value y = plain::datetime(right, b);
        right = plain::cut(right, d);
        const bool months = d.end <= unit_month;
        outcome wanted = {err_dt_incompatible, ""};
        std::optional<ticks> total;
        if (months) {
            total = (left.at[0] - right.at[0]) * 12 + left.at[1] - right.at[1];
        } else {
            if (d.start == unit_month)
                left.at[0] = right.at[0] = present_year;
            if (d.start <= unit_month && (!left.date().ok() || !right.date().ok())) {
                wanted = {err_date_day, ""};
            } else if (d.start <= unit_month) {
                total = (sys_days{left.date()} - sys_days{right.date()}).count() *
                        plain::ticks_of(unit_day);
            } else {
                total = (left.at[2] - right.at[2]) * plain::ticks_of(unit_day);
            }
            if (total)
                *total += left.time_of_day() - right.time_of_day();
        }
        // The natural interval of the difference must meet the one that is wanted.
        const int natural = !months && d.start < unit_day ? +unit_day : d.start;
        const bool fits = (natural <= unit_month) == (q.start <= unit_month) &&
                          (natural == unit_fraction ? +unit_fraction1 : natural) <= q.end;
        if (total && fits) {
            const std::string text = plain::interval_text(*total, q);
            wanted = {text.empty() ? err_intv_overflow : 0, text};
        }
        intv_value difference = {.qualifier = static_cast<int16_t>(q.word()), .value = {}};
        const int code = dtsub(&x, &y, &difference);
        ASSERT_EQ((outcome{code, plain::text_of(difference)}), wanted)
            << plain::text_of(x) << " - " << plain::text_of(y) << " word " << q.word();
        good += code == 0;
    }
    rdtsetcurr(nullptr);
    EXPECT_GT(good, cases / 5);
}

TEST(Interval, ConversionsFoldAndCutLikeIntegers) {
    std::mt19937_64 random(77);
    const std::vector<words> spans = plain::intervals(12);
    const long cases = random_cases(300000);
    for (long i = 0; i < cases; ++i) {
        const words &from = spans[random() % spans.size()];
        const words &to = spans[random() % spans.size()];
        const ticks value = any_interval(random, from, spans, first_count(from));
        const intv_value source = interval(value, from);
        outcome wanted = {err_dt_incompatible, ""};
        if ((from.start <= unit_month) == (to.start <= unit_month) &&
            (from.start == unit_fraction ? +unit_fraction1 : from.start) <= to.end) {
            const std::string text = plain::interval_text(value, to);
            wanted = {text.empty() ? err_intv_overflow : 0, text};
        }
        intv_value target = {.qualifier = static_cast<int16_t>(to.word()), .value = {}};
        const int code = invextend(&source, &target);
        ASSERT_EQ((outcome{code, plain::text_of(target)}), wanted)
            << plain::interval_text(value, from) << " word " << from.word() << " to " << to.word();
        dec_value count;
        intv_value back = {.qualifier = source.qualifier, .value = {}};
        rinvtodec(&source.value, source.qualifier, &count);
        ASSERT_EQ(rdectoinv(&count, &back.value, back.qualifier), 0);
        ASSERT_EQ(plain::text_of(back), plain::text_of(source));
    }
}

// Scaling by integers, which decimals hold exactly: the plain product or quotient, cut.
TEST(Interval, ScalingIsExactAndCut) {
    std::mt19937_64 random(78);
    const std::vector<words> spans = plain::intervals(9);
    const long cases = random_cases(200000);
    for (long i = 0; i < cases; ++i) {
        const words &q = spans[random() % spans.size()];
        const ticks value = any_interval(random, q, spans, first_count(q));
        const intv_value source = interval(value, q);
        const auto number = static_cast<int32_t>(1 + plain::any_count(random, 100000));
        dec_value factor;
        deccvlong(number, &factor);
        intv_value result = source;
        ASSERT_EQ(invdivdec(&source, &factor, &result), 0);
        // The quotient has 16 digit bytes, which is beyond any interval's last digit; it is cut.
        ticks unit = q.end > unit_second ? 1 : plain::ticks_of(q.end);
        for (int k = q.decimals(); q.end > unit_second && k < 5; ++k)
            unit *= 10;
        ASSERT_EQ(plain::text_of(result), plain::interval_text(value / unit / number * unit, q))
            << plain::interval_text(value, q) << " / " << number << " word " << q.word();
        const int code = invmuldec(&source, &factor, &result);
        std::string text = plain::interval_text(value * number, q);
        if (q.start != unit_fraction && text.empty() == (code == 0))
            ADD_FAILURE() << plain::interval_text(value, q) << " * " << number << ": " << code;
        ASSERT_EQ(code, text.empty() ? err_intv_overflow : 0);
        ASSERT_EQ(plain::text_of(result), text);
        double ratio;
        const intv_value one =
            interval(unit * 7, q.width > 1 || q.end > q.start ? q : words{q.start, q.end, 1});
        ASSERT_EQ(invdivinv(&source, &one, &ratio), 0);
        ASSERT_DOUBLE_EQ(ratio, static_cast<double>(static_cast<int64_t>(value / unit)) / 7);
    }
}

// Worked by hand, as the rules of calendars and of this arithmetic have it.
TEST(DatetimeSum, RowsWorkedByHand) {
    const struct {
        int word;
        int interval_word;
        const char *value;
        const char *interval;
        int code;
        const char *wanted;
    } rows[] = {
        {2052, 0x0222, "2024-01-31", "1", 0, "2024-02-29"},
        {2052, 0x0222, "2023-01-31", "1", 0, "2023-02-28"},
        {2052, 0x0222, "2024-03-31", "-1", 0, "2024-02-29"},
        {2052, 0x0222, "2024-05-31", "1", 0, "2024-06-30"},
        {2052, 0x0400, "2024-02-29", "1", 0, "2025-02-28"},
        {2052, 0x0400, "2024-02-29", "-4", 0, "2020-02-29"},
        {2052, 0x0400, "1900-02-28", "100", 0, "2000-02-28"},
        {2052, 0x0400, "2000-02-29", "-100", 0, "1900-02-28"},
        {2052, 0x0222, "2024-12-31", "2", 0, "2025-02-28"},
        {0x0424, 0x0222, "01-31", "1", 0, "02-29"},        // no year is known
        {0x0424, 0x0244, "12-31", "1", err_dt_result, ""}, // the year would change
        {0x0424, 0x0244, "02-29", "1", err_date_day, ""},  // not in the present year
        {2052, 0x0244, "9999-12-31", "1", err_date_year, ""},
        {2052, 0x0244, "0001-01-01", "-1", err_date_year, ""},
        {0x0602, 0x0222, "9999-12", "1", err_dt_result, ""},
        {0x0602, 0x0222, "0001-01", "-1", err_dt_result, ""},
        {0x0602, 0x0222, "2024-12", "12", 0, "2025-12"},
        {3594, 0x06aa, "2024-01-01 00:00:00", "-100000", 0, "2023-12-30 20:13:20"},
        {4365, 973, "2024-02-28 23:59:59.999", ".001", 0, "2024-02-29 00:00:00.000"},
        {973, 973, ".999", ".001", err_dt_result, ""},
        {973, 0x02aa, ".500", "1", err_dt_result, ""}, // a second is left over
        {973, 0x02aa, ".500", "0", 0, ".500"},
        {4365, 0x05cf, "2024-02-28 23:59:59.999", ".00000", err_dt_incompatible, ""},
        {2052, 0x1444, "2024-01-31", "10000000000", err_intv_overflow, ""},
    };
    set_present();
    for (const auto &row : rows) {
        SCOPED_TRACE(std::string(row.value) + " + " + row.interval);
        dtime_value value = {.qualifier = static_cast<int16_t>(row.word), .value = {}};
        intv_value span = {.qualifier = static_cast<int16_t>(row.interval_word), .value = {}};
        ASSERT_EQ(dtcvasc(row.value, &value), 0);
        ASSERT_EQ(incvasc(row.interval, &span), 0);
        EXPECT_EQ(dtaddinv(&value, &span, &value), row.code);
        EXPECT_EQ(plain::text_of(value), row.wanted);
    }
    rdtsetcurr(nullptr);
}

// Records from a row may hold what no operation made: every answer is defined, and a day of 0 is the
// one failure that leaves the result as it was.
TEST(DatetimeSum, FieldsOutOfRangeAreAnswered) {
    std::mt19937_64 random(11);
    const std::vector<words> all = plain::datetimes();
    const std::vector<words> spans = plain::intervals(24);
    const auto any_record = [&] {
        dec_value made;
        unsigned char bytes[16];
        for (unsigned char &byte : bytes)
            byte = static_cast<unsigned char>(random() % 100);
        decload(&made, static_cast<int>(random() % 2), static_cast<int>(random() % 20) - 4, bytes,
                static_cast<int>(random() % 17));
        return made;
    };
    set_present();
    for (long i = random_cases(400000); i > 0; --i) {
        const int d = all[random() % all.size()].word();
        const int e = all[random() % all.size()].word();
        const int q = spans[random() % spans.size()].word();
        const dec_value a = any_record();
        const dec_value b = any_record();
        dec_value out;
        char text[rdtimestr_size];
        const int codes[] = {rdtaddinv(&a, d, &b, q, &out),
                             rdtsub(&a, d, &b, e, &out, q),
                             rdtextend(&a, d, &out, e),
                             rinvcopy(&a, q, &out, q),
                             rdtimestr(&a, d, text),
                             rinvstr(&a, q, text),
                             chk_dtinv(&a, d, 1)};
        for (const int code : codes)
            ASSERT_TRUE(code == 0 || (code <= err_date_year && code >= err_dt_qualifier)) << code;
    }
    rdtsetcurr(nullptr);
    dec_value day_zero = {};
    const unsigned char bytes[] = {20, 24, 1, 0};
    dtpack(&day_zero, qualifier_year_to_day, bytes, 1);
    const intv_value month = interval(1, {unit_month, unit_month, 2});
    dec_value result = day_zero;
    EXPECT_EQ(rdtaddinv(&day_zero, qualifier_year_to_day, &month.value, month.qualifier, &result),
              err_dt_result);
    EXPECT_EQ(deccmp(&result, &day_zero), 0);
}

} // namespace
