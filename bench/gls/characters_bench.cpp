// Operations on characters beside the C library's and ICU's, and loading locale objects. Both sides
// of a row run in turns within one round, so that they meet the same machine; "times" is the peer's
// time over ours. The C library's locales are made by localedef in a temporary directory.

#include "support/temp_dir.h"
#include <kestrion/categories.h>
#include <kestrion/char_case.h>
#include <kestrion/char_class.h>
#include <kestrion/char_convert.h>
#include <kestrion/char_length.h>
#include <kestrion/code_set_registry.h>
#include <kestrion/ctype_masks.h>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <iconv.h>
#include <locale.h>
#include <random>
#include <stdlib.h>
#include <string>
#include <time.h>
#include <unicode/ucasemap.h>
#include <unicode/ustring.h>
#include <vector>
#include <wchar.h>
#include <wctype.h>

namespace {

// Words of a text, which is made of them in random order: a text that repeats itself would be known
// by heart to the branch predictor.
using words = std::vector<const char *>;
const words french = {"Portez ",  "ce ",    "vieux ",    "whisky ",   "au ",   "juge ",
                      "blond ",   "qui ",   "fume",      ", ",        "près ", "du ",
                      "château ", "où ",    "l'été ",    "dernier ",  "les ",  "élèves ",
                      "ont ",     "dîné ",  "; ",        "François ", "a ",    "reçu ",
                      "clés",     ". ",     "« Noël » ", "fut ",      "fêté ", "cœur ",
                      "naïveté ", "grand ", "maison ",   "pendant ",  "Élise "};
const words japanese = {"吾輩は",   "猫である", "。",     "名前は", "まだ", "無い", "どこで",
                        "生れたか", "とんと",   "見当が", "つかぬ", "、",   "ABC",  "カタカナ",
                        "abc ",     "12",       "東京",   "大学へ", "行く"};

struct sample {
    std::string bytes;
    std::vector<wchar_t> library_wide;
    std::vector<gl_wchar> wide;
    double characters;
};

struct side {
    locale_rec *lc;
    locale_t library;
};

side load(const char *object, const char *source, const char *charmap) {
    static const temp_dir library_locales;
    const std::string directory = KESTRION_BUILD_DIR "/gls/lc11";
    const std::string name = library_locales.at(std::string(source) + "." + charmap);
    const std::string command =
        "localedef --quiet -c -i " + std::string(source) + " -f " + charmap + " " + name;
    side made = {};
    if (gl_lc_load(&made.lc, object, nullptr, directory.c_str()) != 0 ||
        system(command.c_str()) < 0)
        abort();
    setenv("LOCPATH", library_locales.path().c_str(), 1);
    made.library = newlocale(LC_CTYPE_MASK, (std::string(source) + "." + charmap).c_str(), nullptr);
    if (!made.library)
        abort();
    return made;
}

const side &utf8_side() {
    static const side made = load("ja_jp/e01c.lco", "ja_JP", "UTF-8");
    return made;
}
const side &sjis_side() {
    static const side made = load("ja_jp/e006.lco", "ja_JP", "SHIFT_JIS");
    return made;
}
const side &latin1_side() {
    static const side made = load("fr_fr/0333.lco", "fr_FR", "ISO-8859-1");
    return made;
}

sample make_sample(const side &s, const words &text, const char *code_set) {
    sample made;
    std::string utf8;
    std::mt19937 random(1);
    while (utf8.size() < 60000)
        utf8 += text[random() % text.size()];
    std::string out(utf8.size() * 2, '\0');
    char *from = utf8.data(), *to = out.data();
    size_t from_left = utf8.size(), to_left = out.size();
    iconv_t converter = iconv_open((std::string(code_set) + "//TRANSLIT").c_str(), "UTF-8");
    iconv(converter, &from, &from_left, &to, &to_left);
    iconv_close(converter);
    made.bytes.assign(out.data(), out.size() - to_left);
    uselocale(s.library);
    made.library_wide.resize(made.bytes.size() + 1);
    size_t count = mbstowcs(made.library_wide.data(), made.bytes.c_str(), made.library_wide.size());
    made.wide.resize(made.bytes.size() + 1);
    if (s.lc->mbstowcs_fn(s.lc, made.wide.data(), made.bytes.c_str(),
                          static_cast<int32_t>(made.wide.size())) != static_cast<int32_t>(count))
        abort();
    made.library_wide.resize(count);
    made.wide.resize(count);
    made.characters = static_cast<double>(count);
    return made;
}

// Processor time of one call, in nanoseconds: other programs of the machine do not count.
template <typename Call> double nanoseconds(Call call) {
    const auto now = [] {
        timespec time;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
    };
    const double start = now();
    benchmark::DoNotOptimize(call());
    benchmark::ClobberMemory();
    return now() - start;
}

// Reports the fastest round of either side, by the character.
template <typename Ours, typename Theirs>
void beside(benchmark::State &state, double characters, Ours ours, Theirs theirs) {
    double our_time = 1e18, their_time = 1e18;
    for (auto round : state) {
        (void)round;
        our_time = std::min(our_time, nanoseconds(ours));
        their_time = std::min(their_time, nanoseconds(theirs));
    }
    state.counters["ns"] = our_time / characters;
    state.counters["peer_ns"] = their_time / characters;
    state.counters["times"] = their_time / our_time;
}

// ---- Walking

void mblen_row(benchmark::State &state, const side &s, const sample &text) {
    uselocale(s.library);
    beside(
        state, text.characters,
        [&] {
            mbl_state walk;
            int64_t characters = 0;
            _qvt_gl_getmbl(s.lc, &walk);
            for (const char *at = text.bytes.c_str();; ++characters) {
                const int32_t length = _qvt_gl_fast_mblen(&walk, at);
                if (length <= 0)
                    return characters;
                at += length;
            }
        },
        [&] {
            int64_t characters = 0;
            const char *at = text.bytes.c_str();
            for (int length; (length = mblen(at, MB_CUR_MAX)) > 0; ++characters)
                at += length;
            return characters;
        });
}

void mbtowc_row(benchmark::State &state, const side &s, const sample &text) {
    uselocale(s.library);
    const char *end = text.bytes.data() + text.bytes.size();
    beside(
        state, text.characters,
        [&] {
            gl_wchar wide, sum = 0;
            for (const char *at = text.bytes.c_str(); at < end; sum += wide)
                at += _qvt_gl_full_mbtowc(s.lc, &wide, at, static_cast<int32_t>(end - at));
            return sum;
        },
        [&] {
            mbstate_t shift = {};
            wchar_t wide, sum = 0;
            for (const char *at = text.bytes.c_str(); at < end; sum += wide)
                at += mbrtowc(&wide, at, static_cast<size_t>(end - at), &shift);
            return sum;
        });
}

// ---- Case

// Ours over a text, the C library's three calls a character.
void upper_beside_library(benchmark::State &state, const side &s, const sample &text) {
    uselocale(s.library);
    std::vector<char> out(text.bytes.size() * 4 + 8);
    beside(
        state, text.characters, [&] { return gl_tombsupper(s.lc, out.data(), text.bytes.c_str()); },
        [&] {
            mbstate_t in_shift = {}, out_shift = {};
            const char *at = text.bytes.c_str(), *end = at + text.bytes.size();
            char *to = out.data();
            for (wchar_t wide; at < end;) {
                at += mbrtowc(&wide, at, static_cast<size_t>(end - at), &in_shift);
                to += wcrtomb(to, static_cast<wchar_t>(towupper(static_cast<wint_t>(wide))),
                              &out_shift);
            }
            return to - out.data();
        });
}

// The peer for UTF-8 text: ICU's own call for it, with a case map that is opened once.
void upper_beside_icu_utf8(benchmark::State &state, const side &s, const sample &text) {
    UErrorCode status = U_ZERO_ERROR;
    UCaseMap *map = ucasemap_open("fr", 0, &status);
    std::vector<char> out(text.bytes.size() * 4 + 8);
    beside(
        state, text.characters, [&] { return gl_tombsupper(s.lc, out.data(), text.bytes.c_str()); },
        [&] {
            status = U_ZERO_ERROR;
            return ucasemap_utf8ToUpper(map, out.data(), static_cast<int32_t>(out.size()),
                                        text.bytes.data(), static_cast<int32_t>(text.bytes.size()),
                                        &status);
        });
    ucasemap_close(map);
}

// What remains for a program that has UTF-8 and takes ICU's call for UTF-16: both conversions.
void upper_beside_icu_by_utf16(benchmark::State &state, const side &s, const sample &text) {
    std::vector<UChar> units(text.bytes.size() + 1), upper(text.bytes.size() * 2);
    std::vector<char> out(text.bytes.size() * 4 + 8);
    const auto size_of = [](const auto &v) { return static_cast<int32_t>(v.size()); };
    beside(
        state, text.characters, [&] { return gl_tombsupper(s.lc, out.data(), text.bytes.c_str()); },
        [&] {
            UErrorCode status = U_ZERO_ERROR;
            int32_t length;
            u_strFromUTF8(units.data(), size_of(units), &length, text.bytes.data(),
                          size_of(text.bytes), &status);
            length =
                u_strToUpper(upper.data(), size_of(upper), units.data(), length, "fr", &status);
            u_strToUTF8(out.data(), size_of(out), &length, upper.data(), length, &status);
            return length;
        });
}

// The same without the conversions: no peer, since its text is not ours, but the least that ICU
// spends on case alone.
void upper_beside_icu_utf16_alone(benchmark::State &state, const side &s, const sample &text) {
    std::vector<UChar> units(text.bytes.size() + 1), upper(text.bytes.size() * 2);
    std::vector<char> out(text.bytes.size() * 4 + 8);
    UErrorCode status = U_ZERO_ERROR;
    int32_t length;
    u_strFromUTF8(units.data(), static_cast<int32_t>(units.size()), &length, text.bytes.data(),
                  static_cast<int32_t>(text.bytes.size()), &status);
    beside(
        state, text.characters, [&] { return gl_tombsupper(s.lc, out.data(), text.bytes.c_str()); },
        [&] {
            status = U_ZERO_ERROR;
            return u_strToUpper(upper.data(), static_cast<int32_t>(upper.size()), units.data(),
                                length, "fr", &status);
        });
}

void upper_bytes(benchmark::State &state, const side &s, const sample &text) {
    std::vector<char> out(text.bytes.size() + 1);
    beside(
        state, text.characters, [&] { return gl_tombsupper(s.lc, out.data(), text.bytes.c_str()); },
        [&] {
            for (size_t i = 0; i < text.bytes.size(); ++i)
                out[i] = static_cast<char>(
                    toupper_l(static_cast<unsigned char>(text.bytes[i]), s.library));
            return out[0];
        });
}

void wide_upper(benchmark::State &state, const side &s, const sample &text) {
    beside(
        state, text.characters,
        [&] {
            gl_wchar sum = 0;
            for (gl_wchar wide : text.wide)
                sum += _gl_im_towupper(s.lc, wide);
            return sum;
        },
        [&] {
            wint_t sum = 0;
            for (wchar_t wide : text.library_wide)
                sum += towupper_l(static_cast<wint_t>(wide), s.library);
            return sum;
        });
}

void wide_class(benchmark::State &state, const side &s, const sample &text) {
    beside(
        state, text.characters,
        [&] {
            int count = 0;
            for (gl_wchar wide : text.wide)
                count += _gl_im_iswctype(s.lc, wide, CT_ALPHA) != 0;
            return count;
        },
        [&] {
            int count = 0;
            for (wchar_t wide : text.library_wide)
                count += iswalpha_l(static_cast<wint_t>(wide), s.library) != 0;
            return count;
        });
}

// ---- Loading

void load_object(benchmark::State &state, const char *name) {
    const std::string directory = KESTRION_BUILD_DIR "/gls/lc11";
    for (auto round : state) {
        (void)round;
        locale_rec *lc;
        if (gl_lc_load(&lc, name, nullptr, directory.c_str()) != 0)
            abort();
        gl_lc_unload(lc);
    }
}

template <typename Row>
void add(const char *name, Row row, const side &s, const words &text, const char *code_set) {
    const sample *made = new sample(make_sample(s, text, code_set));
    benchmark::RegisterBenchmark(
        name, [row, &s, made](benchmark::State &state) { row(state, s, *made); });
}

} // namespace

int main(int argc, char **argv) {
    gl_cache_registry(nullptr, KESTRION_SOURCE_DIR "/locales/registry");
    const side &utf8 = utf8_side(), &sjis = sjis_side(), &latin1 = latin1_side();
    add("utf8_french/fast_mblen_beside_mblen", mblen_row, utf8, french, "UTF-8");
    add("utf8_japanese/fast_mblen_beside_mblen", mblen_row, utf8, japanese, "UTF-8");
    add("sjis_japanese/fast_mblen_beside_mblen", mblen_row, sjis, japanese, "SHIFT_JIS");
    add("utf8_french/mbtowc_beside_mbrtowc", mbtowc_row, utf8, french, "UTF-8");
    add("utf8_japanese/mbtowc_beside_mbrtowc", mbtowc_row, utf8, japanese, "UTF-8");
    add("sjis_japanese/mbtowc_beside_mbrtowc", mbtowc_row, sjis, japanese, "SHIFT_JIS");
    add("utf8_french/upper_beside_icu_utf8", upper_beside_icu_utf8, utf8, french, "UTF-8");
    add("utf8_french/upper_beside_icu_by_utf16", upper_beside_icu_by_utf16, utf8, french, "UTF-8");
    add("utf8_french/upper_beside_icu_utf16_alone", upper_beside_icu_utf16_alone, utf8, french,
        "UTF-8");
    add("utf8_french/upper_beside_three_calls", upper_beside_library, utf8, french, "UTF-8");
    add("sjis_japanese/upper_beside_three_calls", upper_beside_library, sjis, japanese,
        "SHIFT_JIS");
    add("latin1_french/upper_beside_toupper_l", upper_bytes, latin1, french, "ISO-8859-1");
    add("utf8_french/towupper_beside_towupper_l", wide_upper, utf8, french, "UTF-8");
    add("utf8_french/class_beside_iswalpha_l", wide_class, utf8, french, "UTF-8");
    add("utf8_japanese/class_beside_iswalpha_l", wide_class, utf8, japanese, "UTF-8");
    benchmark::RegisterBenchmark("load/default.lco", load_object, "default.lco");
    benchmark::RegisterBenchmark("load/ja_jp/e01c.lco", load_object, "ja_jp/e01c.lco");
    benchmark::RegisterBenchmark("load/ja_jp/e006.lco", load_object, "ja_jp/e006.lco");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
