#include <kestrion/code_set_registry.h>
#include <kestrion/environments.h>
#include <kestrion/error_numbers.h>
#include <kestrion/startup.h>

#include <functional>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string>
#include <vector>

namespace {

// An environment whose settings a test writes by hand.
struct hand_made {
    new_gls_env_rec state = {};
    GlsEnv env = {.state = &state};
    std::vector<std::string> texts;

    hand_made() { texts.reserve(GLS_SETTINGS); }
    hand_made &with(gls_setting which, const char *text, bool defaulted = false) {
        texts.emplace_back(text);
        state.settings[which] = texts.back().data();
        if (defaulted)
            state.defaulted |= 1 << which;
        return *this;
    }
};

struct field_row {
    const char *value;
    int defaulted;
    const char *wanted;
    int result;
};

TEST(Environments, FieldsCompareByWhatTheUserSaid) {
    const field_row rows[] = {
        {nullptr, 0, nullptr, 0}, {"1", 1, nullptr, 0}, // derived: a silent request doesn't mind
        {"1", 0, nullptr, -1},    {nullptr, 0, "1", -1},     {nullptr, 1, "1", -1},
        {"en_US", 0, "EN_us", 0}, {"en_US", 1, "en_GB", -1},
    };
    for (const field_row &row : rows)
        EXPECT_EQ(CompareLocaleField(row.value, row.defaulted, row.wanted), row.result)
            << (row.value != nullptr ? row.value : "null") << " / "
            << (row.wanted != nullptr ? row.wanted : "null");
}

TEST(Environments, RequestsMatchByTheRulesOfTheirSettings) {
    gl_cache_registry(nullptr, nullptr); // code-set names resolve
    hand_made have;
    have.with(GLS_CLIENT_LOCALE, "en_US.819").with(GLS_DBDATE, "MDY4/");
    GlsEnvLocale want = {};
    want.settings[GLS_CLIENT_LOCALE] = "EN_us.8859-1"; // another spelling of the same locale
    want.settings[GLS_DBDATE] = "mdy4/";
    EXPECT_EQ(CompareLocale(&have.env, &want), 0);

    want.settings[GLS_GL_DATE] = "%d";         // has no say beside DBDATE
    want.settings[GLS_LC_CTYPE] = "de_DE.819"; // nor this without DBNLS
    EXPECT_EQ(CompareLocale(&have.env, &want), 0);
    have.with(GLS_DBNLS, "1");
    EXPECT_EQ(CompareLocale(&have.env, &want), -1);
    want.settings[GLS_DBNLS] = "1";
    EXPECT_EQ(CompareLocale(&have.env, &want), -1) << "LC_CTYPE counts when both have DBNLS";
    want.settings[GLS_LC_CTYPE] = nullptr;
    EXPECT_EQ(CompareLocale(&have.env, &want), 0);
    want.settings[GLS_DBMONEY] = "$.";
    EXPECT_EQ(CompareLocale(&have.env, &want), -1);

    EXPECT_EQ(CompareLocale(&have.env, nullptr), 0);
    EXPECT_EQ(CompareLocale(nullptr, &want), -1);
}

TEST(Environments, GlDateCountsWhereNeitherSideHasDbdate) {
    hand_made have;
    have.with(GLS_GL_DATE, "%d");
    GlsEnvLocale want = {};
    EXPECT_EQ(CompareLocale(&have.env, &want), -1);
    want.settings[GLS_GL_DATE] = "%D";
    EXPECT_EQ(CompareLocale(&have.env, &want), 0) << "letters compare without case";
}

TEST(Environments, ALongSpecifierIsComparedByItsFirstCharacters) {
    const std::string stored(36, 'x');
    hand_made have;
    have.with(GLS_CLIENT_LOCALE, stored.c_str());
    GlsEnvLocale want = {};
    const std::string longer = stored + "yz";
    want.settings[GLS_CLIENT_LOCALE] = longer.c_str();
    EXPECT_EQ(CompareLocale(&have.env, &want), 0);
}

TEST(Environments, TheOnlyEnvironmentDoesNotReplaceOneInUse) {
    CheckGlsEnv();
    ASSERT_EQ(glsenv_count, 1);
    hand_made other;
    SetGlsEnv(&other.env);
    EXPECT_EQ(gls_env_global, &other.env);
    SetGlsEnv(&gls_env);
    EXPECT_EQ(gls_env_global, &other.env);
    glsenv_count = 2;
    SetGlsEnv(&gls_env);
    EXPECT_EQ(gls_env_global, &gls_env);
}

TEST(Environments, TheDefaultOneIsCountedWhoeverAsksFirst) {
    const std::function<void()> first_calls[] = {
        [] { CheckGlsEnv(); },
        [] { qvt_get_glsenv_thread(); },
        [] { qvt_get_gl_locale_thread(); },
        [] { SetGlsEnv(&gls_env); },
        [] {},
    };
    for (const auto &first_call : first_calls) {
        gls_env_global = nullptr;
        glsenv_count = 0;
        first_call();
        GlsEnv *made = nullptr;
        ASSERT_EQ(CreateGlsEnv(nullptr, &made, 0), 0);
        EXPECT_EQ(glsenv_count, 2);
        SetGlsEnv(made);
        SetGlsEnv(&gls_env);
        EXPECT_EQ(gls_env_global, &gls_env);
        FreeAllGlsEnv();
    }
    hand_made other;
    gls_env_global = nullptr;
    glsenv_count = 0;
    SetGlsEnv(&other.env);
    EXPECT_EQ(gls_env_global, &other.env);
    EXPECT_EQ(glsenv_count, 1);
}

TEST(Environments, AreCreatedInOrderAndFoundInOrder) {
    GlsEnvLocale want = {};
    want.settings[GLS_DBDATE] = "DMY2.";
    GlsEnv *first = nullptr, *second = nullptr, *found = nullptr;
    ASSERT_EQ(CreateGlsEnv(&want, &first, 0), 0);
    ASSERT_EQ(CreateGlsEnv(&want, &second, 0), 0);
    EXPECT_EQ(CheckGlsEnv(), &gls_env) << "creating alone makes nothing current";
    ASSERT_EQ(CheckExistingGlsEnv(&want, &found), 0);
    EXPECT_EQ(found, first);
    EXPECT_STREQ(first->state->settings[GLS_DBDATE], "DMY2.");
    want.settings[GLS_DBDATE] = "DMY2-";
    EXPECT_EQ(CheckExistingGlsEnv(&want, &found), -1);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(FreeAllGlsEnv(), 0);
    EXPECT_EQ(GlsEnv_List->next, nullptr);
    EXPECT_EQ(glsenv_count, 3) << "the default one and both that were ever made";
}

} // namespace
