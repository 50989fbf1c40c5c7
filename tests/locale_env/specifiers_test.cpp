#include <kestrion/categories.h>
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>
#include <kestrion/locale_rec.h>
#include <kestrion/locale_specifiers.h>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <string>

namespace {

// Code-set names resolve by the installation's registry.
class LocaleSpecifiers : public testing::Test {
protected:
    LocaleSpecifiers() {
        setenv("KESTRIONDIR", INSTALLATION, 1);
        ggetenv("DBPATH"); // starts the locale, which settles a client locale of its own
        gls_set_setting(CheckGlsEnv()->state, GLS_CLIENT_LOCALE, nullptr);
    }
};

std::string normal(const std::string &spec) {
    char out[gls_spec_size];
    togensp(spec.c_str(), out);
    return out;
}

void fill_slots(const char *spec) {
    for (char(&slot)[gls_spec_size] : CheckGlsEnv()->state->lc_spec)
        strcpy(slot, spec);
}

TEST_F(LocaleSpecifiers, HaveOneNormalForm) {
    EXPECT_EQ(normal("en_US.8859-1"), "en_US.819");
    EXPECT_EQ(normal("EN_us.Latin-1"), "en_US.819");
    EXPECT_EQ(normal("en_US.819@dict"), "en_US.819@dict");
    EXPECT_EQ(normal("C.UTF-8"), "C.UTF-8") << "what the grammar refuses stays";
    EXPECT_EQ(normal(std::string(50, 'x')), std::string(36, 'x'));
}

TEST_F(LocaleSpecifiers, FileNamesOfTheSystemLoseTheirMark) {
    char out[gls_spec_size];
    int32_t is_gls;
    chglcfile2sp("os/en_US.UTF-8", out, &is_gls);
    EXPECT_STREQ(out, "en_US.UTF-8");
    EXPECT_EQ(is_gls, 0);
    chglcfile2sp("de_de/0333.lco", out, &is_gls);
    EXPECT_STREQ(out, "de_DE.819");
    EXPECT_EQ(is_gls, 1);
    chglcfile2sp(("os/" + std::string(60, 'y')).c_str(), out, &is_gls);
    EXPECT_EQ(out, std::string(36, 'y'));
}

TEST_F(LocaleSpecifiers, AliasesAreFoundByTheirExactLetters) {
    EXPECT_STREQ(getalsloc("sjis"), "ja_JP.sjis");
    EXPECT_STREQ(getalsloc("ujis"), "ja_JP.ujis");
    EXPECT_EQ(getalsloc("SJIS"), nullptr);
    EXPECT_EQ(getalsloc(nullptr), nullptr);
}

TEST_F(LocaleSpecifiers, CompositesNameEachCategory) {
    fill_slots("de_DE.8859-1");
    char out[gls_composite_size];
    for (int slot = 0; slot < GLS_SLOTS; ++slot)
        mk1loccat(slot == GLS_SLOT_TIME ? "en_US.819" : nullptr, slot, out,
                  slot == GLS_SLOT_NUMERIC, "57372", slot == GLS_SLOT_TIME);
    EXPECT_STREQ(
        out, "GL_CTYPE = de_DE.8859-1 ; GL_COLLATE = de_DE.8859-1 ; GL_NUMERIC = de_DE.57372 ; "
             "GL_MONETARY = de_DE.8859-1 ; GL_TIME = en_US.819 ; GL_MESSAGES = de_DE.8859-1 ; ");
    EXPECT_STREQ(CheckGlsEnv()->state->lc_spec[GLS_SLOT_TIME], "en_US.819");
    EXPECT_STREQ(CheckGlsEnv()->state->lc_spec[GLS_SLOT_NUMERIC], "de_DE.57372");
}

struct locspec_row {
    const char *client; // null: not set
    int lc_flags;
    const char *spec1;
    int flag_a, flag_b, keep;
    const char *wanted; // of the last four categories; null: the simple case
    const char *slot;   // of CTYPE afterwards
};

TEST_F(LocaleSpecifiers, TheLocaleForADatabaseFollowsTheClient) {
    constexpr char spec0[] = "de_DE.819";
    const locspec_row rows[] = {
        {"fr_FR.utf8", 0, "de_DE.819", 0, 0, 1, "fr_FR.819", "de_DE.819"}, // the client's language
        {"no locale", 0, "de_DE.819", 0, 0, 0, "no locale", "kept"},       // does not split
        {"de_DE.8859-1", 0, "de_DE.819", 0, 0, 0, nullptr, "kept"}, // equal to the database's
        {"de_DE.8859-1", 0, "en_US.819", 0, 1, 1, nullptr, "de_DE.819"},
        {"de_DE.8859-1", 0, "en_US.819", 1, 0, 1, "de_DE.819", "de_DE.819"},
        {nullptr, 2, "en_US.819", 1, 1, 1, nullptr, "kept"},      // here the slots are never set
        {nullptr, 0, "de_DE.819", 0, 0, 0, nullptr, "de_DE.819"}, // and here always
        {nullptr, 0, "en_US.819", 0, 0, 0, "de_DE.819", "kept"},
    };
    for (const locspec_row &row : rows) {
        new_gls_env_rec &state = *CheckGlsEnv()->state;
        fill_slots("kept");
        state.lc_flags = static_cast<int16_t>(row.lc_flags);
        row.client != nullptr ? setenv("CLIENT_LOCALE", row.client, 1) : unsetenv("CLIENT_LOCALE");
        gls_set_setting(&state, GLS_CLIENT_LOCALE, nullptr);
        char out[gls_composite_size];
        mklocspec(spec0, row.spec1, out, row.flag_a, row.flag_b, row.keep);
        const std::string what =
            std::string(row.client != nullptr ? row.client : "-") + " " + row.spec1;
        if (row.wanted == nullptr) {
            EXPECT_STREQ(out, spec0) << what;
            EXPECT_EQ(state.lc_flags & 1, 1) << what;
        } else {
            const std::string value = row.wanted;
            EXPECT_EQ(out, "GL_CTYPE = de_DE.819 ; GL_COLLATE = " + std::string(row.spec1) +
                               " ; GL_NUMERIC = " + value + " ; GL_MONETARY = " + value +
                               " ; GL_TIME = " + value + " ; GL_MESSAGES = " + value + " ; ")
                << what;
        }
        EXPECT_STREQ(state.lc_spec[GLS_SLOT_CTYPE], row.slot) << what;
    }
}

// Without a client and with the second flag bit the slots are converted to the database's code set.
TEST_F(LocaleSpecifiers, SlotsFollowTheDatabasesCodeSet) {
    fill_slots("fr_FR.utf8");
    CheckGlsEnv()->state->lc_flags = 2;
    char out[gls_composite_size];
    mklocspec("de_DE.819", "de_DE.819", out, 0, 0, 0);
    EXPECT_STREQ(CheckGlsEnv()->state->lc_spec[GLS_SLOT_TIME], "fr_FR.819");
}

TEST_F(LocaleSpecifiers, OnlyTextsOfALengthAreTried) {
    locale_rec *lc = nullptr;
    int32_t is_gls[GLS_SLOTS];
    EXPECT_EQ(get_locale(&lc, nullptr, is_gls), err_locale_load);
    EXPECT_EQ(get_locale(&lc, std::string(286, 'x').c_str(), is_gls), err_locale_load);
    set_glserror(0);
    EXPECT_EQ(get_locale(&lc, std::string(285, 'x').c_str(), is_gls), -1) << "tried, and not found";
    EXPECT_NE(get_glserror(), err_locale_load);
}

TEST_F(LocaleSpecifiers, ACompositeLoadsCategoryByCategory) {
    locale_rec *lc = nullptr;
    int32_t is_gls[GLS_SLOTS];
    ASSERT_EQ(
        get_locale(&lc,
                   "GL_CTYPE = en_US.819 ; GL_COLLATE = en_US.819 ; GL_NUMERIC = de_DE.819 ; "
                   "GL_MONETARY = en_US.819 ; GL_TIME = fr_FR.819 ; GL_MESSAGES = en_US.819 ; ",
                   is_gls),
        0);
    EXPECT_STREQ(lc->file_names[GLS_SLOT_NUMERIC], "de_de/0333.lco");
    EXPECT_STREQ(lc->numeric_cat.decimal_point, ",");
    EXPECT_STREQ(lc->file_names[GLS_SLOT_TIME], "fr_fr/0333.lco");

    fill_slots("");
    ASSERT_EQ(restorelocsp(lc), 0);
    EXPECT_STREQ(CheckGlsEnv()->state->lc_spec[GLS_SLOT_TIME], "fr_FR.819");
    EXPECT_EQ(CheckGlsEnv()->state->lc_is_gls[GLS_SLOT_TIME], 1);
    gl_lc_unload(lc);
}

// The first try takes the text for a whole composite of the engine; the category that it lacks has
// no file.
TEST_F(LocaleSpecifiers, ACompositeWithoutACategoryAsksTheSystemForAll) {
    locale_rec *lc = nullptr;
    int32_t is_gls[GLS_SLOTS];
    EXPECT_EQ(get_locale(&lc, "GL_CTYPE = en_US.819 ; GL_COLLATE = en_US.819 ; ", is_gls), -1);
    for (const int32_t flag : is_gls)
        EXPECT_EQ(flag, 0);
}

} // namespace
