// Start-up in fresh processes: each row of a table is a child with an environment of its own.

#include "support/failing_malloc.h"
#include "support/in_child.h"
#include "support/stated_leaks.h"
#include <kestrion/cached_names.h>
#include <kestrion/categories.h>
#include <kestrion/code_set_registry.h>
#include <kestrion/conversion.h>
#include <kestrion/date_format.h>
#include <kestrion/env_registry.h>
#include <kestrion/environments.h>
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>
#include <kestrion/gls_env.h>
#include <kestrion/locale_rec.h>
#include <kestrion/locale_specifiers.h>
#include <kestrion/message_slots.h>
#include <kestrion/os_control.h>
#include <kestrion/parked_locale.h>
#include <kestrion/startup.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <utility>
#include <vector>

namespace {

std::string text_or(const char *text, const char *other) { return text != nullptr ? text : other; }

// What a start made of the environment: result, locale object, settings, conversions, date format.
std::string describe_start() {
    const int result = chkglsinit();
    const GlsEnv &env = *CheckGlsEnv();
    const new_gls_env_rec &state = *env.state;
    if (result != 0)
        return std::to_string(result) + (env.cur_lc != nullptr ? " with a locale" : "") +
               (state.init_flags != 0 || state.initialising != 0 ? " with flags" : "");
    return std::string("0 ") + env.cur_lc->file_names[0] +
           " client=" + text_or(state.settings[GLS_CLIENT_LOCALE], "-") +
           (state.defaulted & 1 ? "*" : "") + " db=" + text_or(state.settings[GLS_DB_LOCALE], "-") +
           (state.defaulted & 2 ? "*" : "") + (state.cv_clienttodb != nullptr ? " converts" : "") +
           " date=" + text_or(state.date_fmt, "-") +
           (state.date_from_dbdate ? "" : " (not by DBDATE)");
}

struct start_row {
    const char *what;
    assignments variables;
    const char *wanted;
};

TEST(Startup, SettlesWhatTheVariablesMean) {
    const start_row rows[] = {
        {"nothing set", {}, "0 en_us/0333.lco client=en_US.8859-1* db=- date=%m/%d/%iY"},
        {"by name",
         {{"CLIENT_LOCALE", "de_DE.8859-1"}},
         "0 de_de/0333.lco client=de_DE.819 db=de_DE.819* date=%d.%m.%Y (not by DBDATE)"},
        {"by number, in lower case",
         {{"CLIENT_LOCALE", "de_de.819"}},
         "0 de_de/0333.lco client=de_DE.819 db=de_DE.819* date=%d.%m.%Y (not by DBDATE)"},
        {"multibyte",
         {{"CLIENT_LOCALE", "en_US.utf8"}},
         "0 en_us/e01c.lco client=en_US.57372 db=en_US.57372* date=%m/%d/%iY"},
        {"unknown code set", {{"CLIENT_LOCALE", "de_DE.nosuch"}}, "-23101"},
        {"a composite, which a setting has no room for",
         {{"CLIENT_LOCALE",
           "GL_CTYPE = en_US.819 ; GL_COLLATE = en_US.819 ; GL_NUMERIC = en_US.819 ; "
           "GL_MONETARY = en_US.819 ; GL_TIME = en_US.819 ; GL_MESSAGES = en_US.819 ; "}},
         "-23101"},
        {"no such object", {{"CLIENT_LOCALE", "xx_XX.819"}}, "-23101"},
        {"no installation", {{"KESTRIONDIR", "/nonexistent"}}, "-23101"},
        {"GL_PATH decides alone", {{"GL_PATH", "/nonexistent"}}, "-23101"},
        {"GL_PATH",
         {{"GL_PATH", INSTALLATION "/gls/lc11"}},
         "0 en_us/0333.lco client=en_US.8859-1* db=- date=%m/%d/%iY"},
        {"another code set of the database",
         {{"DB_LOCALE", "en_US.utf8"}},
         "0 en_us/0333.lco client=en_US.8859-1* db=en_US.57372 converts date=%m/%d/%iY"},
        {"no conversion to it", {{"DB_LOCALE", "ja_JP.sjis"}}, "-23104"},
        {"an unknown code set of the database leaves the pair out",
         {{"DB_LOCALE", "en_US.nosuch"}},
         "0 en_us/0333.lco client=en_US.8859-1* db=en_US.nosuch date=%m/%d/%iY"},
        {"DBDATE",
         {{"DBDATE", "DMY4."}},
         "0 en_us/0333.lco client=en_US.8859-1* db=- date=%d.%m.%iY"},
        {"DBDATE over GL_DATE",
         {{"DBDATE", "DMY4."}, {"GL_DATE", "%d"}},
         "0 en_us/0333.lco client=en_US.8859-1* db=- date=%d.%m.%iY"},
        {"GL_DATE",
         {{"GL_DATE", "%d %b"}},
         "0 en_us/0333.lco client=en_US.8859-1* db=- date=%d %b (not by DBDATE)"},
        {"bad DBDATE", {{"DBDATE", "MDY"}}, "-1212"},
        {"DBNLS takes the categories from their variables",
         {{"DBNLS", "1"}, {"LANG", "de_DE.819"}},
         "0 de_de/0333.lco client=- db=- date=%d.%m.%Y (not by DBDATE)"},
        {"DBNLS with categories of two code sets",
         {{"DBNLS", "2"}, {"LANG", "en_US.819"}, {"LC_TIME", "de_DE.utf8"}},
         "-23115"},
    };
    for (const start_row &row : rows)
        EXPECT_EQ(in_child(row.variables, describe_start), row.wanted) << row.what;
}

// The runtime can be entered at any of its doors, with a locale that loads and with one that does
// not.
TEST(Startup, EveryEntryTerminates) {
    const std::pair<const char *, std::function<std::string()>> doors[] = {
        {"ggetenv", [] { return text_or(ggetenv("DBPATH"), "null"); }},
        {"rld_lmsg", [] { return rld_lmsg(1203) != nullptr ? "text" : "null"; }},
        {"CheckOsInit", [] { return CheckOsInit() != nullptr ? "block" : "null"; }},
        {"chkglsinit", [] { return std::to_string(chkglsinit()); }},
        {"qvt_gl_init", [] { return std::to_string(qvt_gl_init()); }},
    };
    const char *const loads[] = {".", "text", "block", "0", "0"};
    // The catalogue can't be used without a locale; the first lookup brings it up and fails with
    // it.
    const char *const fails[] = {"null", "null", "null", "-23101", "-1"};
    for (size_t i = 0; i < std::size(doors); ++i) {
        EXPECT_EQ(in_child({}, doors[i].second), loads[i]) << doors[i].first;
        EXPECT_EQ(in_child({{"CLIENT_LOCALE", "xx_XX.819"}}, doors[i].second), fails[i])
            << doors[i].first;
    }
}

TEST(Startup, ASecondLookupAnswersWhereTheLocaleFails) {
    EXPECT_EQ(in_child({{"CLIENT_LOCALE", "xx_XX.819"}},
                       [] {
                           ggetenv("DBPATH");
                           return text_or(ggetenv("DBPATH"), "null");
                       }),
              ".");
}

TEST(Startup, UnknownModesAreRefusedAtTheGate) {
    EXPECT_EQ(initgls(GLS_MODE_CLIENT + 1), -1);
    EXPECT_EQ(new_gls_env.initialising, 0);
    EXPECT_EQ(new_gls_env.init_flags, 0);
    EXPECT_EQ(initgls(7), -1);
}

TEST(Startup, RunsOnce) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    ASSERT_EQ(initgls(GLS_MODE_CLIENT), 0);
    locale_rec *lc = CheckGlsEnv()->cur_lc;
    EXPECT_EQ(initgls(GLS_MODE_CLIENT), 0);
    EXPECT_EQ(chkglsinit(), 0);
    EXPECT_EQ(CheckGlsEnv()->cur_lc, lc);
    EXPECT_EQ(get_glserror(), 0);
}

TEST(Startup, NamesAreCachedInLowerCaseWithTheEnglishOnesFirst) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    setenv("CLIENT_LOCALE", "de_DE.8859-1", 1);
    ASSERT_EQ(chkglsinit(), 0);
    const new_gls_env_rec &state = *CheckGlsEnv()->state;
    ASSERT_NE(state.mon_names, nullptr);
    ASSERT_NE(state.mon_names->next, nullptr);
    EXPECT_STREQ(state.mon_names->names[2], "march");
    EXPECT_STREQ(state.mon_names->next->names[2], "m\xe4rz");
    EXPECT_STREQ(state.abmon_names->names[11], "dec");
    EXPECT_EQ(state.gregorian, 1);
}

TEST(Startup, LowerCaseMayBeLongerThanItsText) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    setenv("CLIENT_LOCALE", "en_US.utf8", 1);
    ASSERT_EQ(chkglsinit(), 0);
    for (const int letters : {1, 7, 8, 40}) { // on both sides of the buffer for short names
        std::string text, wanted;
        for (int i = 0; i < letters; ++i) {
            text += "\u023a";
            wanted += "\u2c65";
        }
        char *slot = strdup(text.c_str());
        EXPECT_EQ(downcase_gls_string(&slot), 3 * letters);
        EXPECT_EQ(slot, wanted);
        free(slot);
    }
    // A partner that is not a character is ignored: the text could not be written back.
    locale_rec *lc = CheckGlsEnv()->cur_lc;
    for (int32_t i = 1; i <= lc->ctype_cat.case_pair_count; ++i)
        if (lc->ctype_cat.case_pairs[i].upper == 0xe1baa0)
            lc->ctype_cat.case_pairs[i].lower = 0xfefefefe;
    char *slot = strdup("\u023a\u023a\u023a\u023a\u1ea0");
    EXPECT_EQ(downcase_gls_string(&slot), 15);
    EXPECT_STREQ(slot, "\u2c65\u2c65\u2c65\u2c65\u1ea0");
    free(slot);
    char broken[8] = "A\xff";
    EXPECT_EQ(tolower_string(broken), -1);
    char empty[1] = "";
    EXPECT_EQ(tolower_string(empty), 0);
}

// A list that stays empty does not keep the next ones from being filled.
TEST(Startup, ALocaleWithoutMonthNamesStillHasTheEnglishOnes) {
    locale_rec nameless = {};
    new_gls_env_rec &state = *CheckGlsEnv()->state;
    gls_env.cur_lc = &nameless;
    state.gregorian = 1;
    EXPECT_EQ(cache_month_strings(), 0);
    ASSERT_NE(state.abmon_names, nullptr);
    ASSERT_NE(state.mon_names, nullptr);
    EXPECT_STREQ(state.mon_names->names[4], "may");
    free_locale_string(&state.abmon_names);
    free_locale_string(&state.mon_names);
    gls_env.cur_lc = nullptr;
}

TEST(Startup, ACreatedEnvironmentHasItsOwnLocaleAndIsReused) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    ASSERT_EQ(chkglsinit(), 0);
    setenv("CLIENT_LOCALE", "fr_FR.8859-15", 1);
    ASSERT_EQ(cdrInitGlsEnv(), 0);
    GlsEnv *french = CheckGlsEnv();
    ASSERT_NE(french, &gls_env);
    EXPECT_STREQ(french->cur_lc->file_names[0], "fr_fr/e02f.lco");
    EXPECT_EQ(french->state->mon_ready, 1);
    SetGlsEnv(&gls_env);
    ASSERT_EQ(cdrInitGlsEnv(), 0);
    EXPECT_EQ(CheckGlsEnv(), french);
    EXPECT_EQ(FreeAllGlsEnv(), 0);
    EXPECT_EQ(CheckGlsEnv(), &gls_env);
    EXPECT_EQ(gls_env.cur_lc, nullptr);
}

// The names of the code sets belong to the environments that run on as well.
TEST(Startup, AFailedStartLeavesTheNamesOfTheCodeSets) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    ASSERT_EQ(chkglsinit(), 0);
    setenv("CLIENT_LOCALE", "xx_XX.819", 1);
    {
        const stated_leaks texts_of_the_record;
        EXPECT_NE(cdrInitGlsEnv(), 0);
    }
    EXPECT_NE(gls_registry_list_cache, nullptr);
    freegls();
    EXPECT_EQ(gls_registry_list_cache, nullptr);
}

TEST(Startup, ADateFormatInACallersBufferStaysTheCallers) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    ASSERT_EQ(chkglsinit(), 0);
    char buffer[256];
    ASSERT_EQ(nogetenv_getglsfmt(nullptr, nullptr, buffer, 0), 0);
    EXPECT_EQ(new_gls_env.date_fmt, buffer);
    freegls();
    EXPECT_EQ(new_gls_env.date_fmt, nullptr);
    EXPECT_STREQ(buffer, "%m/%d/%iY");
}

// What the first start derived is not taken for derived when a user gives it to the second.
TEST(Startup, AStartBehindAReleaseForgetsWhatWasDerived) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    setenv("DBDATE", "DMY4.", 1);
    ASSERT_EQ(chkglsinit(), 0);
    EXPECT_EQ(new_gls_env.defaulted, 1 << GLS_CLIENT_LOCALE);
    FreeAllGlsEnv();
    EXPECT_EQ(new_gls_env.settings[GLS_CLIENT_LOCALE], nullptr);
    EXPECT_STREQ(new_gls_env.settings[GLS_DBDATE], "DMY4.") << "not among those released";
    setenv("CLIENT_LOCALE", "fr_FR.8859-15", 1);
    ASSERT_EQ(chkglsinit(), 0);
    EXPECT_EQ(new_gls_env.defaulted, 1 << GLS_DB_LOCALE);
    freegls(); // keeps the settings
    setenv("DB_LOCALE", "fr_FR.8859-1", 1);
    ASSERT_EQ(chkglsinit(), 0);
    EXPECT_EQ(new_gls_env.defaulted, 0);
}

// The first load of the registry fills in what DBNLS needs; a DBNLS that comes later must bring it.
TEST(Startup, AMissingCategoryOfALateDbnlsIsTold) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    ASSERT_EQ(chkglsinit(), 0);
    FreeAllGlsEnv();
    setenv("DBNLS", "2", 1);
    for (const char *category : {"LC_CTYPE", "LC_COLLATE", "LC_NUMERIC", "LC_MONETARY"})
        setenv(category, "de_DE.819", 1);
    EXPECT_EQ(chkglsinit(), err_locale_category);
    setenv("LC_TIME", "fr_FR.819", 1);
    ASSERT_EQ(chkglsinit(), 0);
    EXPECT_STREQ(gls_env.cur_lc->file_names[GLS_SLOT_TIME], "fr_fr/0333.lco");
    EXPECT_STREQ(gls_env.cur_lc->file_names[GLS_SLOT_MESSAGES], "de_de/0333.lco");
}

TEST(Startup, AFailedConnectionLeavesTheEnvironmentBefore) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    ASSERT_EQ(chkglsinit(), 0);
    setenv("CLIENT_LOCALE", "xx_XX.819", 1);
    const stated_leaks settings_of_the_failed_environment;
    EXPECT_EQ(cdrInitGlsEnv(), err_locale_load);
    EXPECT_EQ(CheckGlsEnv(), &gls_env);
    EXPECT_NE(gls_env.cur_lc, nullptr);
    EXPECT_EQ(GlsEnv_List->next, nullptr);
}

// An environment that took its categories from DBNLS has no client locale of its own before.
TEST(Startup, AFailedConnectionSettlesTheClientLocaleBeforeIt) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    setenv("DBNLS", "1", 1);
    for (const char *category : {"LC_CTYPE", "LC_COLLATE", "LC_NUMERIC", "LC_MONETARY", "LC_TIME"})
        setenv(category, "de_DE.819", 1);
    ASSERT_EQ(chkglsinit(), 0);
    ASSERT_EQ(new_gls_env.settings[GLS_CLIENT_LOCALE], nullptr);
    GlsEnvLocale want = {};
    want.settings[GLS_CLIENT_LOCALE] = "xx_XX.819";
    GlsEnv *made = nullptr;
    const stated_leaks settings_of_the_failed_environment;
    EXPECT_EQ(CreateGlsEnv(&want, &made, 1), err_locale_load);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(CheckGlsEnv(), &gls_env);
    EXPECT_STREQ(new_gls_env.settings[GLS_CLIENT_LOCALE], "en_US.819");
    EXPECT_EQ(new_gls_env.defaulted, 1 << GLS_CLIENT_LOCALE);
}

// What an administrator looks at when the messages don't load: it must be there from the very first
// call.
TEST(Startup, TheLogTellsWhichFilesWereTried) {
    char work[] = "/tmp/kestrion-log-XXXXXX";
    ASSERT_NE(mkdtemp(work), nullptr);
    const assignments variables = {{"GLSLOG", "on"}, {"CLIENT_LOCALE", "xx_XX.819"}};
    in_child(variables, [&] {
        if (chdir(work) == 0)
            ggetenv("DBPATH");
        return std::string();
    });
    std::ifstream in(std::string(work) + "/gls.log");
    const std::string log{std::istreambuf_iterator<char>(in), {}};
    EXPECT_NE(log.find("GLS log started"), std::string::npos);
    EXPECT_NE(log.find("Opened: " INSTALLATION "/gls/cm3/registry"), std::string::npos) << log;
    EXPECT_NE(log.find("Could not open: " INSTALLATION "/gls/lc11/xx_xx/0333.lco"),
              std::string::npos)
        << log;
    std::filesystem::remove_all(work);
}

// Environment values come out in the program's code set once a conversion from the system's is in
// place.
TEST(Startup, EightBitValuesAreConverted) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    ASSERT_EQ(chkglsinit(), 0);
    cv_rec *cv = nullptr;
    ASSERT_EQ(gl_cv_load(&cv, "en_US.utf8", "en_US.819", nullptr, nullptr), 1);
    locale_rec *lc = CheckGlsEnv()->cur_lc;
    ASSERT_EQ(restorelang(0, lc, nullptr, nullptr, nullptr, cv, nullptr), 0);
    setenv("DBPATH", "/tmp/\xe4\xdf", 1);
    char *converted = ggetenv("DBPATH");
    EXPECT_STREQ(converted, "/tmp/\xc3\xa4\xc3\x9f");
    free(converted); // the runtime leaves it
    {
        const failing_malloc::scope refused(1);
        EXPECT_EQ(ggetenv("DBPATH"), getenv("DBPATH")) << "unconverted rather than missing";
    }
    setenv("DBPATH", "/tmp/plain", 1);
    EXPECT_EQ(ggetenv("DBPATH"), getenv("DBPATH")) << "a 7-bit value is the environment's own";

    setenv("KESTRIONSERVER", (std::string(127, 's') + "\xe4").c_str(), 1);
    EXPECT_EQ(ggetenv("KESTRIONSERVER"), nullptr) << "129 bytes once converted";
    EXPECT_EQ(gerrno, err_env_value_size);
}

TEST(Startup, AParkedLocaleComesBack) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    ASSERT_EQ(chkglsinit(), 0);
    GlsEnv &env = *CheckGlsEnv();
    locale_rec *own = env.cur_lc;
    locale_rec *other = nullptr;
    int32_t is_gls[GLS_SLOTS];
    ASSERT_EQ(get_locale(&other, "fr_FR.819", is_gls), 0);
    ASSERT_EQ(restorelang(2, other, own, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_STREQ(env.state->lc_spec[GLS_SLOT_CTYPE], "fr_FR.819");
    ASSERT_EQ(restoreploc(), 0);
    EXPECT_EQ(env.cur_lc, own);
    EXPECT_EQ(env.state->saved_lc, nullptr);
    EXPECT_STREQ(env.state->lc_spec[GLS_SLOT_CTYPE], "en_US.819");
    EXPECT_EQ(env.state->dbnls, 2);

    EXPECT_NE(restorelang(2, nullptr, own, nullptr, nullptr, nullptr, nullptr), 0)
        << "no specifiers come from no locale";
    ASSERT_EQ(restorelang(2, other, own, nullptr, nullptr, nullptr, nullptr), 0);
    freegls();
    EXPECT_EQ(env.state->saved_lc, nullptr) << "its object went as the database's";
}

TEST(Startup, AFailedStartIsForgottenWithWhatItDerived) {
    EXPECT_EQ(in_child({{"CLIENT_LOCALE", "xx_XX.819"}, {"DB_LOCALE", "ja_JP.sjis"}},
                       [] {
                           const int no_locale = chkglsinit();
                           setenv("CLIENT_LOCALE", "de_DE.8859-1", 1);
                           const int no_conversion = chkglsinit();
                           unsetenv("DB_LOCALE");
                           return std::to_string(no_locale) + std::to_string(no_conversion) +
                                  describe_start();
                       }),
              "-23101-231040 de_de/0333.lco client=de_DE.819 db=de_DE.819* date=%d.%m.%Y (not by "
              "DBDATE)");
}

// What a start stores of a request is in its normal form; the same request matches all the same.
TEST(Startup, ARequestWithDbnlsFindsWhatItMade) {
    for (const char *dbnls : {"1", "2"}) {
        EXPECT_EQ(
            in_child(
                {{"DBNLS", dbnls}, {"LANG", "de_DE.8859-1"}, {"CLIENT_LOCALE", "de_DE.8859-1"}},
                [] {
                    for (int i = 0; i < 3; ++i)
                        if (cdrInitGlsEnv() != 0)
                            return std::string("no start");
                    return std::to_string(glsenv_count);
                }),
            "2")
            << dbnls;
    }
}

struct money_row {
    const char *client;
    const char *dbmoney;
    const char *front;
    const char *back;
};

TEST(Startup, CurrencySymbolsComeFromDbmoneyElseFromTheLocale) {
    const money_row rows[] = {
        {"en_US.819", nullptr, "$", ""},
        {"de_DE.utf8", nullptr, "", "\xe2\x82\xac"},
        {"de_DE.utf8", "DM,", "DM", ""},
        {"en_US.819", "(.)", "(", ")"},
    };
    for (const money_row &row : rows) {
        assignments variables = {{"CLIENT_LOCALE", row.client}};
        if (row.dbmoney != nullptr)
            variables.emplace_back("DBMONEY", row.dbmoney);
        EXPECT_EQ(in_child(variables,
                           [] {
                               if (thr_initgls(GLS_MODE_CLIENT) != 0)
                                   return std::string("no locale");
                               const new_gls_env_rec &state = *CheckGlsEnv()->state;
                               return std::string(state.mon_front) + "|" + state.mon_back;
                           }),
                  std::string(row.front) + "|" + row.back);
    }
}

// Each allocation of a start refused in turn: a stated error, and the next try succeeds. A start
// that does without the memory still means the same.
TEST(Startup, SurvivesEveryRefusedAllocation) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    setenv("DB_LOCALE", "en_US.8859-15", 1); // small conversions: each allocation is tried
    CheckGenInit();
    ggetenv("DBPATH"); // loads the registry, whose failure ends the process
    size_t failures = 0;
    for (size_t k = 1;; ++k) {
        FreeAllGlsEnv();
        freegls();
        int result = 0;
        bool happened = false;
        {
            failing_malloc::scope refused(k);
            result = chkglsinit();
            happened = refused.happened();
        }
        if (!happened) {
            EXPECT_EQ(result, 0);
            break;
        }
        if (result != 0) {
            ++failures;
            EXPECT_TRUE(result == err_locale_no_memory || result == err_locale_load ||
                        result == err_locale_conversion || result == err_date_no_memory)
                << "allocation " << k << ": " << result;
        } else {
            EXPECT_STREQ(new_gls_env.date_fmt, "%m/%d/%iY") << "allocation " << k;
            EXPECT_NE(new_gls_env.cv_clienttodb, nullptr) << "allocation " << k;
        }
        ASSERT_EQ(chkglsinit(), 0) << "second try after allocation " << k;
    }
    EXPECT_GT(failures, 20u);
}

// Creation, matching and release leave nothing allocated.
TEST(Startup, TenThousandEnvironmentsComeAndGo) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    ASSERT_EQ(chkglsinit(), 0);
    GlsEnvLocale want = {};
    want.settings[GLS_DBDATE] = "DMY4.";
    want.settings[GLS_CLIENT_LOCALE] = "en_US.819";
    GlsEnv *made = nullptr;
    ASSERT_EQ(CreateGlsEnv(&want, &made, 1), 0);
    FreeAllGlsEnv();
    failing_malloc::scope counted(0);
    for (int i = 0; i < 10000; ++i) {
        ASSERT_EQ(CreateGlsEnv(&want, &made, i % 100 == 0), 0);
        GlsEnv *found = nullptr;
        ASSERT_EQ(CheckExistingGlsEnv(&want, &found), 0);
        ASSERT_EQ(found, made);
        FreeAllGlsEnv();
    }
    EXPECT_EQ(counted.live(), 0);
}

} // namespace
