// Numbers and amounts of every shipped locale beside the C library's printf and strfmon, and back.

#include "support/random_cases.h"
#include "support/shipped_locales.h"
#include <kestrion/money_format.h>
#include <kestrion/money_scan.h>
#include <kestrion/number_format.h>
#include <kestrion/number_scan.h>

#include <langinfo.h>
#include <math.h>
#include <monetary.h>
#include <random>
#include <stdio.h>
#include <string.h>

// Formats are made up, and checked by what comes out.
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

constexpr uint64_t seed = 20260117;

class ShippedNumbers : public testing::TestWithParam<shipped_locale> {
protected:
    // What an operation wrote, or "error N".
    std::string text_of(int32_t count) const {
        if (count >= 0)
            return {buffer_, static_cast<size_t>(count)};
        const int32_t error = lc_->err;
        lc_->err = 0;
        return "error " + std::to_string(error);
    }
    template <class value> std::string ours(const std::string &format, value v) {
        return text_of(gl_mbsprintf(lc_, buffer_, sizeof buffer_, format.c_str(), v));
    }
    std::string our_amount(const std::string &format, double v) {
        return text_of(gl_mbsfmon(lc_, buffer_, sizeof buffer_, format.c_str(), v));
    }
    // The same room is offered again, exactly and one byte too little.
    template <class call> void expect_exact_room(const std::string &text, call write) {
        if (text.rfind("error", 0) == 0)
            return;
        const int32_t bytes = static_cast<int32_t>(text.size()) + 1;
        EXPECT_EQ(write(bytes), bytes - 1) << text;
        EXPECT_EQ(write(bytes - 1), -1) << text;
        EXPECT_EQ(lc_->err, GLS_ERR_NO_ROOM) << text;
        lc_->err = 0;
    }

    const locale_pair pair_{GetParam()};
    locale_rec *const lc_ = pair_.engine;
    std::mt19937_64 random_{seed};
    char buffer_[1024];
};

// ---- Directives

struct directive {
    std::string flags, width, precision;
    char conversion;

    bool has(char flag) const { return flags.find(flag) != std::string::npos; }
    std::string format(const char *length) const {
        return "%" + flags + width + precision + length + conversion;
    }
};

template <class generator> directive random_directive(generator &random, const char *conversions) {
    const auto pick = [&](uint64_t limit) { return random() % limit; };
    directive d;
    for (const char flag : {'\'', '-', '+', ' ', '#', '0'}) // "0" ends the flags
        if (pick(3) == 0)
            d.flags += flag;
    if (pick(2) == 0)
        d.width = std::to_string(1 + pick(30));
    if (pick(2) == 0)
        d.precision = "." + std::to_string(pick(9));
    d.conversion = conversions[pick(strlen(conversions))];
    return d;
}

// Where the two differ by design.
using condition = bool (*)(const directive &);
constexpr struct {
    condition applies;
    const char *reason;
} differences[] = {
    {[](const directive &d) {
         return d.has('0') && !d.precision.empty() && strchr("diuoxX", d.conversion);
     },
     "zeros pad also with a precision"},
    {[](const directive &d) { return d.has('#') && strchr("oxX", d.conversion); },
     "the prefix is added to 0 and to zeros of the precision, too"},
    {[](const directive &d) { return (d.has('+') || d.has(' ')) && strchr("uoxX", d.conversion); },
     "unsigned numbers are positive numbers"},
    {[](const directive &d) { return d.has('\'') && strchr("oxX", d.conversion); },
     "digits of every base are grouped"},
    {[](const directive &d) {
         return d.has('\'') && !d.precision.empty() && strchr("diu", d.conversion);
     },
     "zeros of the precision are not grouped"},
    {[](const directive &d) { return d.has('\'') && strchr("gG", d.conversion); },
     "of floats only f is grouped"},
    {[](const directive &d) { return d.has(' ') && d.has('+'); }, "never both; + wins in either"},
};

bool differs_by_design(const directive &d) {
    for (const auto &row : differences)
        if (row.applies(d))
            return true;
    // The library pads bytes, not columns.
    return d.has('\'') && !d.width.empty() && strlen(nl_langinfo(THOUSEP)) > 1;
}

// The library writes nothing for zero with a precision of 0.
bool is_vanishing_zero(const directive &d, uint64_t value) {
    return value == 0 && d.precision == ".0";
}

} // namespace

TEST_P(ShippedNumbers, IntegersAreThoseOfThePrintfOfTheLocale) {
    int compared = 0;
    for (long i = 0; i < random_cases(10000); ++i) {
        const directive d = random_directive(random_, "diuoxX");
        const uint64_t value = random_() >> random_() % 64;
        const std::string format = d.format("l");
        if (differs_by_design(d) || is_vanishing_zero(d, value))
            continue;
        char theirs[256];
        snprintf(theirs, sizeof theirs, format.c_str(), value);
        ASSERT_EQ(ours(format, value), theirs) << format << " of " << value;
        ++compared;
    }
    EXPECT_GT(compared, random_cases(10000) / 8);
}

TEST_P(ShippedNumbers, FloatsAreThoseOfThePrintfOfTheLocale) {
    for (long i = 0; i < random_cases(10000); ++i) {
        const directive d = random_directive(random_, "feEgG");
        const uint64_t bits = random_();
        double value = ldexp(static_cast<double>(static_cast<int64_t>(bits)),
                             -40 - static_cast<int>(bits % 40));
        if (i % 50 == 0)
            value = i % 100 == 0 ? copysign(INFINITY, value) : copysign(NAN, value);
        if (i % 7 == 0)
            memcpy(&value, &bits, sizeof value);
        const std::string format = d.format("");
        char theirs[512];
        const int length = snprintf(theirs, sizeof theirs, format.c_str(), value);
        if (differs_by_design(d) || length > 255)
            continue;
        ASSERT_EQ(ours(format, value), theirs) << format << " of " << value;
    }
}

TEST_P(ShippedNumbers, WhatIsWrittenIsReadBackAndWrittenAgain) {
    for (long i = 0; i < random_cases(5000); ++i) {
        directive d = random_directive(random_, "diubqoxXfeEgG");
        const bool floating = strchr("feEgG", d.conversion) != nullptr;
        const uint64_t bits = random_();
        const double real =
            ldexp(static_cast<double>(static_cast<int64_t>(bits)), -static_cast<int>(bits % 80));
        const int64_t whole = static_cast<int64_t>(bits >> bits % 64);
        const std::string format = d.format("l");
        const std::string text = floating ? ours(format, real) : ours(format, whole);
        expect_exact_room(text, [&](int32_t size) {
            char room[512];
            return floating ? gl_mbsprintf(lc_, room, size, format.c_str(), real)
                            : gl_mbsprintf(lc_, room, size, format.c_str(), whole);
        });
        // A text wider than its field would be cut by the width.
        d.width.clear();
        double real_back = 0;
        int64_t whole_back = 0;
        void *to = floating ? static_cast<void *>(&real_back) : &whole_back;
        ASSERT_EQ(gl_mbsscanf(lc_, text.c_str(), d.format("l").c_str(), to), 1)
            << format << " '" << text << "' error " << lc_->err;
        ASSERT_TRUE(floating || whole_back == whole) << format << " '" << text << "'";
        ASSERT_EQ(floating ? ours(format, real_back) : ours(format, whole_back), text) << format;
    }
}

// ---- Amounts

namespace {

struct amount_format {
    std::string text;

    bool has(const char *piece) const { return text.find(piece) != std::string::npos; }
};

const amount_format amount_formats[] = {
    {"%n"},        {"%i"},    {"%!n"},  {"%!i"},   {"%^n"},    {"%(n"},      {"%+n"},
    {"%.0n"},      {"%.4n"},  {"%#8n"}, {"%#8i"},  {"%(#8n"},  {"%=*#10n"},  {"%=*#9.3n"},
    {"%^=*#9.3n"}, {"%^#7i"}, {"%20n"}, {"%-20n"}, {"%20.3i"}, {"%-!22#6n"}, {"a%%b%nc"},
};

// Where blanks differ by design; all else of the amounts is equal.
using blank_condition = bool (*)(const amount_format &, const monetary_rec &);
constexpr struct {
    blank_condition applies;
    const char *reason;
} blank_differences[] = {
    {[](const amount_format &f, const monetary_rec &) { return f.has("i"); },
     "the international symbol ends in a blank, which the library takes for the separator, and the "
     "places are those of the local symbol"},
    {[](const amount_format &f, const monetary_rec &) { return f.has("!"); },
     "the space beside the symbol stays without it"},
    {[](const amount_format &f, const monetary_rec &) { return f.has("#"); },
     "room on the right for the bracket or sign of the other layout"},
    {[](const amount_format &f, const monetary_rec &m) {
         return f.has("20") && strlen(m.currency_symbol) + strlen(m.mon_thousands_sep) > 2;
     },
     "the width counts columns, not bytes"},
    {[](const amount_format &f, const monetary_rec &m) {
         return f.has("(") && m.p_sep_by_space == 2;
     },
     "the bracket changes negative amounts alone, the library both"},
};

bool blanks_may_differ(const amount_format &f, const monetary_rec &m) {
    for (const auto &row : blank_differences)
        if (row.applies(f, m))
            return true;
    return false;
}

// Whether the library lays out both symbols alike.
bool places_are_shared() {
    const lconv *money = localeconv();
    return money->p_cs_precedes == money->int_p_cs_precedes &&
           money->n_cs_precedes == money->int_n_cs_precedes &&
           money->p_sign_posn == money->int_p_sign_posn &&
           money->n_sign_posn == money->int_n_sign_posn;
}

// Amounts are separated like numbers here, which a few locales separate in another way.
std::string with_separator_of_numbers(std::string text, const locale_rec *lc) {
    const std::string money = lc->monetary_cat.mon_thousands_sep;
    const std::string numbers = lc->numeric_cat.thousands_sep;
    if (money != numbers && !money.empty())
        for (size_t at = 0; (at = text.find(money, at)) != text.npos; at += numbers.size())
            text.replace(at, money.size(), numbers);
    return text;
}

std::string without_blanks(std::string text) {
    std::erase(text, ' ');
    return text;
}

} // namespace

TEST_P(ShippedNumbers, AmountsAreThoseOfStrfmon) {
    for (long i = 0; i < random_cases(1000); ++i) {
        // Whole cents, and away from halves: these are rounded half up on what "%f" prints.
        const auto cents = static_cast<int64_t>(random_() >> (24 + random_() % 40));
        const double sign = random_() % 2 == 0 ? 1 : -1;
        const double value = sign *
                             (static_cast<double>(cents - cents % 100) +
                              static_cast<double>(cents % 100 == 50 ? 49 : cents % 100)) /
                             100;
        if (value == 0)
            continue; // -0.0 is positive here, negative in the library
        for (const amount_format &format : amount_formats) {
            if (format.has("i") && !places_are_shared())
                continue; // an object has one set of places for both symbols
            char written[256];
            strfmon(written, sizeof written, format.text.c_str(), value);
            const std::string theirs = with_separator_of_numbers(written, lc_);
            const std::string own = our_amount(format.text, value);
            ASSERT_TRUE(own == theirs || blanks_may_differ(format, lc_->monetary_cat))
                << format.text << " of " << value << ": '" << own << "', the library '" << theirs
                << "'";
            ASSERT_EQ(without_blanks(own), without_blanks(theirs))
                << format.text << " of " << value;
        }
    }
}

TEST_P(ShippedNumbers, AmountsAreReadBackAndWrittenAgain) {
    for (long i = 0; i < random_cases(1000); ++i) {
        const double value =
            static_cast<double>(static_cast<int64_t>(random_()) >> (20 + random_() % 40)) / 100;
        for (const amount_format &format : amount_formats) {
            if (format.has("*"))
                continue; // only blanks and zeros are skipped as fill
            const std::string text = our_amount(format.text, value);
            if (format.has("2") && text.size() > 20)
                continue; // the width would cut it
            expect_exact_room(text, [&](int32_t size) {
                char room[512];
                return gl_mbsfmon(lc_, room, size, format.text.c_str(), value);
            });
            double back = 0;
            const char *end = gl_mbspmon(lc_, text.c_str(), format.text.c_str(), &back);
            ASSERT_NE(end, nullptr) << format.text << " '" << text << "' error " << lc_->err;
            if (back == 0)
                continue; // a negative amount that rounds to zero comes back as zero
            ASSERT_EQ(our_amount(format.text, back), text) << format.text << " of " << value;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, ShippedNumbers, testing::ValuesIn(shipped()), shipped_locale_name);
