// Values into programs' variables and back.

#include <kestrion/value_host.h>

#include <kestrion/datetime.h>
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>
#include <kestrion/value_types.h>

#include <gtest/gtest.h>

#include "values/convert/cells.h"

namespace {

using cells::cell;
using cells::hex;

constexpr int ymd = qualifier_year_to_day;

// Integers of variables show the machine's order; these rows are for the least byte first.
struct host_row_of_test {
    int type;
    const char *text; // null: NULL
    int word;
    int host;
    int length;
    int code;
    int indicator;
    const char *bytes; // bytes not written are ee
};

constexpr host_row_of_test rows[] = {
    // terminated text
    {0, "abc", 0, 100, 5, 0, 0, "61 62 63 20 00 ee"},
    {0, "abc", 0, 100, 3, 0, 3, "61 62 00 ee"},
    {0, "abc", 0, 100, 1, -1235, 1, "00 ee"},
    {0, "abc", 0, 100, 0, -1235, 1, "ee"},
    {0, "abc", 0, 100, -4, -1235, 1, "ee"},
    {0, nullptr, 0, 100, 0, 0, -1, "ee"},
    {0, nullptr, 0, 100, 3, 0, -1, "00 ee"},
    {0, "abc", 0, 108, 5, 0, 0, "61 62 63 20 20 ee"},
    {0, "abc", 0, 108, 2, 0, 3, "61 62 ee"},
    {0, "abc", 0, 108, 0, 0, 3, "ee"},
    {0, "a  ", 0, 109, 5, 0, 0, "61 00"},
    {0, "ab", 0, 114, 5, 0, 0, "61 62 00"},
    {2, "12", 0, 114, 5, 0, 0, "31 32 20 20 00 ee"},
    {7, "1", 0, 119, 14, 0, 0, "30 31 2f 30 31 2f 31 39 30 30 00"},
    {2, "12345", 0, 100, 4, -1207, 1, "2a 2a 2a 00 ee"},
    // numbers
    {0, "70000", 0, 101, 0, -1214, 1, "70 11 ee"},
    {0, " ", 0, 101, 0, 0, -1, "00 80 ee"},
    {0, "7", 0, 102, 0, 0, 0, "07 00 00 00 ee"},
    {0, "7", 0, 2, 0, 0, 0, "07 00 00 00 ee"},
    {0, "-7", 0, 103, 0, 0, 0, "f9 ff ff ff ff ff ff ff ee"},
    {0, "x", 0, 103, 0, -1213, 1, "00 00 00 80 ff ff ff ff ee"},
    {2, nullptr, 0, 103, 0, 0, -1, "00 00 00 80 ff ff ff ff ee"},
    {0, "1e39", 0, 104, 0, -1222, 1, "ff ff ff ff ee"},
    {2, "1", 0, 104, 0, 0, 0, "00 00 80 3f ee"},
    {2, "1", 0, 105, 0, 0, 0, "00 00 00 00 00 00 f0 3f ee"},
    {10, "2024-02-29", ymd, 105, 0, -1260, 1, "ff ff ff ff ff ff ff ff ee"},
    {5, "1.25", 0x0502, 107, 22, 0, 0, "01 00 01 00 02 00 01 19"},
    {5, "1.25", 0x0502, 107, 0x0301, 0, 0, "01 00 01 00 02 00 01 1e"},
    {5, "125", 0x0502, 107, 0x0301, -1226, 1, "00 00 ff ff 00 00 00 00"},
    {8, "1.25", 0x0502, 111, 0x0301, 0, 0, "01 00 01 00 02 00 01 1e"},
    {0, "1", 0, 117, 0, 0, 0, "01 00 00 00 00 00 00 00 01 00"},
    {0, "-1", 0, 125, 0, 0, 0, "ff ff ff ff ff ff ff ff ee"},
    {45, "t", 0, 122, 0, 0, 0, "01 ee"},
    {45, nullptr, 0, 122, 0, 0, -1, "ff ee"},
    {2, "1", 0, 122, 0, -1260, 1, "ff ee"},
    // dates
    {10, "1900-01-02", ymd, 110, 0, 0, 0, "02 00 00 00 ee"},
    {7, "1", 0, 112, ymd, 0, 0, "04 08 07 00 01 00 04 00 13 00 01 01"},
    {2, "1", 0, 112, ymd, -1260, 1, "04 08 00 00 ff ff 00 00"},
    // binary, blobs, files, collections
    {41, "abc", 0, 120, 4, 0, 0, "61 62 63 00 ee"},
    {41, "abc", 0, 120, 2, -1821, 1, "ee"},
    {40, "abc", 0, 120, 4, -1260, 1, "ee"},
    {2, "1", 0, 113, 0, -1269, 1, "ee"},
    {0, "f", 0, 116, 3, 0, 0, "66 20 20 ee"},
    {0, "file", 0, 116, 3, -1235, 1, "ee"},
    {13, "f", 0, 116, 3, -1269, 1, "ee"},
    {2, "1", 0, 118, 0, -9602, 1, "ee"},
    {2, "1", 0, 106, 0, -1260, 1, "ee"},
    {2, "1", 0, 126, 0, -1260, 1, "ee"},
};

TEST(HostVariables, TakeEachValueInTheirForm) {
    for (const host_row_of_test &row : rows) {
        value_rec v = cell(row.type, row.text, row.word);
        unsigned char variable[130];
        memset(variable, 0xEE, sizeof variable);
        int16_t indicator = 77;
        const std::string label = std::to_string(row.type) + " '" + (row.text ? row.text : "NULL") +
                                  "' into " + std::to_string(row.host) + ", " +
                                  std::to_string(row.length);
        EXPECT_EQ(rvalcvar(&v, variable, row.host, row.length, &indicator), row.code) << label;
        EXPECT_EQ(get_toerrno(), row.code) << label;
        EXPECT_EQ(indicator, row.indicator) << label;
        EXPECT_EQ(hex(variable, (strlen(row.bytes) + 1) / 3), row.bytes) << label;
    }
}

TEST(HostVariables, BlankTextIsEmptyUnlessAskedFor) {
    struct {
        int flag;
        bool set;
        const char *wanted;
    } const cases[] = {{0, true, ""}, {1, false, " "}, {-1, false, ""}, {-1, true, " "}};
    for (const auto &given : cases) {
        given.set ? setenv("BLANK_STRINGS_NOT_NULL", "", 1) : unsetenv("BLANK_STRINGS_NOT_NULL");
        value_rec v = cell(0, "   ");
        char text[9];
        rvalcvar_flag(&v, text, host_trimmed_text, sizeof text, nullptr, given.flag);
        EXPECT_STREQ(text, given.wanted) << given.flag << given.set;
    }
}

// What goes out comes in and goes out again as the same bytes.
TEST(HostVariables, ComeBackAsTheValueTheyHold) {
    struct {
        int type;
        const char *text;
        int word, host, length, sql, in_word;
    } const all[] = {
        {0, "ab ", 0, 100, 9, 0, 0},      {0, "ab", 0, 108, 9, 0, 0},
        {0, "ab", 0, 109, 9, 0, 0},       {0, "-5", 0, 101, 0, 1, 1280},
        {0, "-5", 0, 102, 0, 2, 2560},    {0, "-5", 0, 2, 0, 2, 1280},
        {0, "-5", 0, 103, 0, 2, 2560},    {0, "-5.5", 0, 104, 0, 4, 0},
        {0, "-5.5", 0, 105, 0, 3, 0},     {0, "-5.5", 0, 107, 0, 5, 0},
        {7, "400", 0, 110, 0, 7, 2560},   {0, "-5.5", 0, 111, 0, 8, 0},
        {7, "400", 0, 112, ymd, 10, ymd}, {0, "ab", 0, 114, 9, 13, 0},
        {0, "-5", 0, 117, 0, 17, 4864},   {43, "ab", 0, 119, 9, 43, 0},
        {41, "ab", 0, 120, 2, 41, 0},     {45, "t", 0, 122, 1, 45, 0},
        {0, "-5", 0, 125, 0, 52, 4864},
    };
    for (const auto &row : all)
        for (const char *text : {row.text, static_cast<const char *>(nullptr)}) {
            value_rec v = cell(row.type, text, row.word), back;
            unsigned char first[40] = {}, second[40] = {};
            ASSERT_EQ(rvalcvar(&v, first, row.host, row.length, nullptr), 0) << row.host;
            ASSERT_EQ(rcvarval(first, row.host, &back, row.length, nullptr), 0) << row.host;
            EXPECT_EQ(rtosqltype(back.type), row.sql);
            if (text != nullptr) {
                EXPECT_EQ(back.length_word, row.in_word) << row.host;
                EXPECT_EQ(back.null_flag, 0) << row.host;
            }
            ASSERT_EQ(rvalcvar(&back, second, row.host, row.length, nullptr), 0) << row.host;
            EXPECT_EQ(hex(first, sizeof first), hex(second, sizeof second)) << row.host;
        }
}

TEST(HostVariables, VariableBinaryGrowsWhereItOwnsItsData) {
    value_rec v = cell(43, "hello");
    char room[6];
    host_binary fixed = {0, 0, 5, room};
    EXPECT_EQ(rvalcvar(&v, &fixed, 124, 0, nullptr), err_binary_size);
    fixed.capacity = 6;
    EXPECT_EQ(rvalcvar(&v, &fixed, 124, 0, nullptr), 0);
    EXPECT_STREQ(room, "hello");
    host_binary owned = {host_binary_owner | host_binary_null, 0, 0, nullptr};
    EXPECT_EQ(rvalcvar(&v, &owned, 124, 0, nullptr), 0);
    EXPECT_EQ(owned.length, 5);
    EXPECT_EQ(owned.flags, uint32_t{host_binary_owner});
    EXPECT_STREQ(static_cast<char *>(owned.data), "hello");
    EXPECT_EQ(rvalcvar(&v, &owned, 121, 0, nullptr), err_no_conversion);
    value_rec back;
    EXPECT_EQ(rcvarval(&owned, 124, &back, 0, nullptr), 0);
    EXPECT_EQ(back.payload.text.text_length, 5);
    free(owned.data);
}

TEST(HostVariables, RefuseWhatIsNoValue) {
    value_rec v;
    const int16_t null = -1, value = 0;
    int64_t wide = INT64_C(2147483648);
    dec_value bad = {};
    bad.ndigits = 17;
    char empty[] = "";
    EXPECT_EQ(rcvarval(&wide, 103, &v, 0, nullptr), -1);
    EXPECT_EQ(rcvarval(&bad, 107, &v, 0, nullptr), -1);
    EXPECT_EQ(rcvarval(nullptr, 102, &v, 0, nullptr), -1);
    EXPECT_EQ(rcvarval(&wide, 106, &v, 0, nullptr), -1);
    EXPECT_EQ(rcvarval(nullptr, 102, &v, 0, &null), 0);
    EXPECT_EQ(v.null_flag, -1);
    EXPECT_EQ(rcvarval(empty, 114, &v, 0, &value), 0);
    EXPECT_EQ(v.null_flag, 0);
    EXPECT_EQ(rcvarval(empty, 114, &v, 0, nullptr), 0);
    EXPECT_EQ(v.null_flag, -1);
}

TEST(HostVariables, CollectionsAreCopiedWithoutOwnership) {
    value_rec v = {};
    v.type = sql_list;
    v.payload.collection.cl_handle = 7;
    v.payload.collection.cl_flags = collection_owns | collection_owns_type;
    collection_rec variable = {};
    int16_t indicator;
    EXPECT_EQ(rvalcvar(&v, &variable, 118, 0, &indicator), 0);
    EXPECT_EQ(variable.cl_flags, 0U);
    EXPECT_EQ(variable.cl_handle, 7U);
    EXPECT_EQ(rvalcvar(&v, &variable, 123, 0, &indicator), err_coll_type);
    v.null_flag = -1;
    EXPECT_EQ(rvalcvar(&v, &variable, 118, 0, &indicator), 0);
    EXPECT_EQ(indicator, -1);
    EXPECT_EQ(variable.cl_flags, 4U);
}

} // namespace
