// Qualifier words, and the bytes and decimals of values.

#include <kestrion/datetime_fields.h>

#include "values/datetime/plain_values.h"
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>
#include <kestrion/qualifier.h>

#include <gtest/gtest.h>
#include <set>

namespace {

using plain::words;

TEST(Qualifier, ExactlyTheWordsOfTheirRulesAreGood) {
    std::set<int> datetimes;
    std::set<int> intervals;
    for (const words &q : plain::datetimes())
        datetimes.insert(q.word());
    for (const words &q : plain::intervals(24))
        intervals.insert(q.word());
    EXPECT_EQ(datetimes.size(), 56u);
    EXPECT_EQ(intervals.size(), 655u);
    for (int word = -70000; word < 70000; ++word) {
        set_toerrno(7);
        const int good = static_cast<int>(datetimes.count(word));
        ASSERT_EQ(_chk_qual(0, word), good ? 0 : err_dt_qualifier) << word;
        ASSERT_EQ(_chk_qual(1, word), intervals.count(word) ? 0 : err_dt_qualifier) << word;
    }
}

TEST(Qualifier, KnowsItsUnitsAndWhatIsComputedInIt) {
    const struct {
        int type;
        int word;
        const char *text;
    } rows[] = {
        {10, qualifier_year_to_day, "year to day"},
        {14, qualifier_word(8, unit_year, unit_day), ""},
        {14, 1350, "day(3) to hour"},
        {14, qualifier_word(4, unit_day, unit_hour), "day to hour"},
        {14, qualifier_word(12, unit_day, unit_hour), "day(:) to hour"}, // 10 as one character
        {14, qualifier_word(4, unit_year, unit_year), "year to year"},
        {14, qualifier_word(2, unit_year, unit_year), "year(2) to year"},
        {14, 973, "fraction to fraction(3)"},
        {10, 4879, "year to fraction(5)"},
        {10, 1350, ""}, // a datetime has no width of its own
    };
    for (const auto &row : rows) {
        char text[rtudesc_size];
        const int length = rtudesc(row.type, row.word, text);
        EXPECT_EQ(std::string(text, static_cast<size_t>(length)), row.text) << row.word;
        if (length == 0) {
            EXPECT_EQ(get_toerrno(), err_dt_qualifier);
        }
    }
    for (const int unit : {-2, 1, 3, 9, 16, 99})
        EXPECT_STREQ(rtuname(unit), "") << unit;
    EXPECT_EQ(exprec(exprec_difference, 2052), 0x0844);
    EXPECT_EQ(exprec(exprec_difference, 0x0424), 0x0444);
    EXPECT_EQ(exprec(exprec_difference, 0x0602), 0x0602);
    EXPECT_EQ(exprec(exprec_difference, 1128), 1128);
    EXPECT_EQ(exprec(exprec_product, 1350), qualifier_word(11, unit_day, unit_hour));
    EXPECT_EQ(exprec(exprec_product, 973), 973);
    EXPECT_EQ(exprec(exprec_quotient, 1350), 1350);
}

std::string hex(const unsigned char *bytes, int count) {
    std::string text;
    char piece[4];
    for (int i = 0; i < count; ++i) {
        snprintf(piece, sizeof piece, "%02x ", bytes[i]);
        text += piece;
    }
    return text;
}

TEST(Fields, LieInTheDecimalAndInTheRowAsDocumented) {
    const struct {
        bool interval;
        int word;
        const char *text;
        int sign, exponent, ndigits;
        const char *stored;
        const char *written; // null: the same text
    } rows[] = {
        {false, 2052, "2024-02-29", 1, 7, 4, "c7 14 18 02 1d ", nullptr},
        {false, 4365, "2024-02-29 12:34:56.789", 1, 7, 9, "c7 14 18 02 1d 0c 22 38 4e 5a ",
         nullptr},
        {false, 4879, "2024-02-29 00:00:00.00001", 1, 7, 10, "c7 14 18 02 1d 00 00 00 00 00 0a ",
         nullptr},
        {false, 1128, "07:05", 1, 3, 2, "c3 07 05 ", nullptr},
        {false, 1128, "00:00", 1, -64, 0, "80 00 00 ", nullptr},
        {false, 973, ".5", 1, 0, 1, "c0 32 00 ", ".500"},
        {true, 1350, "-5 01", 0, 4, 2, "3b 5e 63 00 ", "  -5 01"},
        {true, 5199, "123456789 23:59:59.99999", 1, 8, 11, "c8 01 17 2d 43 59 17 3b 3b 63 63 5a ",
         " 123456789 23:59:59.99999"},
        {true, 1538, "12-11", 1, 6, 2, "c6 0c 0b 00 ", "   12-11"},
        {true, 2412, "-100:59:59.99", 0, 4, 5, "3b 62 63 28 28 01 ", nullptr},
        {true, 973, "-.5", 0, 0, 1, "3f 32 00 ", "-.500"},
        {true, 1350, "-0 00", 0, -64, 0, "80 00 00 00 ", "  -0 00"}, // the only negative zero
        {true, 1092, "-", 0, -64, 0, "80 00 00 ", "   -0"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text);
        dec_value value;
        ASSERT_EQ(row.interval ? rstrinv(row.text, &value, row.word)
                               : rstrdtime(row.text, &value, row.word),
                  0);
        EXPECT_EQ(value.sign, row.sign);
        EXPECT_EQ(value.exponent, row.exponent);
        EXPECT_EQ(value.ndigits, row.ndigits);
        EXPECT_EQ(decverify(&value), 0);
        unsigned char stored[16];
        const int size = ((row.word >> 8) + (row.word & 1) + 3) >> 1;
        stdecimal(&value, stored, size);
        EXPECT_EQ(hex(stored, size), row.stored);
        char text[rdtimestr_size];
        EXPECT_EQ(
            row.interval ? rinvstr(&value, row.word, text) : rdtimestr(&value, row.word, text), 0);
        EXPECT_STREQ(text, row.written != nullptr ? row.written : row.text);
    }
}

// Every qualifier through bytes and back, with the bytes that the layout gives to each field.
TEST(Fields, EveryQualifierPacksAndUnpacks) {
    std::mt19937_64 random(5);
    std::vector<words> all = plain::intervals(24);
    for (const words &q : plain::datetimes())
        all.push_back(q);
    for (const words &q : all) {
        for (int round = 0; round < 50; ++round) {
            const int count = ((q.word() >> 8) + (q.end & 1) + 1) >> 1;
            unsigned char bytes[16] = {};
            for (int i = 0; i < count; ++i)
                bytes[i] = random() % 3 == 0 ? 0 : static_cast<unsigned char>(random() % 100);
            if (q.width % 2 != 0)
                bytes[0] = static_cast<unsigned char>(bytes[0] % 10);
            unsigned char wanted[16];
            memcpy(wanted, bytes, sizeof wanted);
            if (q.end % 2 != 0)
                wanted[count - 1] = static_cast<unsigned char>(wanted[count - 1] / 10 * 10);
            const auto before = hex(bytes, 16);
            dec_value value;
            unsigned char back[16];
            ASSERT_EQ(dtpack(&value, q.word(), bytes, 1), 0);
            ASSERT_EQ(hex(bytes, 16), before) << "the array stays";
            ASSERT_EQ(decverify(&value), 0);
            dtunpack(&value, q.word(), back);
            ASSERT_EQ(hex(back, 16), hex(wanted, 16)) << q.word();
            if (value.ndigits > 0) {
                value.exponent = static_cast<int16_t>(value.exponent + 14);
                dtunpack(&value, q.word(), back);
                ASSERT_EQ(hex(back, 16), hex(std::array<unsigned char, 16>{}.data(), 16))
                    << "a larger decimal reads as zero";
            }
        }
    }
}

TEST(Fields, RangesFollowTheCalendar) {
    using namespace std::chrono;
    for (int y : {1, 4, 1900, 2000, 2023, 2024, 9999}) {
        for (int m = 0; m <= 13; ++m) {
            const unsigned char bytes[] = {static_cast<unsigned char>(y / 100),
                                           static_cast<unsigned char>(y % 100),
                                           static_cast<unsigned char>(m), 31};
            const bool month_ok = m >= 1 && m <= 12;
            const auto end = [&](int in) {
                return month_ok
                           ? static_cast<int>(static_cast<unsigned>((year{in} / m / last).day()))
                           : 0;
            };
            EXPECT_EQ(daysinmonth(bytes, 3), end(y)) << y << '-' << m;
            EXPECT_EQ(daysinmonth(bytes + 2, 1), end(2024)) << m;
            EXPECT_EQ(daysinmonth(bytes + 3, 0), 31);
            EXPECT_EQ(daysinmonth(bytes, 2), 0);
        }
    }
}

} // namespace
