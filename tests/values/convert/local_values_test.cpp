// Values as text of a locale: characters of several bytes, its radix and its amounts.

#include <kestrion/value.h>
#include <kestrion/value_text.h>
#include <kestrion/value_types.h>

#include <kestrion/startup.h>

#include <gtest/gtest.h>

#include "values/convert/cells.h"

namespace {

using cells::cell;
using cells::hex;

void start(const char *locale) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    setenv("CLIENT_LOCALE", locale, 1);
    ASSERT_EQ(chkglsinit(), 0);
}

std::string stored(int type, int length, size_t shown) {
    value_rec v = cell(sql_char, "a\xc3\xa9"
                                 "b"); // a, e acute, b
    unsigned char column[20];
    memset(column, 0xEE, sizeof column);
    EXPECT_EQ(rvaldata(&v, column, type, length), 0) << type;
    return hex(column, shown);
}

TEST(LocalValues, ACharacterThatIsCutBecomesBlanks) {
    start("de_de.utf8");
    EXPECT_EQ(stored(sql_char, 2, 3), "61 20 ee");
    EXPECT_EQ(stored(sql_char, 3, 4), "61 c3 a9 ee");
    EXPECT_EQ(stored(sql_varchar, 2, 4), "02 61 20 ee");
    EXPECT_EQ(stored(sql_lvarchar, 2, 7), "00 00 00 00 01 61 ee");
    value_rec v = cell(sql_char, "\xe2\x82\xac\xe2\x82\xac"); // two euro signs
    char text[] = "#######";
    EXPECT_EQ(rvalstr(&v, text, 5, 1), 0);
    EXPECT_STREQ(text, "\xe2\x82\xac  ##");
}

std::string written(int type, const char *value, int word, int width) {
    value_rec v = cell(type, value, word);
    char text[100] = {};
    const int code = rvalstr(&v, text, width, 1);
    return code == 0 ? text : std::to_string(code) + text;
}

TEST(LocalValues, NumbersHaveTheRadixOfTheLocale) {
    start("de_de.utf8");
    EXPECT_EQ(written(sql_decimal, "-1234.5", 0x0502, 10), "-1234,50  ");
    EXPECT_EQ(written(sql_float, "1.5e200", 0, 14), "1,500000e+200 ");
    EXPECT_EQ(written(sql_bigint, "-1234567", 0, 0), "-1234567");
    EXPECT_EQ(written(sql_money, "1234.5", 0x0602, 20).substr(0, 7), "1234,50");
    EXPECT_EQ(written(sql_money, "1234.5", 0x0602, 3), "-1207***");
}

} // namespace
