// Values into columns and back, over every pair of types.

#include <kestrion/value.h>
#include <kestrion/value_steps.h>
#include <kestrion/value_text.h>

#include <kestrion/date.h>
#include <kestrion/datetime_now.h>
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "values/convert/cells.h"

namespace {

using cells::cell;
using cells::hex;

constexpr int ymd = qualifier_year_to_day;
constexpr int ymdhms = qualifier_year_to_second;
constexpr int days_hours = qualifier_word(5, unit_day, unit_hour);

struct stored {
    int code;
    std::string bytes;
};

// Bytes past what was written stay "ee".
stored store(value_rec &v, int column_type, int word, size_t shown) {
    std::vector<unsigned char> column(300, 0xEE);
    const int code = rvaldata(&v, column.data(), column_type, word);
    return {code, hex(column.data(), shown)};
}

// -- Which type becomes which --------------------------------------------------------------------

// Answers of one source for the nine steps, one letter a step: + converts, - err_no_conversion,
// b err_blob_place.
struct step_row {
    int type;
    const char *text;
    int word;
    const char
        *answers; // toint tolong tobigint toint8 todouble todecimal todate todatetime tointerval
};

constexpr step_row step_rows[] = {
    {0, "1", 0, "+++++++++"},
    {13, "1", 0, "+++++++++"},
    {15, "1", 0, "+++++++++"},
    {16, "1", 0, "+++++++++"},
    {43, "1", 0, "+++++++++"},
    {1, "1", 0, "+++++++--"},
    {2, "1", 0, "+++++++--"},
    {6, "1", 0, "+++++++--"},
    {7, "1", 0, "++++++++-"},
    {3, "1", 0, "+++++++--"},
    {4, "1", 0, "+++++++--"},
    {5, "1", 0, "+++++++-+"},
    {8, "1", 0, "+++++++--"},
    {17, "1", 0, "+++++++--"},
    {18, "1", 0, "+++++++--"},
    {52, "1", 0, "+++++++--"},
    {53, "1", 0, "+++++++--"},
    {11, "", 0, "bbbbbbbbb"},
    {12, "", 0, "bbbbbbbbb"},
    {40, "1", 0, "---------"},
    {41, "1", 0, "---------"},
    {45, "t", 0, "---------"},
    {19, "", 0, "---------"},
    {23, "", 0, "---------"},
    {42, "1", 0, "---------"},
    {51, "1", 0, "---------"},
    {30, "1", 0, "---------"},
    {10, "2024-02-29", ymd, "------++-"},
    {14, "1 02", days_hours, "--------+"},
    {9, "", 0, "+++++++++"},
    {5, nullptr, 0, "+++++++++"},
    {12, nullptr, 0, "+++++++++"},
    {30, nullptr, 0, "+++++++++"},
};

int step(int number, const value_rec &v) {
    int32_t integer;
    int64_t bigint;
    int8_value int8;
    double real;
    dec_value decimal;
    switch (number) {
    case 0:
        return toint(&v, &integer);
    case 1:
        return tolong(&v, &integer);
    case 2:
        return tobigint(&v, &bigint);
    case 3:
        return toint8(&v, &int8);
    case 4:
        return todouble(&v, &real);
    case 5:
        return todecimal(&v, &decimal);
    case 6:
        return todate(&v, &integer);
    case 7:
        return todatetime(&v, ymd, &decimal);
    default:
        return tointerval(&v, days_hours, &decimal);
    }
}

TEST(ConversionMatrix, EveryStepTakesItsSourcesAlone) {
    for (const step_row &row : step_rows)
        for (int number = 0; number < 9; ++number) {
            const value_rec v = cell(row.type, row.text, row.word);
            const int code = step(number, v);
            const char got = code == err_no_conversion ? '-' : code == err_blob_place ? 'b' : '+';
            EXPECT_EQ(got, row.answers[number]) << row.type << " step " << number;
            EXPECT_EQ(get_toerrno(), code) << row.type << " step " << number;
        }
}

// -- What is stored ------------------------------------------------------------------------------

struct column_row {
    int type;
    const char *text; // null: NULL
    int word;
    int column;
    int column_word;
    int code;
    const char *bytes;
};

constexpr int not_null = column_not_null;

constexpr column_row column_rows[] = {
    // char: cut silently, padded with blanks
    {0, "abc", 0, 0, 2, 0, "61 62 ee"},
    {0, "a", 0, 15, 3, 0, "61 20 20 ee"},
    {0, "", 0, 0, 2, 0, "20 20 ee"},
    {0, "", 0, 0 | not_null, 2, -1225, "ee ee"},
    {0, nullptr, 0, 0, 3, 0, "00 20 20 ee"},
    {0, nullptr, 0, 0 | not_null, 3, -1225, "ee"},
    {2, "-12", 0, 0, 5, 0, "2d 31 32 20 20 ee"},
    {2, "123456", 0, 0, 5, -1207, "2a 2a 2a 2a 2a ee"},
    {45, "t", 0, 0, 2, 0, "74 20 ee"},
    {43, "abc", 0, 0, 2, 0, "61 62 ee"},
    {40, "x", 0, 0, 2, -1260, "20 20 ee"},
    {0, "abc", 0, 0, 0, 0, "ee"},
    {0, "abc", 0, 0, -5, 0, "ee"},
    // varchar: zero bytes follow a text, blanks follow a number
    {0, "ab ", 0, 13, 5, 0, "03 61 62 20 00 00 ee"},
    {2, "7", 0, 13, 5, 0, "01 37 20 20 20 20 ee"},
    {0, "abcdef", 0, 16, 5, 0, "05 61 62 63 64 65 ee"},
    {0, nullptr, 0, 13, 3, 0, "01 00 00 00 ee"},
    {0, nullptr, 0, 13, 0, 0, "01 00 ee"},
    {0, "abc", 0, 13, 0, 0, "00 ee"},
    // integers
    {1, "-2", 0, 1, 0, 0, "ff fe ee"},
    {0, "32767", 0, 1, 0, 0, "7f ff ee"},
    {0, "-32768", 0, 1, 0, -1214, "80 00 ee"},
    {0, "99999999999", 0, 1, 0, -1215, "00 00 ee"},
    {0, "abc", 0, 2, 0, -1213, "80 00 00 00 ee"},
    {0, "1e200", 0, 2, 0, -1213, "80 00 00 00 ee"},
    {0, "  ", 0, 2, 0, 0, "80 00 00 00 ee"},
    {0, "  ", 0, 2 | not_null, 0, -1225, "80 00 00 00 ee"},
    {0, "1.9", 0, 6, 0, 0, "00 00 00 01 ee"},
    {2, "-2147483648", 0, 2, 0, -1215, "80 00 00 00 ee"},
    {52, "2147483648", 0, 2, 0, -1215, "80 00 00 00 ee"},
    {52, "4294967297", 0, 2, 0, -1215, "00 00 00 01 ee"},
    {3, "1e300", 0, 2, 0, -1215, "80 00 00 00 ee"},
    {3, "-1.9", 0, 52, 0, 0, "ff ff ff ff ff ff ff ff ee"},
    {3, "-1.9", 0, 17, 0, 0, "ff ff 00 00 00 00 00 00 00 02 ee"},
    {5, "-1.9", 0, 17, 0, 0, "ff ff 00 00 00 00 00 00 00 01 ee"},
    {2, "-5", 0, 17, 0, 0, "ff ff 00 00 00 00 00 00 00 05 ee"},
    {0, nullptr, 0, 18, 0, 0, "00 00 00 00 00 00 00 00 00 00 ee"},
    {0, "9223372036854775808", 0, 52, 0, -1215, "80 00 00 00 00 00 00 00 ee"},
    // floats, in network order
    {2, "1", 0, 3, 0, 0, "3f f0 00 00 00 00 00 00 ee"},
    {0, "1e400", 0, 3, 0, -1223, "ff ff ff ff ff ff ff ff ee"},
    {3, "nan", 0, 3, 0, -1223, "ff ff ff ff ff ff ff ff ee"},
    {0, " ", 0, 3, 0, 0, "ff ff ff ff ff ff ff ff ee"},
    {3, "1.5", 0, 4, 0, 0, "3f c0 00 00 ee"},
    {0, "1e400", 0, 4, 0, -1222, "ff ff ff ff ee"},
    {3, "1e-40", 0, 4, 0, -1222, "ff ff ff ff ee"},
    {3, "3.5e38", 0, 4, 0, -1222, "ff ff ff ff ee"},
    {10, "2024-02-29", ymd, 3, 0, -1260, "ff ff ff ff ff ff ff ff ee"},
    // decimals
    {0, "99.995", 0, 5, 0x0502, 0, "c2 01 00 00 ee"},
    {0, "999.995", 0, 5, 0x0502, -1226, "00 00 00 00 ee"},
    {0, "0.001", 0, 5, 0x0303, 0, "bf 0a 00 ee"},
    {0, "$1", 0, 5, 0x0502, -1213, "00 00 00 00 ee"},
    {2, "1", 0, 5, 0x2100, -1226, "ee"},
    {2, "1", 0, 5, 0x2000, 0, "c1 01 00 00"},
    // dates: days since the end of 1899
    {2, "2958464", 0, 7, 0, 0, "00 2d 24 80 ee"},
    {2, "2958465", 0, 7, 0, -1210, "80 00 00 00 ee"},
    {2, "-693594", 0, 7, 0, 0, "ff f5 6a a6 ee"},
    {2, "-693595", 0, 7, 0, -1210, "80 00 00 00 ee"},
    {10, "1900-01-01", ymd, 7, 0, 0, "00 00 00 01 ee"},
    {14, "1 02", days_hours, 7, 0, -1260, "80 00 00 00 ee"},
    // datetimes and intervals
    {7, "1", 0, 10, ymd, 0, "c7 13 00 01 01 ee"},
    {2, "1", 0, 10, ymd, -1260, "00 00 00 00 00 ee"},
    {10, "2024-02-29", ymd, 10, ymdhms, 0, "c7 14 18 02 1d 00 00 00 ee"},
    {2, "1", 0, 10, 0x1a04, -1226, "ee"},
    {7, "1", 0, 10, 0x0840, -1268, "00 00 00 00 00 ee"},
    {5, "12.345", 0, 14, days_hours, 0, "c1 0c 22 32 ee"},
    {8, "1", 0, 14, days_hours, -1260, "00 00 00 00 ee"},
    // binary
    {45, "t", 0, 45, 1, 0, "00 00 00 00 01 01 ee"},
    {0, "F", 0, 45, 1, 0, "00 00 00 00 01 00 ee"},
    {0, "tt", 0, 45, 1, -1260, "ee"},
    {2, "1", 0, 45, 1, -1260, "ee"},
    {9, "", 0, 45, 1, 0, "01 00 00 00 00 ee"},
    {0, "abc", 0, 43, 2, 0, "00 00 00 00 02 61 62 ee"},
    {43, "abc", 0, 43, 2, -1821, "ee"},
    {5, "1.5", 0x0301, 43, 0, 0, "00 00 00 00 03 31 2e 35 ee"},
    {41, "x", 0, 43, 0, -1260, "ee"},
    {0, nullptr, 0, 43, 9, 0, "01 00 00 00 00 ee"},
    {40, "ab", 0, 40, 2, 0, "00 00 00 00 02 61 62 ee"},
    {40, "abc", 0, 40, 2, -1821, "ee"},
    {41, "a", 0, 40, 2, -1260, "ee"},
    // what has no stored form, and blobs out of place
    {2, "1", 0, 9, 0, -1285, "ee"},
    {2, "1", 0, 99, 0, -1285, "ee"},
    {11, "", 0, 2, 0, -608, "ee"},
    {2, "1", 0, 12, 112, -608, "ee"},
    {9, "", 0, 12, 111, -1821, "ee"},
    {9, "", 0, 12, 112, 0, "0c 00 00 00 01 00 00 00"},
    {2, "1", 0, 19, 0, -9602, "ee"},
};

TEST(Columns, StoreEachSourceAsItsColumnWantsIt) {
    qvtGEN_setFloatType(1);
    for (const column_row &row : column_rows) {
        value_rec v = cell(row.type, row.text, row.word);
        const stored got = store(v, row.column, row.column_word, (strlen(row.bytes) + 1) / 3);
        EXPECT_EQ(got.code, row.code) << row.type << " '" << (row.text ? row.text : "NULL")
                                      << "' into " << row.column << ", " << row.column_word;
        EXPECT_EQ(got.bytes, row.bytes) << row.type << " '" << (row.text ? row.text : "NULL")
                                        << "' into " << row.column << ", " << row.column_word;
    }
}

TEST(Columns, RefuseLongTextInAnAnsiDatabaseBlanksAside) {
    gen_setansidb(1);
    for (int column : {0, 13, 43}) {
        value_rec blanks = cell(0, "ab  "), longer = cell(0, "abc"), printed = cell(43, "abc");
        EXPECT_EQ(store(blanks, column, 2, 1).code, 0) << column;
        EXPECT_EQ(store(longer, column, 2, 1).code, -1279) << column;
        EXPECT_NE(store(printed, column, 2, 1).code, -1279) << column;
    }
    gen_setansidb(0);
}

TEST(Columns, TodayIsTheText) {
    int32_t today, date;
    rtoday(&today);
    const value_rec v = cell(0, "ToDay ");
    EXPECT_EQ(todate(&v, &date), 0);
    EXPECT_EQ(date, today);
}

// Every type that a column can hold: what it holds survives a load and a store.
TEST(Columns, GiveBackTheBytesThatValuesLeft) {
    struct {
        int type, word;
        size_t bytes;
    } const all[] = {
        {0, 9, 9},       {13, 9, 10},    {1, 0, 2},       {2, 0, 4},           {7, 0, 4},
        {17, 0, 10},     {52, 0, 8},     {3, 0, 8},       {4, 0, 4},           {5, 0x0b04, 7},
        {5, 0x10ff, 10}, {8, 0x0902, 6}, {10, ymdhms, 8}, {14, days_hours, 4}, {43, 9, 14},
        {45, 1, 6},      {40, 9, 14},
    };
    std::mt19937_64 random(8);
    int made = 0;
    for (const auto &column : all)
        for (int round = 0; round < 6000; ++round) {
            std::string text = std::to_string(static_cast<int64_t>(random()) >> (random() % 64));
            value_rec v = column.type == 10   ? cell(7, text.c_str())
                          : column.type == 14 ? cell(5, "0")
                          : column.type == 45 ? cell(45, "t")
                                              : cell(column.type == 40 ? 40 : 0, text.c_str());
            if (column.type == 10)
                v.payload.integer = static_cast<int32_t>(random() % 3000000) - 693594;
            std::vector<unsigned char> first(column.bytes, 0), second(column.bytes, 0);
            if (rvaldata(&v, first.data(), column.type, column.word) != 0)
                continue;
            value_rec loaded = {};
            ASSERT_EQ(rdataval(first.data(), column.type, column.word, &loaded), 0) << text;
            ASSERT_EQ(loaded.type, column.type);
            ASSERT_EQ(rvaldata(&loaded, second.data(), column.type, column.word), 0)
                << column.type << text;
            ASSERT_EQ(first, second) << column.type << ' ' << text;
            ++made;
        }
    EXPECT_GT(made, 40000);
}

TEST(Columns, KeepTheExtendedTypeOnRequest) {
    value_rec v = {};
    const unsigned char bytes[] = {0, 7};
    v.extended_id = 9;
    v.type = value_keep_id;
    rdataval(bytes, sql_smallint, 2, &v);
    EXPECT_EQ(v.extended_id, 9);
    v.type = 0;
    rdataval(bytes, sql_smallint, 2, &v);
    EXPECT_EQ(v.extended_id, 0);
    EXPECT_EQ(v.length_word, 1280);
}

// -- Text ----------------------------------------------------------------------------------------

struct text_row {
    int type;
    const char *text;
    int word;
    int width;
    int left;
    int code;
    const char *wanted;
};

constexpr text_row text_rows[] = {
    {1, "123", 0, 5, 0, 0, "  123"},
    {2, "123456", 0, 5, 0, -1207, "*****"},
    {52, "-9223372036854775807", 0, 0, 0, 0, "-9223372036854775807"},
    {17, "42", 0, 4, 0, 0, "  42"},
    {0, "abc", 0, 2, 0, 0, "ab"},
    {0, "abc", 0, 5, 0, 0, "abc  "},
    {0, "abc", 0, 0, 0, 0, "abc"},
    {5, nullptr, 0, 3, 0, 0, "   "},
    {5, nullptr, 0, 0, 0, 0, ""},
    {45, "t", 0, 3, 0, 0, "t  "},
    {45, "f", 0, 0, 0, 0, "f"},
    {3, "0", 0, 8, 1, 0, "0.00    "},
    {3, "0.1", 0, 8, 0, 0, "     0.1"},
    {3, "1.5", 0, 14, 1, 0, "1.500000000000"},
    {3, "1e-130", 0, 20, 1, 0, "0.0000000000000000  "},
    {3, "1e-130", 0, 8, 1, 0, "1e-130  "},
    {3, "1.5e124", 0, 10, 1, 0, "1.50e+124 "},
    {3, "-1.5e200", 0, 10, 1, 0, "-1e+200   "},
    {3, "inf", 0, 10, 1, -1223, "          "},
    {5, "1.5", 0x10ff, 30, 1, 0, "1.5000000000000000            "},
    {5, "1.5", 0x0502, 3, 1, 0, "1.5"},
    {5, "12345.678", 0x0803, 6, 0, 0, " 12346"},
    {5, "-0.001", 0x0502, 3, 0, -1207, "***"},
    {10, "2024-02-29", ymd, 12, 0, 0, "  2024-02-29"},
    {10, "2024-02-29", ymd, 9, 0, -1207, "*********"},
    {14, "1 02", days_hours, 0, 0, 0, "   1 02"},
    {7, "1", 0, 12, 1, 0, "01/01/1900  "},
    {40, "abc", 0, 3, 0, -1260, "   "},
    {0, "abc", 0, -1, 0, -1207, ""},
};

TEST(ValueText, FillsItsField) {
    for (const text_row &row : text_rows) {
        value_rec v = cell(row.type, row.text, row.word);
        char buffer[100];
        memset(buffer, '#', sizeof buffer);
        EXPECT_EQ(rvalstr(&v, buffer, row.width, row.left), row.code) << row.wanted;
        const size_t length = strlen(row.wanted);
        EXPECT_EQ(std::string_view(buffer, length), row.wanted) << row.type;
        EXPECT_EQ(buffer[length + (row.width == 0 ? 1 : 0)], '#') << row.wanted;
    }
    value_rec date = cell(7, "1");
    char text[81];
    rvalstr(&date, text, 0, 1);
    EXPECT_EQ(date.payload.text.text_length, 10);
}

TEST(ValueText, WidthsSufficeForTheWidestValue) {
    EXPECT_EQ(rtypwidth(5, 0x0303), 6);
    EXPECT_EQ(rtypwidth(5, 0x0502), 7);
    EXPECT_EQ(rtypwidth(5, 0x10ff), 23);
    EXPECT_EQ(rtypwidth(10, qualifier_year_to_fraction3), 23);
    EXPECT_EQ(rtypwidth(10, qualifier_word(3, unit_fraction, unit_fraction3)), 4);
    EXPECT_EQ(rtypwidth(14, days_hours), 7);
    EXPECT_EQ(rtypwidth(13, 300), 255);
    EXPECT_EQ(rtypwidth(100, 5), 0);
}

TEST(ValueText, ReadsIntegersToTheirLimits) {
    struct {
        const char *text;
        int code_i, code_l;
        int64_t value;
    } const rows[] = {
        {"32767", 0, 0, 32767},
        {"32768", -1214, 0, 32768},
        {"-32767", 0, 0, -32767},
        {"-32768", -1214, 0, -32768},
        {"12a", -1213, -1213, 7},
        {"12 a", 0, 0, 12},
        {"-", -1213, -1213, 7},
        {"+ 1", -1213, -1213, 7},
        {" 5\n", 0, 0, 5},
        {"2147483647", -1214, 0, 2147483647},
        {"-2147483648", -1214, -1215, 7},
        {"99999999999999999999999", -1214, -1215, 7},
    };
    for (const auto &row : rows) {
        int32_t narrow = 7;
        int64_t wide = 7;
        EXPECT_EQ(rstoi(row.text, &narrow), row.code_i) << row.text;
        EXPECT_EQ(rstol(row.text, &wide), row.code_l) << row.text;
        EXPECT_EQ(wide, row.value) << row.text;
        EXPECT_EQ(narrow, row.code_i == 0 ? row.value : 7) << row.text;
    }
    int32_t narrow;
    int64_t wide;
    EXPECT_EQ(rstoi("  ", &narrow) + rstol("", &wide), 0);
    EXPECT_EQ(narrow, -32768);
    EXPECT_EQ(wide, INT64_C(-2147483648));
}

} // namespace
