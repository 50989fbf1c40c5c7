#include "base/print_as_format.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

using namespace kestrion;

namespace {

std::string expanded(const char *format, const std::vector<format_arg> &args) {
    char buffer[4096];
    const size_t length =
        print_as_format_into(buffer, sizeof buffer, format, args.data(), args.size());
    EXPECT_EQ(length, strlen(buffer)) << format;
    return buffer;
}

TEST(PrintAsFormat, CarriesOutOnlyWhatFindsAnArgumentOfItsKind) {
    const std::vector<format_arg> text_and_number = {text_arg("x"), number_arg(7)};
    const struct {
        const char *format;
        const char *wanted;
    } rows[] = {
        {"%s: %d", "x: 7"},
        {"100%% of %s", "100% of x"},
        {"%s %s", "x 7"},
        {"%s %d %d", "x 7 %d"},
        {"%d %s", "%d x"}, // not a number; the text still serves the %s after it
        {"%n%s", "%nx"},
        {"%*d %s", "%*d x"},
        {"%s %*.*f", "x %*.*f"},
        {"%.*s", "%.*s"},
        {"%s %hhd %lld %ld", "x %hhd %lld 7"},
        {"%2$s %s", "%2$s x"},
        {"%1000s|%s", "%1000s|x"},
        {"%.99999999999999999999s", "%.99999999999999999999s"},
        {"%s %", "x %"},
        {"%s %-", "x %-"},
        {"%s %5.", "x %5."},
        {"%s %l", "x %l"},
        {"%-%", "%-%"},
        {"%\xE9 %s", "%\xE9 x"},
        {"", ""},
        {nullptr, ""},
    };
    for (const auto &row : rows)
        EXPECT_EQ(expanded(row.format, text_and_number), row.wanted) << row.format;
    EXPECT_EQ(expanded("[%s][%3s]", {text_arg(nullptr), text_arg(nullptr)}), "[][   ]");
    EXPECT_EQ(expanded("a%cb%3c%-2c|", {number_arg(0), number_arg('z'), number_arg('y')}),
              "ab  zy |");
}

// One number through one directive, by the C library. Only for directives that take an int.
std::string by_printf(const std::string &directive, int number) {
    char buffer[2048];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    snprintf(buffer, sizeof buffer, directive.c_str(), number);
#pragma GCC diagnostic pop
    return buffer;
}

TEST(PrintAsFormat, NumbersLookAsTheCLibraryPrintsThem) {
    std::mt19937 random(20240611);
    const char *widths[] = {"", "1", "9", "31", "999"};
    const char *precisions[] = {"", ".", ".0", ".1", ".8", ".40"};
    const int edges[] = {0, 1, -1, 42, -4711, INT32_MAX, INT32_MIN};
    for (int round = 0; round < 20000; ++round) {
        std::string directive = "%";
        for (char flag : {'-', '+', ' ', '#', '0'})
            if (random() % 3 == 0)
                directive += flag;
        directive += widths[random() % std::size(widths)];
        directive += precisions[random() % std::size(precisions)];
        const char conversion = "dux"[random() % 3];
        directive += conversion;
        const int number = edges[random() % std::size(edges)];
        ASSERT_EQ(expanded(directive.c_str(), {number_arg(number)}), by_printf(directive, number))
            << directive << " of " << number;
    }
}

TEST(PrintAsFormat, NumbersBeyondAnIntKeepAllTheirDigits) {
    EXPECT_EQ(expanded("%d %ld %s",
                       {number_arg(INT64_MIN), number_arg(INT64_MAX), number_arg(-5000000000)}),
              "-9223372036854775808 9223372036854775807 -5000000000");
    EXPECT_EQ(expanded("%x %u", {number_arg(-5000000000), number_arg(5000000000)}),
              "fffffffed5fa0e00 5000000000");
}

TEST(PrintAsFormat, TextsTakeWidthAndPrecision) {
    const format_arg unterminated = text_arg("abcdef");
    EXPECT_EQ(expanded("[%9s][%-9.2s][%.0s][%02s]",
                       {unterminated, unterminated, unterminated, text_arg("q")}),
              "[   abcdef][ab       ][][ q]");
    EXPECT_EQ(expanded("[%5.2s]", {number_arg(-123)}), "[   -1]");
}

TEST(PrintAsFormat, BufferIsCutTerminatedAndNeverPassed) {
    char buffer[8];
    memset(buffer, '#', sizeof buffer);
    const format_arg arg = text_arg("abcdef");
    EXPECT_EQ(print_as_format_into(buffer, 5, "%s!", &arg, 1), 7u);
    EXPECT_STREQ(buffer, "abcd");
    EXPECT_EQ(buffer[5], '#');
    EXPECT_EQ(print_as_format_into(buffer, 1, "%s", &arg, 1), 6u);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(print_as_format_into(nullptr, 0, "%999s", &arg, 1), 999u);
}

TEST(PrintAsFormat, TextAsItsOwnFormatIsExpandedOnce) {
    char buffer[64] = "";
    FILE *stream = fmemopen(buffer, sizeof buffer, "w");
    print_as_own_format(stream, "50%% %s %s %n");
    print_as_own_format(stream, nullptr);
    fclose(stream);
    EXPECT_STREQ(buffer, "50% 50%% %s %s %n %s %n");
}

TEST(PrintAsFormat, StreamGetsTheSameBytesAcrossBlocks) {
    const std::string long_text(5000, 'k');
    const format_arg args[] = {text_arg(long_text.c_str()), number_arg(-1)};
    char *text = nullptr;
    size_t size = 0;
    FILE *stream = open_memstream(&text, &size);
    ASSERT_NE(stream, nullptr);
    print_as_format(stream, "<%s %d %n>", args, 2);
    print_as_own_format(stream, "%s%%");
    fclose(stream);
    EXPECT_EQ(std::string(text, size), "<" + long_text + " -1 %n>" + "%s%%%");
    free(text);
}

} // namespace
