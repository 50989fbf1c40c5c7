// Setting, asking, sharing and releasing categories.

#include "gls/locale_texts.h"
#include "gls/naming/category_words.h"
#include "gls/objects/locale_object.h"
#include <kestrion/categories.h>
#include <kestrion/char_length.h>
#include <kestrion/code_set_registry.h>
#include <kestrion/gls_errors.h>
#include <kestrion/langinfo.h>
#include <kestrion/plug_in.h>
#include <kestrion/time_names.h>

using namespace kestrion;

namespace {

class Categories : public testing::Test {
protected:
    Categories() {
        latin = object_of(latin1());
        other = latin;
        other.sections[4].replace(0, strlen("gregorian"), "hebrew");
        directory.write("latin.lco", latin.all());
        directory.write("other.lco", other.all());
        directory.write("wide.lco", object_of(two_byte()).all());
        directory.write("default.lco", latin.all());
        gl_cache_registry(nullptr, "/nonexistent"); // the built-in one
        gl_create_null_locale_4(&lc);
    }
    ~Categories() override { gl_lc_unload(lc); }

    // The names that setting gives; "null" for none.
    std::string set(int32_t category, const char *text) {
        lc->err = 0;
        char *names = set_categories(lc, category, text, directory.path().c_str());
        std::string result = names != nullptr ? names : "null";
        gl_destroystring(names);
        return result;
    }
    static std::string all(const std::string &name) {
        std::string text;
        for (const category_word &word : category_words)
            text += std::string(word.text) + " = " + name + " ; ";
        return text;
    }

    temp_dir directory;
    object_text latin, other;
    locale_rec *lc = nullptr;
};

TEST_F(Categories, NamesAreSetAndAskedFor) {
    EXPECT_EQ(set(GL_CAT_ALL, "latin.lco"), all("latin.lco"));
    EXPECT_EQ(lc->err, 0);
    EXPECT_EQ(lc->is_single_byte, 1);
    EXPECT_EQ(lc->code_set_order, 1);
    EXPECT_EQ(lc->wide_file_names[0][4], 'n');
    EXPECT_EQ(set(GL_CAT_TIME, "other.lco"), "other.lco");
    EXPECT_STREQ(gl_nl_langinfo(lc, GL_ITEM_CALENDAR), "hebrew");
    EXPECT_EQ(set(GL_CAT_TIME, nullptr), "other.lco");
    std::string composite = set(GL_CAT_ALL, nullptr);
    EXPECT_EQ(composite.substr(composite.find("GL_TIME")),
              "GL_TIME = other.lco ; GL_MESSAGES = latin.lco ; ");
    EXPECT_EQ(set(GL_CAT_ALL, composite.c_str()), composite) << "what is answered can be set";
    EXPECT_EQ(set(GL_CAT_NUMERIC, "GL_TIME = latin.lco ; GL_NUMERIC =   other.lco"), "other.lco");
}

TEST_F(Categories, TheEnvironmentDecidesForAnEmptyText) {
    EXPECT_EQ(set(GL_CAT_ALL, ""), all("native"));
    setenv("GL_LANG", "other.lco", 1);
    EXPECT_EQ(set(GL_CAT_TIME, ""), "other.lco");
    setenv("GL_TIME", "latin.lco", 1);
    EXPECT_EQ(set(GL_CAT_TIME, ""), "latin.lco");
    setenv("GL_ALL", "other.lco", 1);
    EXPECT_EQ(set(GL_CAT_TIME, ""), "other.lco");
    setenv("GL_ALL", std::string(34, 'x').c_str(), 1);
    EXPECT_EQ(set(GL_CAT_TIME, ""), "null");
    EXPECT_EQ(lc->err, GLS_ERR_FILE);
}

TEST_F(Categories, BadSettingsAreRefused) {
    std::string name33(29, 'n');
    name33 += ".lco";
    directory.write(name33, latin.all());
    directory.write("a/b.lco", latin.all());
    const std::string out_of_it = "../" + directory.path().substr(directory.path().rfind('/') + 1);
    struct {
        int32_t category;
        std::string text;
        int32_t error;
    } const cases[] = {
        {GL_CAT_CTYPE, name33, GLS_ERR_MIXED_CODE_SETS}, // loads; the other categories are empty
        {GL_CAT_CTYPE, name33 + "x", GLS_ERR_FILE},
        {GL_CAT_CTYPE, "missing.lco", GLS_ERR_FILE},
        {GL_CAT_CTYPE, "a/b.lco", GLS_ERR_MIXED_CODE_SETS},
        {GL_CAT_CTYPE, out_of_it + "/a/b.lco", GLS_ERR_FILE}, // it is there
        {GL_CAT_CTYPE, "a/../latin.lco", GLS_ERR_FILE},
        {GL_CAT_CTYPE,
         "a\xff..\xff"
         "latin.lco",
         GLS_ERR_FILE}, // marks become slashes
        {GL_CAT_CTYPE, std::string(312, ' '), GLS_ERR_ARGUMENT},
        {GL_CAT_CTYPE, std::string(311, ' '), GLS_ERR_FILE},
        {0, "latin.lco", GLS_ERR_ARGUMENT},
        {8, "latin.lco", GLS_ERR_ARGUMENT},
    };
    for (const auto &c : cases) {
        std::string result = set(c.category, c.text.c_str());
        EXPECT_EQ(lc->err, c.error) << c.text;
        EXPECT_EQ(result == "null", c.error != GLS_ERR_MIXED_CODE_SETS) << c.text;
    }
    EXPECT_EQ(set(9, nullptr), "null");
}

TEST_F(Categories, AFailedCategoryIsEmptyAndTheEarlierOnesStay) {
    ASSERT_EQ(set(GL_CAT_ALL, "latin.lco"), all("latin.lco"));
    EXPECT_EQ(set(GL_CAT_MONETARY, "wide.lco"), "null");
    EXPECT_EQ(lc->err, GLS_ERR_OTHER_CODE_SET);
    EXPECT_STREQ(lc->monetary_cat.currency_symbol, "");
    EXPECT_EQ(lc->monetary_cat.frac_digits, gl_money_unset);
    EXPECT_STREQ(lc->numeric_cat.decimal_point, ".");
    EXPECT_STREQ(lc->cs_names[3], "");
    std::string broken = latin.all();
    directory.write("broken.lco", broken.substr(0, broken.find(category_markers[4]) + 20));
    EXPECT_EQ(set(GL_CAT_ALL, "broken.lco"), "null");
    EXPECT_EQ(lc->err, GLS_ERR_CALENDAR);
    EXPECT_EQ(gl_mb_loc_max(lc), 1);
    EXPECT_STREQ(lc->time_cat.d_fmt, "");
    EXPECT_STREQ(lc->messages_cat.yesstr, "yes") << "the work ends at the failure";
    EXPECT_EQ(set(GL_CAT_CTYPE, "wide.lco"), "null");
    gl_wchar wide[4];
    EXPECT_EQ(lc->mbstowcs_fn(lc, wide, "a", 4), -1) << "an empty category has no characters";
}

// A code set may grow from one object to the next; the texts that are read before the record is
// settled are already walked by the new one.
TEST_F(Categories, ARecordOfSingleBytesTakesAMultibyteObject) {
    code_set grown = two_byte();
    grown.name = "8859-1";
    object_text object = object_of(grown);
    object.sections[3].replace(object.sections[3].find("1 24"), 4, "2 a1a2");
    directory.write("grown.lco", object.all());
    ASSERT_EQ(set(GL_CAT_ALL, "latin.lco"), all("latin.lco"));
    ASSERT_EQ(set(GL_CAT_ALL, "grown.lco"), all("grown.lco"));
    EXPECT_EQ(lc->monetary_cat.wide_currency_symbol[0], 0xa1a2u);
    EXPECT_EQ(lc->monetary_cat.wide_currency_symbol[1], 0u);
    EXPECT_EQ(lc->sb_upper, nullptr);
}

TEST_F(Categories, LentDataOutliveTheBorrower) {
    counting_allocator memory;
    locale_rec *lender, *borrower;
    ASSERT_EQ(gl_createlocale2_4(&lender, directory.path().c_str()), 0);
    ASSERT_EQ(gl_create_null_locale_4(&borrower), 0);
    for (int32_t c = GL_CAT_CTYPE; c <= GL_CAT_MESSAGES; ++c)
        EXPECT_EQ(gl_copy_cat(borrower, lender, c), c == GL_CAT_MESSAGES ? 0 : -1) << c;
    EXPECT_EQ(borrower->err, GLS_ERR_MIXED_CODE_SETS) << "while some were still empty";
    EXPECT_EQ(borrower->shared[0], 1);
    EXPECT_EQ(borrower->is_single_byte, 1);
    EXPECT_NE(borrower->sb_upper, lender->sb_upper);
    EXPECT_EQ(borrower->time_cat.day[0], lender->time_cat.day[0]);
    borrower->err = 0;
    EXPECT_EQ(gl_copy_cat(borrower, lender, 8), -1);
    EXPECT_EQ(borrower->err, GLS_ERR_ARGUMENT);
    char *names = set_categories(borrower, GL_CAT_TIME, "other.lco", directory.path().c_str());
    EXPECT_STREQ(names, "other.lco");
    gl_destroystring(names);
    EXPECT_EQ(borrower->shared[4], 0) << "its own data, which go with it";
    gl_free_category(borrower, GL_CAT_MONETARY);
    EXPECT_EQ(borrower->shared[3], 0);
    EXPECT_EQ(gl_make_null_category(borrower, GL_CAT_NUMERIC), 0);
    EXPECT_EQ(borrower->shared[2], 0);
    gl_free_nonshared_loc(borrower);
    EXPECT_STREQ(lender->time_cat.day[0], "Sunday");
    EXPECT_EQ(gl_mbsbytes(lender, "abc"), 4);
    gl_lc_unload(lender);
}

TEST_F(Categories, WholeLocalesLoadBySpecifierOrFileName) {
    const std::string dir = directory.path();
    directory.write("en_us/0333.lco", latin.all());
    directory.write("registry", "8859-1 819\n");
    locale_rec *loaded;
    gl_cache_registry(nullptr, (dir + "/registry").c_str());
    EXPECT_EQ(gl_lc_load(&loaded, "en_US.8859-1", nullptr, dir.c_str()), 0);
    EXPECT_STREQ(loaded->file_names[5], "en_us/0333.lco");
    gl_lc_unload(loaded);
    EXPECT_EQ(gl_lc_load(&loaded, "latin.lco", nullptr, dir.c_str()), 0) << "no specifier";
    EXPECT_EQ(loaded->err, 0);
    gl_lc_unload(loaded);
    EXPECT_EQ(gl_lc_load(&loaded, nullptr, nullptr, dir.c_str()), -1);
    EXPECT_EQ(loaded->err, GLS_ERR_ARGUMENT);
    gl_lc_unload(loaded);
    EXPECT_EQ(gl_lc_load(&loaded, "de_DE.8859-1", nullptr, dir.c_str()), -1);
    EXPECT_EQ(loaded->err, GLS_ERR_FILE);
    gl_lc_unload(loaded);
    // A code set that nobody knows loads, and the word says so.
    object_text unknown = latin;
    unknown.head.replace(unknown.head.find("8859-1"), 6, "nobody");
    directory.write("unknown.lco", unknown.all());
    EXPECT_EQ(gl_lc_load(&loaded, "unknown.lco", nullptr, dir.c_str()), -1);
    EXPECT_EQ(loaded->err, GLS_ERR_SPECIFIER);
    EXPECT_EQ(gl_mb_loc_max(loaded), 1);
    gl_lc_unload(loaded);
    gl_free_registry_cache();
    gl_lc_unload(nullptr);
    gl_lc_unload(&loc_nomem);
    EXPECT_EQ(gl_useglu(2), 0);
    EXPECT_EQ(glu_capable, 0);
}

// An allocator of the caller's whose blocks the engine could not release.
struct name_arena {
    alignas(std::max_align_t) static inline char bytes[4096];
    static inline size_t used, left_to_give;
    static void *take(size_t size) {
        if (left_to_give == 0)
            return nullptr;
        --left_to_give;
        char *const block = bytes + used;
        used += (size + 15) / 16 * 16;
        return block;
    }
};

TEST_F(Categories, NamesOfTheCalendarComeInOneBlockOfTheCallers) {
    ASSERT_EQ(set(GL_CAT_ALL, "latin.lco"), all("latin.lco"));
    const struct {
        decltype(&gl_mbstimeinfo) names_of;
        int32_t kind, count;
        const char *first, *last;
    } rows[] = {{gl_mbstimeinfo_ext, GL_NAMES_ABMON, 12, "Jan", "Dec"},
                {gl_mbstimeinfo, GL_NAMES_ERA_SECOND, 2, "N", "O"}};
    for (const auto &row : rows) {
        char **names = nullptr;
        int32_t count = 0;
        name_arena::left_to_give = 1;
        ASSERT_EQ(row.names_of(lc, row.kind, name_arena::take, &names, &count), 0);
        ASSERT_EQ(count, row.count);
        EXPECT_STREQ(names[0], row.first);
        EXPECT_STREQ(names[count - 1], row.last);
        EXPECT_EQ(row.names_of(lc, row.kind, name_arena::take, &names, &count), -1);
        EXPECT_EQ(names, nullptr);
    }
}

// Without a directory the search applies: GL_PATH alone when it is set.
TEST_F(Categories, ObjectsAreSearchedForAndTheDefaultOneToo) {
    setenv("GL_PATH", directory.path().c_str(), 1);
    locale_rec *loaded;
    EXPECT_EQ(gl_createlocale_4(&loaded), 0);
    EXPECT_STREQ(loaded->file_names[0], "native");
    char *names = gl_setlocale_4(loaded, GL_CAT_TIME, "other.lco");
    EXPECT_STREQ(names, "other.lco");
    gl_destroystring(names);
    gl_lc_unload(loaded);
}

} // namespace
