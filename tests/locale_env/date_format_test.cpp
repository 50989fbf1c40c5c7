#include <kestrion/date_format.h>
#include <kestrion/error_numbers.h>

#include <gtest/gtest.h>
#include <string>

namespace {

struct accepted_row {
    const char *text;
    const char *format;
    int32_t order[3];
    int32_t era_kind;
};

constexpr int32_t D = gls_date_day, M = gls_date_month, Y = gls_date_year;

constexpr accepted_row accepted[] = {
    {"MDY4/", "%m/%d/%iY", {M, D, Y}, 0},
    {"DMY2-", "%d-%m-%iy", {D, M, Y}, 0},
    {"Y2MD0", "%iy%m%d", {Y, M, D}, 0},
    {"mdyy.", "%m.%d.%iy", {M, D, Y}, 0},          // a second Y is two digits; letters in any case
    {"MDY2", "%m/%d/%iy", {M, D, Y}, 0},           // no separator: a slash
    {"MDY4x", "%m/%d/%iY", {M, D, Y}, 0},          // an unknown separator: a slash
    {"MD", "%m/%d/", {M, D, 0}, 0},                // an empty slot keeps its separator
    {"Y4", "%iY//", {Y, 0, 0}, 0},                 //
    {"NYMD", "%Eg%02.2Ey/%m/%d", {Y, M, D}, 1},    // a prefix does without digits
    {"eYMD,", "%EC%02.2Ey,%m,%d", {Y, M, D}, 3},   //
    {"GY4MD-", "%Eg%04.4Ey-%m-%d", {Y, M, D}, 3},  //
    {"EYMD/C1", "%Eg%03.3Ey/%m/%d", {Y, M, D}, 2}, // the suffix overrides the prefix
    {"Y3MD/C1", "%Eg%03.3Ey/%m/%d", {Y, M, D}, 2},
    {"Y4MD/c2", "%EC%04.4Ey/%m/%d", {Y, M, D}, 2},
    {"Y2MD0J1", "%Eg%02.2Ey%m%d", {Y, M, D}, 1},
    {"DMY4.j2", "%d.%m.%EC%04.4Ey", {D, M, Y}, 1},
};

// Rejected, each by another rule.
constexpr const char *rejected[] = {
    "",         // nothing
    "MDY",      // a year needs its digits, unless an era comes before it
    "Y3MD/",    // three digits belong to C1 and C2
    "Y3MD/J2",  //
    "Y3MD/J1",  //
    "EyMD",     // the Y after a prefix is a capital
    "EMD",      // and must be there
    "MMD",      // a field twice
    "DY2D",     //
    "XDY4",     // no field letter
    "MD/",      // a separator is not a third field
    "MDY4/C",   // half a suffix
    "MDY4/C3",  // no such suffix
    "MDY4/C1x", // text after the suffix
    "MDY4C1",   // the C is taken as the separator, and "1" is not a suffix
    "MDY5/",    // not a count of digits, so the year has none
};

TEST(DbDate, AcceptsItsGrammar) {
    for (const accepted_row &row : accepted) {
        dbdate_format format;
        ASSERT_EQ(parse_dbdate(row.text, &format), 0) << row.text;
        EXPECT_STREQ(format.text, row.format) << row.text;
        EXPECT_EQ(format.era_kind, row.era_kind) << row.text;
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(format.order[i], row.order[i]) << row.text << " slot " << i;
    }
}

TEST(DbDate, RefusesEverythingElse) {
    for (const char *text : rejected) {
        dbdate_format format;
        EXPECT_EQ(parse_dbdate(text, &format), err_date_format) << '"' << text << '"';
    }
}

// Every text over the alphabet up to a length: no format may be longer than its buffer, and an
// accepted one names each field at most once.
TEST(DbDate, EveryShortTextFitsItsBuffer) {
    const std::string alphabet = "DMYEGNCJy1234/0x";
    std::string text;
    size_t longest = 0;
    const auto visit = [&](const auto &self, int depth) -> void {
        dbdate_format format;
        if (parse_dbdate(text.c_str(), &format) == 0)
            longest = std::max(longest, std::string(format.text).size());
        if (depth == 0)
            return;
        for (char c : alphabet) {
            text.push_back(c);
            self(self, depth - 1);
            text.pop_back();
        }
    };
    visit(visit, 5);
    for (const char *text_with_suffix : {"EY4MD/C1", "NY4MD-C2", "DMGY4.J1"}) {
        dbdate_format format;
        ASSERT_EQ(parse_dbdate(text_with_suffix, &format), 0);
        longest = std::max(longest, std::string(format.text).size());
    }
    EXPECT_EQ(longest, 16u);
    EXPECT_LT(longest, gls_dbdate_format_size);
}

} // namespace
