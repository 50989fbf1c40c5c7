// Code-set conversion beside the C library's iconv and ICU's converters, on 1 MB of text.
//
// The objects are compiled by mkcvo into the build tree when the benchmark is built.

#include "side_by_side.h"
#include <kestrion/conversion.h>

#include <benchmark/benchmark.h>
#include <iconv.h>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <unicode/ucnv.h>

namespace {

constexpr size_t text_size = 1 << 20;
constexpr int rounds = 15;

// Realistic text of each language, in UTF-8; repeated up to the size.
constexpr char latin[] =
    "Die Verwaltung der Paßwörter liegt beim Betreiber: wer den Schlüssel hat, öffnet die Datei. "
    "Señor Muñoz préfère garder la clé à côté du serveur. It is a habit that has its price, though.\n";
constexpr char japanese[] = "管理者は暗証番号の一覧を封印し、必要なときに開きます。"
                            "データベースのインストール先 KESTRIONDIR を設定してください。\n";
constexpr char chinese[] =
    "管理员把口令文本封入文件，需要时再打开。请先设置 KESTRIONDIR 环境变量，然后运行命令。\n";

struct pair_row {
    const char *name;
    const char *object; // below the build tree
    const char *text;
    const char *from; // by the peers' names
    const char *to;
    double wanted; // times the better peer
};

constexpr pair_row pairs[] = {
    {"8859-1_to_8859-15", "gls/cv9/0333e02f.cvo", latin, "ISO-8859-1", "ISO-8859-15", 8},
    {"8859-1_to_utf8", "gls/cv9/0333e01c.cvo", latin, "ISO-8859-1", "UTF-8", 1.4},
    {"utf8_to_8859-1", "gls/cv9/e01c0333.cvo", latin, "UTF-8", "ISO-8859-1", 1.25},
    {"sjis_to_eucjp", "gls/cv9/e006e007.cvo", japanese, "SHIFT_JIS", "EUC-JP", 3.5},
    {"eucjp_to_utf8", "gls/cv9/e007e01c.cvo", japanese, "EUC-JP", "UTF-8", 2.3},
    {"utf8_to_eucjp", "gls/cv9/e01ce007.cvo", japanese, "UTF-8", "EUC-JP", 3},
    {"utf8_to_gb18030", "bench/gls/e01c0570.cvo", chinese, "UTF-8", "GB18030", 2.4},
};

std::string by_iconv(const char *from, const char *to, std::string text) {
    iconv_t cd = iconv_open(to, from);
    if (cd == reinterpret_cast<iconv_t>(-1))
        abort();
    std::string out(4 * text.size() + 16, '\0');
    char *in_at = text.data(), *out_at = out.data();
    size_t in_left = text.size(), out_left = out.size();
    if (iconv(cd, &in_at, &in_left, &out_at, &out_left) == static_cast<size_t>(-1))
        abort();
    iconv_close(cd);
    out.resize(out.size() - out_left);
    return out;
}

// `text` over and over, in the code set `to`.
std::string source_text(const char *text, const char *to) {
    std::string utf8;
    while (utf8.size() < text_size)
        utf8 += text;
    return strcmp(to, "UTF-8") == 0 ? utf8 : by_iconv("UTF-8", to, utf8);
}

cv_rec *load(const char *object) {
    cv_rec *cv = nullptr;
    const std::string path = std::string(BUILD_TREE) + "/" + object;
    if (gl_iconv_open1(&cv, path.c_str()) != 0)
        abort();
    return cv;
}

void beside_peers(benchmark::State &state, const pair_row &row) {
    const std::string text = source_text(row.text, row.from);
    const std::string expected = by_iconv(row.from, row.to, text);
    std::string out(expected.size() + 64, '\0');
    cv_rec *cv = load(row.object);
    iconv_t cd = iconv_open(row.to, row.from);
    UErrorCode error = U_ZERO_ERROR;
    UConverter *source = ucnv_open(row.from, &error);
    UConverter *target = ucnv_open(row.to, &error);

    const auto convert = [&](bool storing) {
        const char *at = text.data();
        auto left = static_cast<int32_t>(text.size());
        char *to = storing ? out.data() : nullptr;
        auto room = static_cast<int32_t>(out.size());
        int32_t lossy;
        if (gl_cv_mconv(cv, nullptr, &at, &left, &to, &room, &lossy) != 0 ||
            static_cast<size_t>(room) != out.size() - expected.size())
            abort();
    };
    std::vector<contestant> field = {
        {"ours", [&] { convert(true); }},
        {"measuring", [&] { convert(false); }},
        {"iconv",
         [&] {
             char *at = const_cast<char *>(text.data()), *to = out.data();
             size_t left = text.size(), room = out.size();
             if (iconv(cd, &at, &left, &to, &room) == static_cast<size_t>(-1))
                 abort();
         }},
        {"icu",
         [&] {
             const char *at = text.data();
             char *to = out.data();
             error = U_ZERO_ERROR;
             ucnv_convertEx(target, source, &to, to + out.size(), &at, at + text.size(), nullptr,
                            nullptr, nullptr, nullptr, true, true, &error);
             if (U_FAILURE(error))
                 abort();
         }},
    };
    convert(true);
    if (out.compare(0, expected.size(), expected) != 0)
        abort();
    for (auto round : state) {
        (void)round;
        run_in_turns(field, rounds, 1);
    }
    const double better = std::min(field[2].median(), field[3].median());
    for (const contestant &one : field)
        state.counters[std::string(one.name) + "_us"] = one.median() * 1e6;
    state.counters["times_better_peer"] = better / field[0].median();
    state.counters["wanted"] = row.wanted;
    ucnv_close(source);
    ucnv_close(target);
    iconv_close(cd);
    gl_cv_unload(cv);
}

} // namespace

int main(int argc, char **argv) {
    for (const pair_row &row : pairs)
        benchmark::RegisterBenchmark(row.name, [&row](benchmark::State &state) {
            beside_peers(state, row);
        })->Iterations(1);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
