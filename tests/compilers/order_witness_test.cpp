// The order of every shipped locale beside that of the C library for the same source and charmap, on
// words of its language and on texts of all its characters; and what must hold of any order.
//
// An object has one direction a level and does not compare by position. For texts of any characters
// the C library's locale is therefore made of sources without the two, so that no difference is
// left to be blamed on them; words are compared in the order of the source as it is.

#include "compilers/posix/charmap.h"
#include "compilers/posix/collation_order.h"
#include <kestrion/categories.h>
#include <kestrion/collation.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/multi.h>
#include <kestrion/sort_key.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iconv.h>
#include <locale.h>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <stdlib.h>
#include <string.h>

namespace fs = std::filesystem;
using namespace kestrion;

// The C library keeps a copy of LOCPATH that it never gives back.
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions() { return "leak:argz_add_sep\n"; }

namespace {

constexpr const char *system_sources = "/usr/share/i18n";

struct shipped_locale {
    std::string source, charmap, code_set, object;
};

void PrintTo(const shipped_locale &row, std::ostream *out) {
    *out << row.source << " " << row.charmap;
}

// All but the Thai ones, whose method is not the C library's.
std::vector<shipped_locale> shipped() {
    std::vector<shipped_locale> found;
    std::ifstream list(KESTRION_SOURCE_DIR "/locales/shipped");
    for (std::string line; std::getline(list, line);) {
        shipped_locale row;
        if (!line.empty() && line[0] != '#' &&
            std::istringstream(line) >> row.source >> row.charmap >> row.code_set >> row.object &&
            row.charmap != "TIS-620")
            found.push_back(row);
    }
    return found;
}

// Where an object may differ from its source in texts of any characters. Words never do.
enum difference { unlisted, one_weight, dropped, difference_count };
constexpr const char *reasons[difference_count] = {
    "characters that the source does not list go last by their codes, not first and equal",
    "several places at a level became one weight, which ends where the next character begins",
    "a collating element was dropped",
};

class OrderWitness : public testing::TestWithParam<shipped_locale> {
protected:
    void SetUp() override {
        char name[] = "/tmp/kestrion-order-XXXXXX";
        directory_ = mkdtemp(name);
        write_level_sources();
        setenv("LOCPATH", directory_.c_str(), 1);
        ASSERT_EQ(gl_create_null_locale_4(&lc_), 0);
        char *names = set_categories(lc_, GL_CAT_ALL, GetParam().object.c_str(),
                                     KESTRION_BUILD_DIR "/gls/lc11");
        ASSERT_NE(names, nullptr) << "error " << lc_->err;
        gl_destroystring(names);
        lc_->err = 0;
    }
    void TearDown() override {
        gl_lc_unload(lc_);
        if (witness_ != nullptr)
            freelocale(witness_);
        fs::remove_all(directory_);
    }

    // Sources that differ from the system's by directions and position alone.
    void write_level_sources() {
        fs::create_directories(directory_ + "/i18n/locales");
        for (const char *name : {"iso14651_t1_common", "iso14651_t1", "iso14651_t1_pinyin"}) {
            std::ifstream in(std::string(system_sources) + "/locales/" + name);
            std::ofstream out(directory_ + "/i18n/locales/" + name);
            for (std::string line; std::getline(in, line);) {
                if (line.starts_with("order_start <SPECIAL>;forward;backward"))
                    line.replace(line.find("backward"), 8, "forward");
                if (const size_t at = line.find(",position"); at != std::string::npos)
                    line.erase(at, 9);
                out << line << "\n";
            }
        }
    }

    // Makes the C library's locale, of the system's sources or of those in another directory.
    void make_witness(const std::string &sources) {
        const std::string name = directory_ + "/witness" + std::to_string(sources.size());
        const std::string command = (sources.empty() ? "" : "I18NPATH=" + sources + " ") +
                                    "localedef -c -f " + GetParam().charmap + " -i " +
                                    GetParam().source + " " + name + " >/dev/null 2>&1";
        (void)!system(command.c_str());
        if (witness_ != nullptr)
            freelocale(witness_);
        witness_ = newlocale(LC_ALL_MASK, name.substr(directory_.size() + 1).c_str(), nullptr);
        ASSERT_NE(witness_, nullptr) << command;
    }

    // The characters of the code set that are written as they are read, and what the source does
    // with them that an object may do otherwise.
    void list_characters() {
        const auto file =
            find_source_file(GetParam().charmap, {std::string(system_sources) + "/charmaps"});
        const charmap map(*file);
        source_library library({std::string(system_sources) + "/locales"});
        diagnostics quiet(nullptr);
        read_collation_order(library, library.open(GetParam().source), quiet, order_);
        for (const charmap_row &row : map.rows) {
            if (row.one_way || row.code_point == no_code_point || row.code_point == 0)
                continue;
            const std::string text(row.sequence.text());
            const collation_element *element = order_.find(row.code_point);
            if (element == nullptr)
                unlisted_.push_back(text);
            else
                characters_.push_back(text);
            if (element == nullptr)
                note(text, unlisted);
            else if (is_one_weight(*element, row.sequence.packed()))
                note(text, one_weight);
        }
        for (const collation_element &element : order_.elements) {
            std::string text;
            for (uint32_t c : element.characters)
                text += map.find(c) != nullptr ? std::string(map.find(c)->sequence.text()) : "\xff";
            if (element.characters.size() > 1 && element.listed)
                note(text, has_contraction(text) ? one_weight : dropped);
        }
    }
    void note(const std::string &text, difference what) { odd_.emplace(text, what); }

    uint16_t row_of(uint32_t wide) const {
        const void *found = _gl_retrieve_wchar_multi_nl(lc_, wide, lc_->collate_cat.row_table);
        uint16_t row = 0;
        if (found != nullptr)
            memcpy(&row, found, sizeof row);
        return row;
    }
    bool is_one_weight(const collation_element &element, uint32_t wide) const {
        const collate_rec &r = lc_->collate_cat;
        for (int32_t level = 0; level < r.level_count; ++level)
            if (element.weight(static_cast<size_t>(level)).size() > 1 &&
                !(r.level_weights[level][row_of(wide)] & coll_expands))
                return true;
        return false;
    }
    bool has_contraction(const std::string &text) const {
        for (int32_t i = 0; i < lc_->collate_cat.contraction_count; ++i) {
            const coll_contraction &c = lc_->collate_cat.contractions[i];
            std::string bytes;
            for (int32_t k = 0; k < c.length; ++k)
                for (int shift = 24; shift >= 0; shift -= 8)
                    if (c.chars[k] >> shift != 0)
                        bytes += static_cast<char>(c.chars[k] >> shift);
            if (bytes == text)
                return true;
        }
        return false;
    }

    // What of a text may order it otherwise; difference_count for nothing.
    difference oddity(const std::string &text) const {
        difference found = difference_count;
        for (size_t i = 0; i < text.size(); ++i)
            for (size_t length = 1; length <= 12 && length <= text.size() - i; ++length)
                if (const auto odd = odd_.find(text.substr(i, length)); odd != odd_.end())
                    found = std::min(found, odd->second);
        return found;
    }

    std::string key(const std::string &text) {
        char made[2048];
        const int32_t length = gl_full_mbsxfrm(lc_, made, text.c_str(), sizeof made);
        return {made, static_cast<size_t>(std::max(length, 0))};
    }
    static int sign(int number) { return number < 0 ? -1 : number > 0; }

    // Compares two texts, and checks what holds of any.
    void check_pair(const std::string &a, const std::string &b) {
        SCOPED_TRACE(testing::PrintToString(a) + " and " + testing::PrintToString(b));
        const int ours = lc_->mbscoll_fn(lc_, a.c_str(), b.c_str());
        ++pairs_;
        ASSERT_EQ(lc_->err, 0);
        ASSERT_EQ(lc_->mbfscoll_fn(lc_, b.data(), static_cast<int32_t>(b.size()), a.data(),
                                   static_cast<int32_t>(a.size())),
                  -ours);
        ASSERT_EQ(sign(key(a).compare(key(b))), ours) << "keys";
        if (ours == 0 || ours == sign(strcoll_l(a.c_str(), b.c_str(), witness_)))
            return;
        const difference odd = std::min(oddity(a), oddity(b));
        ASSERT_NE(odd, difference_count) << "the C library says " << -ours;
        ++differences_[odd];
    }

    // Compares texts at random, and neighbours in the C library's order.
    void check_texts(std::vector<std::string> texts, size_t pairs) {
        for (size_t i = 0; i < pairs && !HasFatalFailure(); ++i)
            check_pair(texts[random_() % texts.size()], texts[random_() % texts.size()]);
        std::sort(texts.begin(), texts.end(), [this](const std::string &a, const std::string &b) {
            return strcoll_l(a.c_str(), b.c_str(), witness_) < 0;
        });
        const size_t step = std::max<size_t>(1, texts.size() / pairs);
        for (size_t i = 1; i < texts.size() && !HasFatalFailure(); i += step)
            check_pair(texts[i - 1], texts[i]);
    }

    // Texts of up to five characters.
    std::vector<std::string> texts_of(const std::vector<std::string> &characters, size_t count) {
        std::vector<std::string> texts(count);
        for (std::string &text : texts)
            for (size_t length = 1 + random_() % 5; length > 0; --length)
                text += characters[random_() % characters.size()];
        return texts;
    }

    // The words of a language in the locale's code set.
    std::vector<std::string> words_of(const std::string &list, size_t most) {
        std::vector<std::string> words;
        std::ifstream in("/usr/share/dict/" + list);
        EXPECT_TRUE(in) << list;
        iconv_t cd = iconv_open(GetParam().charmap.c_str(), "UTF-8");
        for (std::string line; std::getline(in, line);) {
            char out[400];
            char *from = line.data(), *to = out;
            size_t left = line.size(), room = sizeof out;
            iconv(cd, nullptr, nullptr, nullptr, nullptr);
            if (iconv(cd, &from, &left, &to, &room) == 0)
                words.emplace_back(out, to);
        }
        iconv_close(cd);
        std::vector<std::string> some;
        for (size_t i = 0; i < words.size(); i += words.size() / most + 1)
            some.push_back(words[i]);
        return some;
    }

    std::string directory_;
    locale_rec *lc_ = nullptr;
    locale_t witness_ = nullptr;
    collation_order order_;
    std::vector<std::string> characters_, unlisted_;
    std::map<std::string, difference> odd_;
    std::mt19937 random_{20};
    size_t pairs_ = 0;
    size_t differences_[difference_count] = {};
};

TEST_P(OrderWitness, TextsOfAnyCharacters) {
    list_characters();
    make_witness(directory_ + "/i18n");
    std::vector<std::string> short_ones, ascii;
    for (const std::string &c : characters_) {
        if (c.size() <= 2)
            short_ones.push_back(c);
        if (c.size() == 1 && (isalpha(static_cast<unsigned char>(c[0])) || strchr(" -'.", c[0])))
            ascii.push_back(c);
    }
    check_texts(characters_, 40000);
    for (const auto *from : {&characters_, &short_ones, &ascii})
        check_texts(texts_of(*from, 30000), 30000);
    if (!unlisted_.empty()) {
        std::vector<std::string> some = texts_of(unlisted_, 500);
        for (std::string &text : some)
            text = characters_[random_() % characters_.size()] + text;
        check_texts(some, 500);
    }
    EXPECT_GE(pairs_, 150000u);
    for (int i = 0; i < difference_count; ++i)
        if (differences_[i] != 0)
            printf("%zu of %zu pairs differ: %s\n", differences_[i], pairs_, reasons[i]);
}

TEST_P(OrderWitness, WordsOfTheLanguage) {
    const std::map<std::string, const char *> lists = {{"en", "american-english"},
                                                       {"de", "ngerman"},
                                                       {"fr", "french"},
                                                       {"sv", "swedish"},
                                                       {"pl", "polish"}};
    make_witness("");
    const auto own = lists.find(GetParam().source.substr(0, 2));
    // Greek words are not in a list, and the Thai source does not list the accented letters of English.
    const bool latin = strchr("ecdfhpst", GetParam().source[0]) != nullptr &&
                       GetParam().source.substr(0, 2) != "el" &&
                       GetParam().source.substr(0, 2) != "th";
    if (own != lists.end())
        check_texts(words_of(own->second, 60000), 60000);
    else if (latin)
        check_texts(words_of("american-english", 20000), 20000);
    for (size_t count : differences_)
        EXPECT_EQ(count, 0u);
}

INSTANTIATE_TEST_SUITE_P(All, OrderWitness, testing::ValuesIn(shipped()), [](const auto &row) {
    std::string name = row.param.source + "_" + row.param.charmap;
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !isalnum(static_cast<unsigned char>(c)); },
        '_');
    return name;
});

} // namespace
