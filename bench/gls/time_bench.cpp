// Times to text and back, beside strftime and strptime in the C library's locale of the same source.
// Both sides of a row run in turns within one round over the same moments; "times" is the peer's time
// over ours, "ns" the time of one call.

#include "gls/time/moments.h"
#include "support/temp_dir.h"
#include <kestrion/categories.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/time_format.h>
#include <kestrion/time_scan.h>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <locale.h>
#include <stdlib.h>
#include <string>
#include <time.h>
#include <vector>

namespace {

constexpr int moment_count = 1000;
constexpr int32_t text_size = 200;

struct side {
    locale_rec *lc;
    locale_t library;
};

side load(const char *object, const char *source, const char *charmap) {
    static const temp_dir library_locales;
    const std::string name = std::string(source) + "." + charmap;
    const std::string command = "localedef --quiet -c -i " + std::string(source) + " -f " +
                                charmap + " " + library_locales.at(name) + " 2>/dev/null";
    side made = {};
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

// The date and time of each locale as its people write them, in words that both sides know.
struct row {
    const char *name, *object, *source, *charmap, *format;
};
constexpr row rows[] = {
    {"numbers_single_byte", "en_us/0333.lco", "en_US", "ISO-8859-1", "%Y-%m-%d %H:%M:%S"},
    {"numbers_utf8", "en_us/e01c.lco", "en_US", "UTF-8", "%Y-%m-%d %H:%M:%S"},
    {"names_utf8", "en_us/e01c.lco", "en_US", "UTF-8", "%A, %d %B %Y, %H:%M"},
    {"c_single_byte", "fr_fr/0333.lco", "fr_FR", "ISO-8859-1", "%a %d %b %Y %T"},
    {"x_and_X_utf8", "de_de/e01c.lco", "de_DE", "UTF-8", "%x %X"},
    {"japanese_sjis", "ja_jp/e006.lco", "ja_JP", "SHIFT_JIS", "%x %X"},
    {"japanese_era_utf8", "ja_jp/e01c.lco", "ja_JP", "UTF-8", "%Ex"},
    {"thai_era_utf8", "th_th/e01c.lco", "th_TH", "UTF-8", "%d %B %EC %Ey"},
};

const std::vector<moment> &moments() {
    static const std::vector<moment> made = [] {
        std::vector<moment> all;
        for (int i = 0; i < moment_count; ++i) // 1912 to 2035, when Taiwan's era has begun
            all.push_back(moment_on_day((i * 7919L) % 45000 - 21000, i * 86 % 86400));
        return all;
    }();
    return made;
}

// Processor time of one pass over the moments, in nanoseconds a moment: other programs of the machine
// do not count.
template <typename Call> double nanoseconds(Call call) {
    const auto now = [] {
        timespec time;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
    };
    const double start = now();
    for (size_t i = 0; i < moment_count; ++i)
        benchmark::DoNotOptimize(call(i));
    benchmark::ClobberMemory();
    return (now() - start) / moment_count;
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

void to_text(benchmark::State &state, const side &s, const char *format) {
    uselocale(s.library);
    size_t (*const by_format)(char *, size_t, const char *, const tm *) = strftime;
    char text[text_size];
    beside(
        state,
        [&](size_t i) { return gl_mbsftime(s.lc, text, text_size, format, &moments()[i].engine); },
        [&](size_t i) { return by_format(text, text_size, format, &moments()[i].library); });
}

void from_text(benchmark::State &state, const side &s, const char *format) {
    uselocale(s.library);
    std::vector<std::string> texts;
    for (const moment &m : moments()) {
        char text[text_size];
        gl_alt_tm scanned = {};
        gl_mbsftime(s.lc, text, text_size, format, &m.engine);
        texts.emplace_back(text);
        tm library = {};
        if (gl_mbsptime(s.lc, text, format, &scanned) == nullptr)
            abort();
        if (strptime(text, format, &library) == nullptr) {
            state.SkipWithError("the library does not read what it writes");
            return;
        }
    }
    beside(
        state,
        [&](size_t i) {
            gl_alt_tm scanned = {};
            return gl_mbsptime(s.lc, texts[i].c_str(), format, &scanned);
        },
        [&](size_t i) {
            tm scanned = {};
            return strptime(texts[i].c_str(), format, &scanned);
        });
}

} // namespace

int main(int argc, char **argv) {
    for (const row &r : rows) {
        const side *s = new side(load(r.object, r.source, r.charmap));
        const std::string name = r.name;
        benchmark::RegisterBenchmark(
            (name + "/gl_mbsftime_beside_strftime").c_str(),
            [s, &r](benchmark::State &state) { to_text(state, *s, r.format); });
        benchmark::RegisterBenchmark(
            (name + "/gl_mbsptime_beside_strptime").c_str(),
            [s, &r](benchmark::State &state) { from_text(state, *s, r.format); });
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
