// Numbers and amounts to text and back, beside the C library's calls in the same locale and ICU's
// formatters, which are made once. Both sides of a row run in turns within one round over the same
// values; "times" is the peer's time over ours, "ns" the time of one call.

#include "support/temp_dir.h"
#include <kestrion/categories.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/integer_format.h>
#include <kestrion/money_format.h>
#include <kestrion/number_format.h>
#include <kestrion/number_text.h>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <locale.h>
#include <monetary.h>
#include <random>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <time.h>
#include <unicode/unum.h>
#include <vector>

namespace {

constexpr size_t value_count = 1000;
constexpr int32_t text_size = 100;

struct side {
    locale_rec *lc;
    locale_t library;
    const char *icu; // its name of the locale
};

side load(const char *object, const char *source, const char *charmap) {
    static const temp_dir library_locales;
    const std::string name = std::string(source) + "." + charmap;
    const std::string command = "localedef --quiet -c -i " + std::string(source) + " -f " +
                                charmap + " " + library_locales.at(name) + " 2>/dev/null";
    side made = {};
    made.icu = source;
    if (gl_create_null_locale_4(&made.lc) != 0 || system(command.c_str()) < 0)
        abort();
    char *loaded = set_categories(made.lc, GL_CAT_ALL, object, KESTRION_BUILD_DIR "/gls/lc11");
    setenv("LOCPATH", library_locales.path().c_str(), 1);
    made.library = newlocale(LC_ALL_MASK, name.c_str(), nullptr);
    if (loaded == nullptr || made.library == nullptr)
        abort();
    gl_destroystring(loaded);
    return made;
}

// Amounts in cents of up to eight digits, as in daily use.
const std::vector<int64_t> &cents() {
    static const std::vector<int64_t> made = [] {
        std::mt19937_64 random(7);
        std::vector<int64_t> values(value_count);
        for (int64_t &value : values)
            value = static_cast<int64_t>(random() % 2000000000) - 1000000000;
        return values;
    }();
    return made;
}

// Processor time of one pass over the values, in nanoseconds a value: other programs of the machine
// do not count.
template <typename Call> double nanoseconds(Call call) {
    const auto now = [] {
        timespec time;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
    };
    const double start = now();
    for (size_t i = 0; i < value_count; ++i)
        benchmark::DoNotOptimize(call(i));
    benchmark::ClobberMemory();
    return (now() - start) / value_count;
}

// Reports the fastest round of either side.
template <typename Ours, typename Theirs>
void beside(benchmark::State &state, Ours ours, Theirs theirs) {
    double our_time = 1e18, their_time = 1e18;
    for (auto round : state) {
        (void)round;
        our_time = std::min(our_time, nanoseconds(ours));
        their_time = std::min(their_time, nanoseconds(theirs));
    }
    state.counters["ns"] = our_time;
    state.counters["peer_ns"] = their_time;
    state.counters["times"] = their_time / our_time;
}

// ---- To text

void grouped_integer(benchmark::State &state, const side &s) {
    char own[text_size], theirs[text_size];
    uselocale(s.library);
    beside(
        state, [&](size_t i) { return gl_mbsprintf(s.lc, own, text_size, "%'ld", cents()[i]); },
        [&](size_t i) { return snprintf(theirs, text_size, "%'ld", cents()[i]); });
}

void plain_grouped_integer(benchmark::State &state, const side &s) {
    char own[text_size], theirs[text_size];
    uselocale(s.library);
    beside(
        state, [&](size_t i) { return gl_ltombs(s.lc, cents()[i], own, text_size, 10, 1); },
        [&](size_t i) { return snprintf(theirs, text_size, "%'ld", cents()[i]); });
}

template <typename Format>
void beside_icu(benchmark::State &state, const side &s, UNumberFormatStyle style, int digits,
                Format ours) {
    UErrorCode status = U_ZERO_ERROR;
    UNumberFormat *format = unum_open(style, nullptr, 0, s.icu, nullptr, &status);
    unum_setAttribute(format, UNUM_FRACTION_DIGITS, digits);
    UChar theirs[text_size];
    beside(state, ours, [&](size_t i) {
        status = U_ZERO_ERROR;
        return digits == 0
                   ? unum_formatInt64(format, cents()[i], theirs, text_size, nullptr, &status)
                   : unum_formatDouble(format, static_cast<double>(cents()[i]) / 100, theirs,
                                       text_size, nullptr, &status);
    });
    unum_close(format);
}

void grouped_integer_beside_icu(benchmark::State &state, const side &s) {
    char own[text_size];
    beside_icu(state, s, UNUM_DECIMAL, 0,
               [&](size_t i) { return gl_mbsprintf(s.lc, own, text_size, "%'ld", cents()[i]); });
}

void two_places(benchmark::State &state, const side &s) {
    char own[text_size], theirs[text_size];
    uselocale(s.library);
    beside(
        state,
        [&](size_t i) {
            return gl_mbsprintf(s.lc, own, text_size, "%'.2f",
                                static_cast<double>(cents()[i]) / 100);
        },
        [&](size_t i) {
            return snprintf(theirs, text_size, "%'.2f", static_cast<double>(cents()[i]) / 100);
        });
}

void amount(benchmark::State &state, const side &s) {
    char own[text_size], theirs[text_size];
    uselocale(s.library);
    beside(
        state,
        [&](size_t i) {
            return gl_mbsfmon(s.lc, own, text_size, "%n", static_cast<double>(cents()[i]) / 100);
        },
        [&](size_t i) {
            return strfmon(theirs, text_size, "%n", static_cast<double>(cents()[i]) / 100);
        });
}

void amount_beside_icu(benchmark::State &state, const side &s) {
    char own[text_size];
    beside_icu(state, s, UNUM_CURRENCY, 2, [&](size_t i) {
        return gl_mbsfmon(s.lc, own, text_size, "%n", static_cast<double>(cents()[i]) / 100);
    });
}

// ---- From text

std::vector<std::string> texts_of(const side &s, const char *format, bool floating) {
    std::vector<std::string> texts;
    char text[text_size];
    for (const int64_t value : cents()) {
        if (floating)
            gl_mbsprintf(s.lc, text, text_size, format, static_cast<double>(value) / 100);
        else
            gl_mbsprintf(s.lc, text, text_size, format, value);
        texts.push_back(text);
    }
    return texts;
}

void integer_from_text(benchmark::State &state, const side &s) {
    const std::vector<std::string> texts = texts_of(s, "%ld", false);
    uselocale(s.library);
    beside(
        state,
        [&](size_t i) {
            const char *end;
            return gl_mbstol(s.lc, texts[i].c_str(), &end, 10, 0);
        },
        [&](size_t i) {
            char *end;
            return strtol(texts[i].c_str(), &end, 10);
        });
}

// The library reads groups in scanf alone.
void grouped_integer_from_text(benchmark::State &state, const side &s) {
    const std::vector<std::string> texts = texts_of(s, "%'ld", false);
    uselocale(s.library);
    beside(
        state,
        [&](size_t i) {
            const char *end;
            return gl_mbstol(s.lc, texts[i].c_str(), &end, 10, 1);
        },
        [&](size_t i) {
            long value = 0;
            sscanf(texts[i].c_str(), "%'ld", &value);
            return value;
        });
}

void float_from(benchmark::State &state, const side &s, const char *format) {
    const std::vector<std::string> texts = texts_of(s, format, true);
    uselocale(s.library);
    beside(
        state,
        [&](size_t i) {
            const char *end;
            return gl_mbstod(s.lc, texts[i].c_str(), &end, 0);
        },
        [&](size_t i) {
            char *end;
            return strtod(texts[i].c_str(), &end);
        });
}

void float_from_text(benchmark::State &state, const side &s) { float_from(state, s, "%.2f"); }
void float_of_17_digits(benchmark::State &state, const side &s) { float_from(state, s, "%.16e"); }

using row = void (*)(benchmark::State &, const side &);
constexpr struct {
    const char *name;
    row run;
} rows[] = {
    {"grouped_integer_beside_printf", grouped_integer},
    {"grouped_integer_without_format_beside_printf", plain_grouped_integer},
    {"grouped_integer_beside_icu", grouped_integer_beside_icu},
    {"two_places_beside_printf", two_places},
    {"amount_beside_strfmon", amount},
    {"amount_beside_icu", amount_beside_icu},
    {"integer_from_text_beside_strtol", integer_from_text},
    {"grouped_integer_from_text_beside_scanf", grouped_integer_from_text},
    {"float_from_text_beside_strtod", float_from_text},
    {"float_of_17_digits_from_text_beside_strtod", float_of_17_digits},
};

void add_rows(const char *name, const side &s) {
    for (const auto &each : rows)
        benchmark::RegisterBenchmark(
            (std::string(name) + "/" + each.name).c_str(),
            [run = each.run, s](benchmark::State &state) { run(state, s); })
            ->MinTime(0.1);
}

} // namespace

int main(int argc, char **argv) {
    add_rows("utf8_en", load("en_us/e01c.lco", "en_US", "UTF-8"));
    add_rows("utf8_fr", load("fr_fr/e01c.lco", "fr_FR", "UTF-8"));
    add_rows("latin1_de", load("de_de/0333.lco", "de_DE", "ISO-8859-1"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
