#include "env/variable_table.h"
#include "environment.h"
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/gls_env.h>

#include <stdlib.h>
#include <string.h>

using kestrion::variable_index;

namespace {

constexpr int32_t kestriondir = variable_index("KESTRIONDIR");
constexpr int32_t kestrionserver = variable_index("KESTRIONSERVER");
constexpr int32_t dbpath = variable_index("DBPATH");

void set_gls(gls_setting setting, const char *value) {
    CheckGlsEnv()->state->settings[setting] = strdup(value);
}

class Lookup : public Environment {};

} // namespace

TEST_F(Lookup, EnvironmentThenLocaleThenFilesThenDefault) {
    EXPECT_EQ(ggetenv("DBDATE"), nullptr);
    EXPECT_EQ(gerrno, 0);
    EXPECT_STREQ(ggetenv("DBPATH"), ".");
    EXPECT_STREQ(ggetenv("NODEFDAC"), "no");

    ginsenv("DBDATE", "from file", nullptr);
    EXPECT_STREQ(ggetenv("DBDATE"), "from file");
    set_gls(GLS_DBDATE, "from locale");
    EXPECT_STREQ(ggetenv("DBDATE"), "from locale");
    EXPECT_STREQ(ggetenv2("DBDATE"), "from file");
    setenv("DBDATE", "from environment", 1);
    for (auto *lookup : {ggetenv, getsesenv, ggetenv_oledb, ggetenv2})
        EXPECT_STREQ(lookup("DBDATE"), "from environment");
    EXPECT_STREQ(idx_ggetenv2("DBDATE", variable_index("DBDATE")), "from environment");
    EXPECT_STREQ(idx_getdefault("DBDATE", -1), "from file");
}

TEST_F(Lookup, EmptyInTheEnvironmentIsAValue) {
    setenv("DBPATH", "", 1);
    EXPECT_STREQ(ggetenv("DBPATH"), "");
    EXPECT_EQ(gerrno, 0);
}

TEST_F(Lookup, ValueOverItsLimitCountsAsNotSet) {
    const std::string fits(256, 'd');
    setenv("KESTRIONDIR", fits.c_str(), 1);
    EXPECT_EQ(ggetenv("KESTRIONDIR"), fits);
    EXPECT_EQ(gerrno, 0);

    setenv("KESTRIONDIR", (fits + "d").c_str(), 1);
    for (const int32_t index : {-1, kestriondir}) {
        EXPECT_STREQ(idx_ggetenv("KESTRIONDIR", index), "/usr/kestrion");
        EXPECT_EQ(gerrno, err_env_value_size);
        EXPECT_EQ(idx_getenv("KESTRIONDIR", index), nullptr);
        EXPECT_EQ(gerrno, err_env_value_size);
    }
    ginsenv("KESTRIONDIR", "/configured", nullptr);
    EXPECT_STREQ(ggetenv("KESTRIONDIR"), "/configured");

    setenv("KESTRIONSERVER", std::string(129, 's').c_str(), 1);
    EXPECT_EQ(ggetenv("KESTRIONSERVER"), nullptr);
    EXPECT_EQ(gerrno, err_env_value_size); // known but without a value: the reason stays
    setenv("W1", std::string(100000, 'w').c_str(), 1);
    EXPECT_EQ(strlen(ggetenv("W1")), 100000U);
}

TEST_F(Lookup, NamesOutsideTheTableComeFromTheEnvironmentAlone) {
    EXPECT_EQ(ggetenv("NOT_KNOWN"), nullptr);
    EXPECT_EQ(gerrno, err_env_unknown_name);
    const std::string value(5000, 'v');
    setenv("NOT_KNOWN", value.c_str(), 1);
    EXPECT_EQ(ggetenv("NOT_KNOWN"), value);
    EXPECT_EQ(gerrno, 0);
    for (const char *near_miss : {"dbpath", "DBPAT", "DBPATHS", "", "DBPATH "})
        EXPECT_EQ(ggetenv(near_miss), nullptr) << near_miss;
}

TEST_F(Lookup, NullNameIsRefused) {
    EXPECT_EQ(ggetenv(nullptr), nullptr);
    EXPECT_EQ(gerrno, err_env_null_name);
    EXPECT_EQ(Kes_EVars, nullptr); // nothing was loaded for it
    gerrno = 0;
    EXPECT_EQ(idx_getenv(nullptr, kestriondir), nullptr);
    EXPECT_EQ(gerrno, err_env_null_name);
    EXPECT_EQ(ggetglsenv(nullptr), nullptr);
    EXPECT_EQ(ginsenv(nullptr, "x", nullptr), err_env_null_name);
    EXPECT_EQ(gfeputenv(nullptr, "x"), err_env_null_name);
    const char *text = nullptr;
    EXPECT_EQ(gdefenv(nullptr, &text), -1);
}

// An index in range decides by itself for the limit and for the default; the name only finds the
// value in the environment. Callers that pass a wrong index get another variable's default.
TEST_F(Lookup, IndexIsBelievedWithoutALookAtTheName) {
    setenv("W1", std::string(129, 'w').c_str(), 1);
    EXPECT_EQ(idx_getenv("W1", kestrionserver), nullptr);
    EXPECT_EQ(gerrno, err_env_value_size);
    EXPECT_STREQ(idx_ggetenv("TREE", dbpath), ".");

    for (const int32_t index : {-2, int32_t{Num_DVals}, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(idx_ggetenv("DBTEMP", index), nullptr) << index;
        EXPECT_EQ(gerrno, err_env_unknown_name) << index;
        EXPECT_EQ(strlen(idx_ggetenv("W1", index)), 129U) << index; // the row is searched by name
    }
}

TEST_F(Lookup, DefaultsAreAskedForWithoutLoading) {
    const char *text = "untouched";
    EXPECT_EQ(gdefenv("DBPRINT", &text), 0);
    EXPECT_STREQ(text, "lp -s");
    EXPECT_EQ(gdefenv("DBDATE", &text), 0);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(gdefenv("NOT_KNOWN", &text), -1);
    EXPECT_EQ(idx_getdefault("DBPRINT", -1), nullptr);
    EXPECT_EQ(Kes_EVars, nullptr);
    EXPECT_EQ(idx_get_timeout_value(), -1);
}

TEST_F(Lookup, LocaleSettingsAreFourteenNamesInAnyCase) {
    const std::pair<const char *, gls_setting> names[] = {
        {"CLIENT_LOCALE", GLS_CLIENT_LOCALE},
        {"DB_LOCALE", GLS_DB_LOCALE},
        {"DBNLS", GLS_DBNLS},
        {"DBLANG", GLS_DBLANG},
        {"LC_CTYPE", GLS_LC_CTYPE},
        {"LC_COLLATE", GLS_LC_COLLATE},
        {"LC_NUMERIC", GLS_LC_NUMERIC},
        {"LC_MONETARY", GLS_LC_MONETARY},
        {"DBMONEY", GLS_DBMONEY},
        {"LC_TIME", GLS_LC_TIME},
        {"DBTIME", GLS_DBTIME},
        {"DBDATE", GLS_DBDATE},
        {"GL_DATE", GLS_GL_DATE},
        {"GL_DATETIME", GLS_GL_DATETIME},
    };
    set_gls(GLS_LANG, "never asked for");
    for (const auto &[name, setting] : names) {
        EXPECT_EQ(ggetglsenv(name), nullptr) << name;
        set_gls(setting, name);
        EXPECT_STREQ(ggetglsenv(name), name);
    }
    EXPECT_STREQ(ggetglsenv("db_Locale"), "DB_LOCALE");
    EXPECT_EQ(ggetglsenv("LANG"), nullptr);
    EXPECT_EQ(ggetglsenv("DBPATH"), nullptr);
    setenv("DB_LOCALE", "x", 1);
    EXPECT_EQ(idx_getenv("db_Locale", -1), nullptr);
}

// The very first call of a process: loading brings up the locale, which looks settings up itself.
// Whatever comes of that start, the second lookup is answered.
TEST(FirstCall, OfAProcessIsALookup) {
    unsetenv("DBTEMP");
    ggetenv("DBTEMP");
    EXPECT_STREQ(ggetenv("DBTEMP"), "/tmp");
    gFreeEVars();
}
