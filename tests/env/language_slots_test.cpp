#include "environment.h"
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/language_slots.h>

#include <locale.h>
#include <stdlib.h>
#include <string.h>

namespace {

constexpr const char *unknown_locale = "xx_YY.none";
constexpr int locale_refused = -7206;

class LanguageSlots : public Environment {
protected:
    void SetUp() override {
        Environment::SetUp();
        Kes_DBVars = {};
        ggetenv("LANG");
    }
};

} // namespace

TEST_F(LanguageSlots, AreThreeAndStartEmpty) {
    EXPECT_EQ(OS_getlangvar("LC_CTYPE"), Kes_DBVars.lc_ctype);
    EXPECT_EQ(OS_getlangvar("LC_COLLATE"), Kes_DBVars.lc_collate);
    EXPECT_EQ(OS_getlangvar("DBNLS"), Kes_DBVars.dbnls);
    for (const char *name : {"LC_TIME", "dbnls", ""})
        EXPECT_EQ(OS_getlangvar(name), nullptr);
    EXPECT_EQ(OS_getlangvar(nullptr), nullptr);
    EXPECT_EQ(OS_IsDbEnvSet(), 0);
}

// Collation is stored when it is in force; the character tables follow what is stored.
TEST_F(LanguageSlots, SettingPutsTheLocaleIntoForce) {
    EXPECT_EQ(OS_setlang("LC_COLLATE", "C.UTF-8"), 0);
    EXPECT_STREQ(Kes_DBVars.lc_collate, "C.UTF-8");
    EXPECT_STREQ(setlocale(LC_COLLATE, nullptr), "C.UTF-8");
    EXPECT_EQ(OS_setlang("LC_COLLATE", unknown_locale), locale_refused);
    EXPECT_STREQ(Kes_DBVars.lc_collate, "C.UTF-8");
    EXPECT_EQ(OS_IsDbEnvSet(), 0);

    EXPECT_EQ(OS_setlang("LC_CTYPE", "POSIX"), 0);
    EXPECT_STREQ(Kes_DBVars.lc_ctype, "POSIX");
    EXPECT_EQ(OS_IsDbEnvSet(), 1);
    EXPECT_EQ(OS_setlang("LC_CTYPE", unknown_locale), locale_refused);
    EXPECT_STREQ(Kes_DBVars.lc_ctype, unknown_locale);

    EXPECT_EQ(OS_setlang("DBNLS", "2"), 0);
    EXPECT_STREQ(Kes_DBVars.dbnls, "2");
    EXPECT_EQ(OS_setlang("LC_TIME", unknown_locale), 0);
    EXPECT_EQ(OS_setlang(nullptr, "x"), 0);
    EXPECT_EQ(OS_setlang("DBNLS", nullptr), 0);
    EXPECT_STREQ(Kes_DBVars.dbnls, "");
}

TEST_F(LanguageSlots, WhatDoesNotFitIsRefusedBeforeAnythingChanges) {
    EXPECT_EQ(OS_setlang("DBNLS", "12345"), 0);
    EXPECT_EQ(OS_setlang("DBNLS", "123456"), err_env_value_size);
    EXPECT_STREQ(Kes_DBVars.dbnls, "12345");
    OS_setlang("LC_CTYPE", "C");
    const std::string long_value(65, 'x');
    EXPECT_EQ(OS_setlang("LC_CTYPE", long_value.c_str()), err_env_value_size);
    EXPECT_STREQ(Kes_DBVars.lc_ctype, "C");
    EXPECT_EQ(OS_setlang("LC_COLLATE", long_value.c_str()), err_env_value_size);
    EXPECT_EQ(OS_setlang("LC_CTYPE", long_value.c_str() + 1), locale_refused); // 64 fit

    setenv("DBNLS", "123456", 1);
    EXPECT_EQ(OS_resetlang(0), err_env_value_size);
    EXPECT_STREQ(Kes_DBVars.dbnls, "12345");
    unsetenv("DBNLS");
    setenv("LC_COLLATE", long_value.c_str(), 1);
    EXPECT_EQ(OS_resetlang(1), err_env_value_size);
}

TEST_F(LanguageSlots, ResetWithoutApplyingOnlyLoads) {
    setenv("LC_CTYPE", unknown_locale, 1);
    strcpy(Kes_DBVars.lc_collate, "old");
    EXPECT_EQ(OS_resetlang(0), 0);
    EXPECT_STREQ(Kes_DBVars.dbnls, "0");
    EXPECT_STREQ(Kes_DBVars.lc_ctype, unknown_locale);
    EXPECT_STREQ(Kes_DBVars.lc_collate, ""); // has no value
    ginsenv("DBNLS", "1", nullptr);
    EXPECT_EQ(OS_resetlang(0), 0);
    EXPECT_STREQ(Kes_DBVars.dbnls, "1");
}

TEST_F(LanguageSlots, ResetAppliesWhatDiffersUpToTheFirstError) {
    setenv("LC_CTYPE", "C", 1);
    setenv("LC_COLLATE", "C.UTF-8", 1);
    EXPECT_EQ(OS_resetlang(1), 0);
    EXPECT_STREQ(setlocale(LC_COLLATE, nullptr), "C.UTF-8");

    setlocale(LC_COLLATE, "C");
    EXPECT_EQ(OS_resetlang(1), 0);
    EXPECT_STREQ(setlocale(LC_COLLATE, nullptr), "C"); // equal to its slot: left alone

    setenv("LC_CTYPE", unknown_locale, 1);
    setenv("LC_COLLATE", "POSIX", 1);
    EXPECT_EQ(OS_resetlang(1), locale_refused);
    EXPECT_STREQ(Kes_DBVars.lc_ctype, unknown_locale);
    EXPECT_STREQ(Kes_DBVars.lc_collate, "C.UTF-8"); // not reached
}
