// Plain texts of datetimes and intervals.

#include <kestrion/datetime_text.h>

#include "support/random_cases.h"
#include "values/datetime/plain_values.h"
#include <kestrion/datetime_now.h>
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>

#include <gtest/gtest.h>

namespace {

using plain::words;

struct text_row {
    int word;
    int code;
    const char *text;
    const char *written; // of the result; null: NULL
};

// The present of these rows is 15 March 2024.
void set_present() {
    dec_value now;
    ASSERT_EQ(rstrdtime("2024-03-15 10:20:30.12345", &now, qualifier_year_to_fraction5), 0);
    rdtsetcurr(&now);
}

void expect_rows(const text_row *rows, size_t count, bool interval) {
    for (size_t i = 0; i < count; ++i) {
        const text_row &row = rows[i];
        SCOPED_TRACE(std::string(row.text) + " as " + std::to_string(row.word));
        dec_value value = {};
        char text[rdtimestr_size];
        EXPECT_EQ(interval ? rstrinv(row.text, &value, row.word)
                           : rstrdtime(row.text, &value, row.word),
                  row.code);
        EXPECT_EQ(get_toerrno(), row.code);
        interval ? rinvstr(&value, row.word, text) : rdtimestr(&value, row.word, text);
        EXPECT_STREQ(text, row.written != nullptr ? row.written : "");
        EXPECT_EQ(value.sign == dec_null_sign, row.written == nullptr);
    }
}

constexpr int y_d = qualifier_year_to_day, y_m = 0x0602, y_y = 0x0400, h_m = 1128, h_s = 0x066a,
              y_s = qualifier_year_to_second, h_f3 = 0x096d, f3 = 973, m_d = 0x0424;

TEST(DatetimeText, ReadsItsFieldsAndNothingElse) {
    const text_row rows[] = {
        {y_d, 0, "2024-02-29", "2024-02-29"},
        {y_d, 0, " \t2024- 2- 9\n", "2024-02-09"},
        {y_d, 0, "999-01-01", "0999-01-01"},                   // three digits are a year
        {y_d, err_dt_field_range, "2024-02-30", "2024-02-30"}, // refused as a whole: still there
        {y_d, err_dt_field_range, "2023-2-29", "2023-02-29"},
        {y_d, err_dt_field_range, "2024-00-01", "2024-00-01"},
        {y_d, err_dt_field_range, "0000-01-01", "0000-01-01"},
        {y_d, err_dt_field_range, "2024-13-01", nullptr},
        {y_d, err_dt_field_range, "2024-011-01", nullptr}, // a third digit where "-" belongs
        {y_d, err_dt_extra, "2024-01-011", nullptr},       // after the last field it is left over
        {y_d, err_dt_first_field, "20241-01-01", nullptr},
        {y_d, err_dt_character, "2024 -01-01", nullptr},
        {y_d, err_dt_character, "2024/01/01", nullptr},
        {y_d, err_dt_character, "2024-01", nullptr},
        {y_d, err_dt_character, "x", nullptr},
        {y_d, 0, "", nullptr},
        {y_d, 0, " \n", nullptr},
        {y_m, 0, "2024-02-", "2024-02"}, // the delimiter after the last field is eaten
        {y_y, 0, "2024-", "2024"},
        {h_m, 0, "12:30:", "12:30"},
        {h_m, err_dt_field_range, "24:00", "24:00"},
        {h_s, err_dt_character, "12:30", nullptr},
        {h_s, 0, "12:30:45.", "12:30:45"},
        {y_s, err_dt_extra, "2024-02-29 12:30:45.5", nullptr},
        {h_f3, 0, "12:30:45", "12:30:45.000"},
        {h_f3, 0, "12:30:45.", "12:30:45.000"},
        {h_f3, 0, "12:30:45.7", "12:30:45.700"},
        {h_f3, err_dt_extra, "12:30:45.1234", nullptr},
        {h_f3, err_dt_character, "12:30:45 ", nullptr},
        {f3, 0, ".5", ".500"},
        {f3, 0, "00.25", ".250"},
        {f3, err_dt_fraction, "0", nullptr},
        {f3, err_dt_fraction, "x", nullptr},
        {f3, err_dt_field_range, "1.5", nullptr},
        {m_d, 0, "02-29", "02-29"}, // no year is known
        {m_d, err_dt_field_range, "02-30", "02-30"},
        // Years of two digits: the century is chosen before what follows is looked at.
        {y_d, 0, "24-03-01", "2024-03-01"},
        {y_d, err_dt_field_range, "24-02-30", "2024-02-30"},
        {y_d, err_date_month, "24-00-01x", nullptr},
        {y_d, err_date_day, "24-01-00", nullptr},
        {y_d, err_date_day, "24-01-45x", nullptr},
        {y_m, 0, "7-02", "2007-02"},
        {0x0844, err_dt_qualifier, "1", nullptr},
    };
    set_present();
    expect_rows(rows, std::size(rows), false);
    rdtsetcurr(nullptr);
}

TEST(IntervalText, ReadsAnyWidthAndASign) {
    constexpr int d3_h = 1350, h3_m = 0x0568, y4_m = 1538, d3 = 0x0344, s20 = 0x14aa;
    const text_row rows[] = {
        {d3_h, 0, "  -5 01", "  -5 01"},
        {d3_h, 0, "- 5 1", "  -5 01"},
        {d3_h, 0, "100 23", " 100 23"},
        {d3_h, err_dt_first_field, "0005 01", nullptr},
        {d3_h, err_dt_field_range, "005 24", "   5 24"},
        {d3_h, err_dt_character, "+5 01", nullptr},
        {d3_h, err_dt_character, "--5 01", nullptr},
        {h3_m, 0, "100:59", " 100:59"},
        {h3_m, err_dt_field_range, "-100:60", "-100:60"},
        {y4_m, 0, "0-11", "    0-11"},
        {y4_m, err_dt_field_range, "1-12", "    1-12"},
        {d3, 0, "0", "   0"},
        {d3, 0, "-0", "  -0"},
        {d3, 0, "", nullptr},
        {s20, 0, "12345678901234567890", " 12345678901234567890"},
        {f3, 0, "-.25", "-.250"},
        {y_d, err_dt_qualifier, "1", nullptr}, // years do not mix with days
    };
    expect_rows(rows, std::size(rows), true);
}

// Every qualifier, through text and back, beside a plain writer.
TEST(DatetimeText, EveryQualifierWritesAndReads) {
    std::mt19937_64 random(3);
    for (const words &q : plain::datetimes()) {
        for (int i = 0; i < 300; ++i) {
            const plain::fields value = plain::cut(plain::any_moment(random), q);
            dtime_value read = {.qualifier = static_cast<int16_t>(q.word()), .value = {}};
            ASSERT_EQ(dtcvasc(value.text(q).c_str(), &read), 0) << value.text(q) << ' ' << q.word();
            ASSERT_EQ(plain::text_of(read), value.text(q)) << q.word();
        }
    }
    for (const words &q : plain::intervals(24)) {
        for (int i = 0; i < 60; ++i) {
            // Any digits in the first field, which has no range; later fields in theirs.
            std::string text;
            const int digits =
                q.start == unit_fraction
                    ? 0
                    : 1 + static_cast<int>(random() % static_cast<unsigned>(q.width));
            for (int k = 0; k < digits; ++k)
                text += static_cast<char>('0' + (k == 0 ? 1 + random() % 9 : random() % 10));
            std::string wanted(
                static_cast<size_t>(q.start == unit_fraction ? 1 : q.width - digits + 1), ' ');
            const bool negative = random() % 2 == 0;
            for (int unit = q.start + 2; unit <= q.last(); unit += 2) {
                constexpr int ranges[] = {0, 12, 0, 24, 60, 60};
                char piece[8];
                snprintf(piece, sizeof piece, "%c%02d", "-- ::."[unit / 2 - 1],
                         static_cast<int>(random() % static_cast<unsigned>(ranges[unit / 2])));
                text += piece;
            }
            if (q.decimals() > 0) {
                text += '.';
                for (int k = 0; k < q.decimals(); ++k)
                    text += static_cast<char>('0' + (k == 0 ? 1 + random() % 9 : random() % 10));
            }
            wanted += text;
            if (negative)
                wanted[wanted.find_first_not_of(' ') - 1] = '-';
            intv_value read = {.qualifier = static_cast<int16_t>(q.word()), .value = {}};
            ASSERT_EQ(incvasc(wanted.c_str(), &read), 0) << wanted << ' ' << q.word();
            ASSERT_EQ(plain::text_of(read), wanted) << q.word();
        }
    }
}

// The comparison of decimals orders the values of one qualifier as time does.
TEST(DatetimeText, DecimalsAreInTheOrderOfTime) {
    std::mt19937_64 random(31);
    const std::vector<words> all = plain::datetimes();
    for (long i = random_cases(100000); i > 0; --i) {
        const words &q = all[random() % all.size()];
        const plain::fields a = plain::cut(plain::any_moment(random), q);
        const plain::fields b = plain::cut(plain::any_moment(random), q);
        const dtime_value x = plain::datetime(a, q);
        const dtime_value y = plain::datetime(b, q);
        const int wanted = a.text(q).compare(b.text(q));
        ASSERT_EQ(deccmp(&x.value, &y.value), (wanted > 0) - (wanted < 0))
            << a.text(q) << ' ' << b.text(q);
    }
}

TEST(DatetimeText, CenturyLettersChooseBesideToday) {
    const struct {
        char letter;
        const char *text;
        const char *wanted;
    } rows[] = {
        {'R', "24-03-15", "2024-03-15"}, {'C', "24-03-15", "2024-03-15"},
        {'P', "24-03-15", "1924-03-15"}, {'F', "24-03-15", "2124-03-15"},
        {'P', "24-03-14", "2024-03-14"}, {'F', "24-03-16", "2024-03-16"},
        {'C', "74-03-15", "2074-03-15"}, {'C', "74-03-16", "1974-03-16"},
        {'R', "99-12-31", "2099-12-31"}, {'x', "99-12-31", "2099-12-31"},
    };
    set_present();
    for (const auto &row : rows) {
        dtime_value value = {.qualifier = y_d, .value = {}};
        EXPECT_EQ(qvt_dtcvasc(row.text, &value, row.letter), 0) << row.letter << row.text;
        EXPECT_EQ(plain::text_of(value), row.wanted) << row.letter;
    }
    // What the text doesn't say is today's, cut to the month.
    dec_value end_of_march;
    rstrdtime("2024-03-31 00:00:00.00000", &end_of_march, qualifier_year_to_fraction5);
    rdtsetcurr(&end_of_march);
    dtime_value month = {.qualifier = y_m, .value = {}};
    EXPECT_EQ(qvt_dtcvasc("24-02", &month, 'P'), 0);
    EXPECT_EQ(plain::text_of(month), "2024-02");
    EXPECT_EQ(qvt_dtcvasc("24-04", &month, 'P'), 0);
    EXPECT_EQ(plain::text_of(month), "1924-04");
    rdtsetcurr(nullptr);
}

TEST(Extension, FillsFromThePresentAndWithTheLeast) {
    const struct {
        int from;
        int to;
        const char *text;
        const char *wanted;
    } rows[] = {
        {h_m, y_s, "10:20", "2024-03-15 10:20:00"},
        {h_m, 0x084a, "10:20", "15 10:20:00"},
        {y_m, y_d, "2023-02", "2023-02-01"},
        {y_y, y_s, "2023", "2023-01-01 00:00:00"},
        {y_d, h_m, "2023-02-03", "00:00"},
        {y_d, y_y, "2023-02-03", "2023"},
        {y_s, 0x0624, "2023-02-03 04:05:06", ""}, // not a word
        {y_s, 0x0868, "2023-02-03 04:05:06", ""},
        {m_d, y_d, "02-29", "2024-02-29"},
        {f3, 0x05ad, ".567", "30.567"}, // the present second, which a fraction alone hasn't
        {f3, 0x01cb, ".567", ".5"},
        {h_m, y_m, "10:20", "2024-03"},
        {qualifier_year_to_fraction5, f3, "2023-02-03 04:05:06.78915", ".789"},
    };
    set_present();
    for (const auto &row : rows) {
        dtime_value value = {.qualifier = static_cast<int16_t>(row.from), .value = {}};
        dtime_value target = {.qualifier = static_cast<int16_t>(row.to), .value = {}};
        ASSERT_EQ(dtcvasc(row.text, &value), 0) << row.text;
        EXPECT_EQ(dtextend(&value, &target), *row.wanted != '\0' ? 0 : err_dt_qualifier);
        EXPECT_EQ(plain::text_of(target), row.wanted) << row.text;
    }
    rdtsetcurr(nullptr);
}

} // namespace
