// Type codes: sizes, alignment, names, NULL forms.

#include <kestrion/value_types.h>

#include <kestrion/value.h>

#include <gtest/gtest.h>

#include "values/convert/cells.h"

namespace {

using cells::hex;

struct null_row {
    int type;
    const char *bytes; // of 24 bytes of 77, what rsetnull leaves of the first
};

constexpr null_row null_rows[] = {
    {100, "00 77"},
    {101, "00 80 77"},
    {102, "00 00 00 80 77"},
    {103, "00 00 00 80 ff ff ff ff 77"},
    {104, "ff ff ff ff 77"},
    {105, "ff ff ff ff ff ff ff ff 77"},
    {106, "77 77"},
    {108, "00 77"},
    {109, "00 77"},
    {110, "00 00 00 80 77"},
    {107, "00 00 ff ff 00 00 00"},
    {112, "77 77 00 00 ff ff 00 00 00"},
    {113, "77 77 77 77 77 77 77 77 ff ff ff ff 77"},
    {117, "00 00 00 00 00 00 00 00 00 00"},
    {120, "77 77"},
    {121, "77 77"},
    {122, "ff 77"},
    {125, "00 00 00 00 00 00 00 80 77"},
    {2, "00 00 00 80 77"},
    {6, "00 00 00 80 77"},
    {7, "00 00 00 80 77"},
    {1, "00 80 77"},
    {13, "00 77"},
    {9, "77 77"},
    {60, "77 77"},
    {126, "77 77"},
    {-1, "77 77"},
};

TEST(ValueTypes, NullIsWrittenAndKnownInEveryForm) {
    for (const null_row &row : null_rows) {
        unsigned char bytes[120];
        memset(bytes, 0x77, sizeof bytes);
        EXPECT_EQ(rsetnull(row.type, bytes), 0);
        EXPECT_EQ(hex(bytes, (strlen(row.bytes) + 1) / 3), row.bytes) << row.type;
        const bool has_null = strstr(row.bytes, "77 77") != row.bytes || row.type == 121 ||
                              row.type == 112 || row.type == 113;
        EXPECT_EQ(risnull(row.type, bytes), has_null ? 1 : 0) << row.type;
    }
}

TEST(ValueTypes, NullOfRecordsIsAFlag) {
    collection_rec collection = {};
    host_binary binary = {};
    EXPECT_EQ(risnull(118, &collection) + risnull(124, &binary), 0);
    rsetnull(118, &collection);
    rsetnull(124, &binary);
    EXPECT_EQ(collection.cl_flags, 4U);
    EXPECT_EQ(binary.flags, 2U);
    EXPECT_EQ(risnull(22, &collection) + risnull(121, &binary), 2);
}

TEST(ValueTypes, CodesGoBothWays) {
    for (int type = 0; type < sql_type_count; ++type) {
        const int host = sqlctype(type);
        EXPECT_EQ(rtosqltype(type), type);
        EXPECT_TRUE(host == -1 || (host >= 100 && host <= 125)) << type;
        if (const std::string name = rtypname(type);
            !name.empty() && name.find_first_of(" /") == name.npos) {
            std::string raised = name;
            EXPECT_EQ(rstr2type(raised.data()), type) << name;
        }
    }
    EXPECT_EQ(rtosqltype(102), 2);
    EXPECT_EQ(rtoctype(102), 103);
    EXPECT_EQ(rtoctype(2), 102);
    EXPECT_EQ(rtosqltype(126), -1);
    EXPECT_EQ(sqlstype(116), 11);
    char text[] = "int8";
    EXPECT_EQ(rstr2type(text), 17);
    EXPECT_STREQ(text, "INT8");
    char udt[] = "variable udt";
    EXPECT_EQ(rstr2type(udt), -1);
    EXPECT_EQ(rstr2type(nullptr), -1);
}

TEST(ValueTypes, SizesAndAlignment) {
    struct {
        int type, length, size;
        size_t aligned;
    } const rows[] = {
        {0, 5, 6, 13},    {13, 300, 45, 13}, {16, 255, 256, 13},
        {5, 0, 22, 14},   {10, 0, 24, 14},   {7, 0, 4, 16},
        {17, 0, 12, 16},  {52, 0, 8, 16},    {11, 0, 112, 16},
        {21, 0, 120, 16}, {40, 9, 9, 0},     {41, -9, 0, 0},
        {120, 9, 9, 0},   {103, 0, 8, 16},   {100, INT32_MAX, INT32_MAX, 13},
        {9, 5, 0, 13},    {99, 5, 0, 13},    {-3, 5, 0, 13},
        {45, 9, 1, 13},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(rtypmsize(row.type, row.length), row.size) << row.type;
        EXPECT_EQ(rtypalign(13, row.type), row.aligned) << row.type;
    }
    EXPECT_EQ(ralign(9), 16U);
}

} // namespace
