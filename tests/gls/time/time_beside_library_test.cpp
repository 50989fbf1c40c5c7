// Times of every shipped locale as text and back, beside strftime and strptime in the C library's
// locale of the same source.

#include "gls/time/moments.h"
#include "support/shipped_locales.h"
#include <kestrion/char_case.h>
#include <kestrion/time_expand.h>
#include <kestrion/time_format.h>
#include <kestrion/time_scan.h>

#include <gtest/gtest.h>
#include <langinfo.h>
#include <random>
#include <string.h>
#include <string>
#include <tuple>
#include <vector>

namespace {

class TimeBesideLibrary : public testing::TestWithParam<shipped_locale> {
protected:
    std::string ours(const std::string &format, const gl_alt_tm &time) const {
        char text[1000];
        engine_->err = 0;
        const int32_t length = gl_mbsftime(engine_, text, sizeof text, format.c_str(), &time);
        return engine_->err == 0 ? std::string(text, static_cast<size_t>(length))
                                 : "error " + std::to_string(engine_->err);
    }
    static std::string theirs(const std::string &format, const tm &time) {
        char text[1000];
        size_t (*const by_format)(char *, size_t, const char *, const tm *) = strftime;
        return {text, by_format(text, sizeof text, format.c_str(), &time)};
    }
    std::vector<gl_wchar> wide(const std::string &text) const {
        std::vector<gl_wchar> made(text.size() + 1);
        engine_->mbstowcs_fn(engine_, made.data(), text.c_str(), static_cast<int32_t>(made.size()));
        return made;
    }
    std::string capitals(const std::string &text) const {
        std::string made(4 * text.size() + 1, 0);
        const int32_t length = gl_tombsupper(engine_, made.data(), text.c_str());
        return made.substr(0, static_cast<size_t>(length));
    }
    gl_alt_tm read(const std::string &text, const std::string &format, gl_alt_tm time) const {
        const char *end = gl_mbsptime(engine_, text.c_str(), format.c_str(), &time);
        EXPECT_TRUE(end != nullptr && *end == 0)
            << format << " of " << text << ": error " << engine_->err;
        return time;
    }
    static auto fields(const gl_alt_tm &time) {
        return std::make_tuple(time.year, time.month, time.day, time.hour, time.minute,
                               time.second);
    }
    std::string wanted(const std::string &format, const tm &time) const;
    void compare_formats() const;
    void compare_conversions(const std::vector<moment> &moments) const;
    void compare_sizes(const std::vector<moment> &moments);
    void compare_scans(const std::vector<moment> &moments) const;
    void write_read_and_write(const std::vector<moment> &moments) const;

    const locale_pair pair_{GetParam()};
    locale_rec *const engine_ = pair_.engine;
};

// The directives that stand for a format of the locale.
struct locale_format {
    const char *directive;
    char *time_rec::*text;
    nl_item item, plain_item; // the second stands in where the first is empty
};
constexpr locale_format locale_formats[] = {
    {"%c", &time_rec::d_t_fmt, D_T_FMT, D_T_FMT},
    {"%x", &time_rec::d_fmt, D_FMT, D_FMT},
    {"%X", &time_rec::t_fmt, T_FMT, T_FMT},
    {"%r", &time_rec::t_fmt_ampm, T_FMT_AMPM, T_FMT_AMPM},
    {"%Ec", &time_rec::era_d_t_fmt, ERA_D_T_FMT, D_T_FMT},
    {"%Ex", &time_rec::era_d_fmt, ERA_D_FMT, D_FMT},
    {"%EX", &time_rec::era_t_fmt, ERA_T_FMT, T_FMT},
};

// What a format of a source becomes in an object, and why.
constexpr struct {
    const char *source, *object, *reason;
} rewritten[] = {
    {" %Z", "", "the engine has no zones"},
    {"%P", "%p", "am and pm have one case"},
    {"%k", "%H", "hours are filled with zeros"},
    {"%-", "%", "days and months are filled with zeros"},
};

std::string in_object(std::string format) {
    for (const auto &row : rewritten)
        for (size_t at; (at = format.find(row.source)) != std::string::npos;)
            format.replace(at, strlen(row.source), row.object);
    return format;
}

void TimeBesideLibrary::compare_formats() const {
    for (const locale_format &row : locale_formats) {
        const bool is_era_form = row.item != row.plain_item;
        if (is_era_form && engine_->time_cat.era_count == 0)
            continue;
        const char *source = nl_langinfo(row.item);
        source = *source == 0 ? nl_langinfo(row.plain_item) : source;
        EXPECT_EQ(engine_->time_cat.*row.text, in_object(source)) << row.directive;
    }
}

// What the library writes, for a format of the locale by the object's text; without eras that is
// the plain format. An empty 12-hour format writes nothing, where the library has one of its own;
// and the library does not fill centuries.
std::string TimeBesideLibrary::wanted(const std::string &format, const tm &time) const {
    const bool drops_e = engine_->time_cat.era_count == 0 && format[1] == 'E';
    const std::string plain = drops_e ? "%" + format.substr(2) : format;
    for (const locale_format &row : locale_formats)
        if (plain == row.directive)
            return theirs(engine_->time_cat.*row.text, time);
    const std::string text = theirs(plain, time);
    return plain == "%C" && text.size() == 1 ? "0" + text : text;
}

void TimeBesideLibrary::compare_conversions(const std::vector<moment> &moments) const {
    std::vector<std::string> formats;
    for (const char letter : std::string("AaBbhCcDdeHIjMmnpRrSTtuwXxYy%"))
        formats.push_back(std::string("%") + letter);
    for (const char letter : std::string("CcXxYy"))
        formats.push_back(std::string("%E") + letter);
    for (const char letter : std::string("deHIMmSuwy"))
        formats.push_back(std::string("%O") + letter);
    for (const moment &m : moments)
        for (const std::string &format : formats)
            ASSERT_EQ(ours(format, m.engine), wanted(format, m.library))
                << format << " of " << theirs("%F %T", m.library);
}

// Every form of every number and text, by modifiers that a few random choices take.
std::string some_directive(std::mt19937 &random) {
    static const std::string conversions[] = {
        "A",  "B",  "b",  "C",  "c",  "D",  "d",  "e",  "F",  "F5", "F0", "g",  "H",    "I",
        "iY", "iy", "j",  "M",  "m",  "p",  "R",  "r",  "S",  "T",  "u",  "w",  "X",    "x",
        "Y",  "y",  "EC", "Eg", "Ey", "EY", "Ex", "EX", "Ec", "OC", "OD", "OH", "d %b", "OI",
        "Oj", "OM", "Om", "OR", "OS", "OT", "Od", "Oe", "Ou", "Ow", "Oy"};
    static const std::string flags[] = {"", "", "-", "0", "+", "'", "'+0", " "};
    static const std::string widths[] = {"", "", "1", "4", "7", "12"};
    static const std::string precisions[] = {"", "", ".0", ".1", ".3", ".6"};
    const auto one = [&](const auto &list) { return list[random() % std::size(list)]; };
    return "%" + one(flags) + one(widths) + one(precisions) + one(conversions);
}

void TimeBesideLibrary::compare_sizes(const std::vector<moment> &moments) {
    std::mt19937 random(1);
    for (const moment &m : moments) {
        const std::string format =
            "<" + some_directive(random) + "|" + some_directive(random) + ">";
        const std::string text = ours(format, m.engine);
        ASSERT_EQ(engine_->err, 0) << format;
        const auto bytes = static_cast<int32_t>(text.size());
        char exact[1000];
        ASSERT_EQ(gl_mbsftime(engine_, exact, bytes + 1, format.c_str(), &m.engine), bytes);
        ASSERT_EQ(exact, text) << format;
        ASSERT_EQ(gl_mbsftime(engine_, exact, bytes, format.c_str(), &m.engine), 0) << format;
        ASSERT_EQ(engine_->err, GLS_ERR_NO_ROOM) << format;
        ASSERT_GE(gl_mbsfmtexpand(engine_, format.c_str(), 1), bytes) << format;

        const std::vector<gl_wchar> wide_format = wide(format), wide_text = wide(text);
        gl_wchar element[1000];
        const int32_t elements = gl_wcsftime(engine_, element, 1000, wide_format.data(), &m.engine);
        ASSERT_TRUE(std::equal(element, element + elements + 1, wide_text.data())) << format;
        ASSERT_EQ(gl_wcsftime(engine_, element, elements + 1, wide_format.data(), &m.engine),
                  elements);
        ASSERT_EQ(gl_wcsftime(engine_, element, elements, wide_format.data(), &m.engine), 0);
        ASSERT_GE(gl_wcsfmtexpand(engine_, wide_format.data(), 1), elements) << format;
    }
}

// What we write the library reads, and we read what it reads, in capitals as well; both say the
// same.
void TimeBesideLibrary::compare_scans(const std::vector<moment> &moments) const {
    const time_rec &data = engine_->time_cat;
    std::vector<std::string> formats = {
        "%Y-%m-%d %H:%M:%S", "%a %d%b %Y %T",  "%A, %e %B %Y %R", "%D %R",
        "%C%y %m%d %j %w",   "%n%H:%M%t:%S%h", data.d_fmt,        data.t_fmt};
    if (*data.am != 0)
        formats.insert(formats.end(), {"%p %I:%M:%S %%", "%I.%p"});
    if (data.alt_digit_count != 0) // without them the library reads no "O"
        formats.insert(formats.end(), {"%Od %Om %Oy", "%OH:%OM:%OS"});
    if (data.era_count != 0)
        formats.insert(formats.end(), {data.era_d_fmt, "%m %d %EY"});
    for (const moment &m : moments)
        for (const std::string &format : formats) {
            const std::string text = ours(format, m.engine);
            tm library = {.tm_mday = 1};
            const char *end = strptime(text.c_str(), format.c_str(), &library);
            ASSERT_TRUE(end != nullptr && *end == 0) << format << " " << text;
            for (const std::string &version : {text, capitals(text)}) {
                const gl_alt_tm scanned = read(version, format, {.day = 1});
                ASSERT_EQ(fields(scanned),
                          std::make_tuple(library.tm_year, library.tm_mon, library.tm_mday,
                                          library.tm_hour, library.tm_min, library.tm_sec))
                    << format << " " << version;
            }
        }
}

// Whatever modifiers do to a directive, what it writes is read, and read it writes the same again.
// A bare %p says nothing without an hour, and an era may not hold the month and day of another date.
void TimeBesideLibrary::write_read_and_write(const std::vector<moment> &moments) const {
    std::mt19937 random(2);
    for (const moment &m : moments)
        for (int i = 0; i < 20; ++i) {
            std::string format = some_directive(random);
            if (format.back() == 'p')
                format += "%H";
            gl_alt_tm preset = moments[random() % moments.size()].engine;
            if (format.find('E') != std::string::npos) {
                preset.month = m.engine.month;
                preset.day = m.engine.day;
            }
            const std::string text = ours(format, m.engine);
            ASSERT_EQ(ours(format, read(text, format, preset)), text) << format;
        }
}

} // namespace

// One test for all: making the library's locale is what takes long.
TEST_P(TimeBesideLibrary, TextsAreWhatStrftimeAndStrptimeSay) {
    const std::vector<moment> moments = some_moments(random_moments);
    compare_formats();
    compare_conversions(moments);
    compare_sizes(moments);
    std::vector<moment> readable = moments;
    if (engine_->time_cat.era_count != 0) // years of eras are read by four digits
        std::erase_if(readable, [](const moment &m) { return m.library.tm_year + 1900 > 9456; });
    write_read_and_write(readable);
    if (GetParam().source == "zh_TW") // the library can't read years of an era that runs backward
        std::erase_if(readable, [](const moment &m) { return m.library.tm_year + 1900 < 1912; });
    compare_scans(readable);
}

INSTANTIATE_TEST_SUITE_P(All, TimeBesideLibrary, testing::ValuesIn(shipped()), shipped_locale_name);
