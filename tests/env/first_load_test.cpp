#include "base/installation.h"
#include "environment.h"
#include <kestrion/config_files.h>
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/first_load.h>
#include <kestrion/os_control.h>

#include <filesystem>
#include <stdlib.h>

namespace {

enum class locale_start { done, looks_up_and_succeeds, looks_up_and_fails };
locale_start start = locale_start::done;

class FirstLoad : public Environment {};

const char *stored(const char *name) { return idx_getdefault(name, -1); }

const std::string over_limit = "W2 kept\nKESTRIONSERVER " + std::string(129, 's') + "\nW2 lost\n";

} // namespace

// Brings the locale up as the start of a process does: with lookups of its own, while the block is
// already there for them.
extern "C" os_control *__real_CheckOsInit(void);
extern "C" os_control *__wrap_CheckOsInit(void) {
    const locale_start wanted = start;
    start = locale_start::done;
    if (wanted != locale_start::done)
        ggetenv("NOT_KNOWN");
    return wanted == locale_start::looks_up_and_fails ? nullptr : __real_CheckOsInit();
}

constinit bool raised = false;
extern "C" unsigned long __wrap_getauxval(unsigned long) { return raised; }

// What the caller of such a program can set must not decide which files it reads and writes.
TEST_F(FirstLoad, RaisedPrivilegesTakeNoPlaceFromTheCaller) {
    write_system_file("W1 system\nW2 system\n");
    write_user_file("W1 user\n");
    const struct {
        const char *name, *usual, *raised;
    } rows[] = {
        {"KESTRIONDIR", root.path().c_str(), kestrion::built_in_directory},
        {"GL_PATH", "there", nullptr},
        {"GLSLOG", "there", nullptr},
        {"LIBISI_NAME", "there", nullptr},
        {"XENVIRONMENT", "there", nullptr},
        {"DBDATE", "there", "there"},
        {"W1", "user", nullptr},
        {"W2", nullptr, nullptr},
    };
    for (const char *name : {"GL_PATH", "GLSLOG", "LIBISI_NAME", "XENVIRONMENT", "DBDATE"})
        setenv(name, "there", 1);
    setenv("ENVIGNORE", "W2", 1);
    for (const auto &row : rows)
        EXPECT_STREQ(ggetenv(row.name), row.usual) << row.name;
    gFreeEVars();
    raised = true;
    for (const auto &row : rows)
        EXPECT_STREQ(ggetenv(row.name), row.raised) << row.name;
    raised = false;
}

// The load inside the load does the work; the outer one must not repeat it over live entries.
TEST_F(FirstLoad, IsEnteredAgainByTheStartOfTheLocale) {
    write_user_file("W1 one\n");
    start = locale_start::looks_up_and_succeeds;
    EXPECT_STREQ(ggetenv("W1"), "one");
    EXPECT_EQ(gerrno, 0);
    EXPECT_EQ(Num_EVars, 344);

    gFreeEVars();
    start = locale_start::looks_up_and_fails;
    EXPECT_EQ(ggetenv("W1"), nullptr);
    EXPECT_EQ(gerrno, err_env_no_memory); // not what the inner lookup left
    EXPECT_STREQ(ggetenv("W1"), "one");
}

TEST_F(FirstLoad, WithoutFilesGivesTheDefaults) {
    unsetenv("KESTRIONDIR");
    std::filesystem::remove_all(home);
    ASSERT_EQ(greadenv(), 0);
    ASSERT_EQ(Num_EVars, 344);
    for (int32_t i = 0; i < Num_EVars; ++i) {
        EXPECT_STREQ(Kes_EVars[i].name, Kes_DVals[i].name);
        EXPECT_NE(Kes_EVars[i].name, Kes_DVals[i].name);
        EXPECT_STREQ(Kes_EVars[i].value, Kes_DVals[i].default_value);
        EXPECT_EQ(Kes_EVars[i].index, i);
        EXPECT_EQ(Kes_EVars[i].max_length, Kes_DVals[i].max_length);
    }
}

TEST_F(FirstLoad, UsersFileGoesOverTheSystemsOverTheDefaults) {
    write_system_file("DBPATH system\nDBTEMP system\nW1 system\n");
    write_user_file("DBPATH user\nW1\n");
    setenv("DBTEMP", "environment", 1);
    EXPECT_STREQ(ggetenv("DBPATH"), "user");
    EXPECT_STREQ(ggetenv("W1"), "");
    EXPECT_STREQ(ggetenv("DBTEMP"), "environment");
    EXPECT_STREQ(stored("DBTEMP"), "system");
    EXPECT_STREQ(stored("DBDELIMITER"), "|");
}

TEST_F(FirstLoad, SystemFileIsFoundBelowADirectoryNameOfAnyLength) {
    std::string deep = "deep";
    for (int i = 0; i < 10; ++i)
        deep += "/" + std::string(100, 'd');
    root.write(deep + "/etc/kestrion.rc", "W1 deep\n");
    setenv("KESTRIONDIR", root.at(deep).c_str(), 1);
    EXPECT_STREQ(ggetenv("W1"), "deep");
}

TEST_F(FirstLoad, IgnoresTheNamesOfEnvignoreInBothFiles) {
    write_system_file("W1 a\nW2 a\nTREE a\nDBPATH a\n");
    write_user_file("W2 b\nTERM b\nDBPATH b\n");
    setenv("ENVIGNORE", ":W1::W2:TREE:", 1);
    setenv("TREE", "environment", 1);
    ASSERT_EQ(greadenv(), 0);
    EXPECT_EQ(stored("W1"), nullptr);
    EXPECT_EQ(stored("W2"), nullptr);
    EXPECT_STREQ(stored("TERM"), "b");
    EXPECT_STREQ(stored("DBPATH"), "b");
    EXPECT_STREQ(ggetenv("TREE"), "environment"); // filters lines of files, never the environment
    EXPECT_STREQ(getenv("ENVIGNORE"), ":W1::W2:TREE:");
}

TEST_F(FirstLoad, HomeIsThatOfTheLoginBeforeThatOfTheOwner) {
    root.write("l/.kestrion", "W1 login\n");
    write_user_file("W1 owner\n");
    test_account.login = "somebody";
    test_account.login_home = root.at("l");
    EXPECT_STREQ(ggetenv("W1"), "login");
    gFreeEVars();
    test_account.login = nullptr;
    EXPECT_STREQ(ggetenv("W1"), "owner");
}

TEST_F(FirstLoad, HomePathIsCutAt64Characters) {
    char path[home_path_size];
    for (const size_t length : {1U, 63U, 64U, 65U, 4000U}) {
        test_account.owner_home = std::string(length, 'h');
        EXPECT_EQ(ggethomepath(path), 0);
        EXPECT_EQ(path, std::string(std::min<size_t>(length, 64), 'h'));
    }
}

// The lookup that loads fails, and says why; what is loaded by then answers the next one.
TEST_F(FirstLoad, WithoutAHomeFailsOnce) {
    write_system_file("DBPATH system\nDBNLS 1\n");
    for (const int reason : {err_env_no_user, err_env_value_size}) {
        gFreeEVars();
        test_account = {.owner_home = "", .exists = reason != err_env_no_user};
        EXPECT_EQ(ggetenv("DBPATH"), nullptr);
        EXPECT_EQ(gerrno, reason);
        EXPECT_STREQ(ggetenv("DBPATH"), "system");
        EXPECT_EQ(stored("LC_TIME"), nullptr); // the locale variables were not reached
        gFreeEVars();
        EXPECT_EQ(greadenv(), err_env_no_memory);
    }
}

TEST_F(FirstLoad, SystemFileThatFailsIsOutvotedByTheUsers) {
    write_system_file(over_limit);
    write_user_file("W1 user\n");
    EXPECT_EQ(greadenv(), 0);
    EXPECT_STREQ(stored("W1"), "user");
    EXPECT_STREQ(stored("W2"), "kept");
}

TEST_F(FirstLoad, UsersFileThatFailsMakesTheFirstLookupNull) {
    for (const std::string &bytes : {over_limit, std::string("W2 kept\nNOT_KNOWN x\n")}) {
        gFreeEVars();
        write_user_file(bytes);
        EXPECT_EQ(ggetenv("W2"), nullptr);
        EXPECT_EQ(gerrno, err_env_value_size);
        EXPECT_STREQ(ggetenv("W2"), "kept");
        EXPECT_EQ(gerrno, 0);
    }
    // The locale variables, settled after it, give the result.
    gFreeEVars();
    setenv("DBNLS", "2", 1);
    EXPECT_STREQ(ggetenv("W2"), "kept");
    EXPECT_STREQ(stored("LC_COLLATE"), "en_US.819");
}

TEST_F(FirstLoad, DbnlsInTheEnvironmentFillsTheLocaleVariables) {
    for (const char *off : {"0", "3", "", "1 ", "11"}) {
        gFreeEVars();
        setenv("DBNLS", off, 1);
        ASSERT_EQ(greadenv(), 0);
        EXPECT_EQ(stored("LC_CTYPE"), nullptr) << off;
    }
    for (const char *on : {"1", "2"}) {
        gFreeEVars();
        setenv("DBNLS", on, 1);
        ASSERT_EQ(greadenv(), 0);
        for (const char *name : {"LC_COLLATE", "LC_CTYPE", "LC_MONETARY", "LC_NUMERIC", "LC_TIME"})
            EXPECT_STREQ(stored(name), "en_US.819") << name;
        EXPECT_EQ(stored("LANG"), nullptr);
        EXPECT_EQ(getenv("LC_CTYPE"), nullptr);
    }
}

// Rows of what the user's file and the environment say, and of LC_TIME in the registry and in the
// environment afterwards.
TEST_F(FirstLoad, LocaleVariableIsSettledFromFileLangOrFallback) {
    const struct {
        const char *file, *lang, *lc_time, *in_registry, *in_environment;
    } rows[] = {
        {"DBNLS 1\n", nullptr, nullptr, "en_US.819", nullptr},
        {"DBNLS 1\n", "de", nullptr, "de", nullptr},
        {"DBNLS 1\nLANG fr\n", nullptr, nullptr, "fr", nullptr},
        {"DBNLS 1\nLANG fr\n", "", nullptr, "fr", nullptr},
        {"DBNLS 1\nLANG fr\n", "de", nullptr, "de", nullptr},
        {"DBNLS 1\n", "", nullptr, "en_US.819", nullptr},
        {"DBNLS 1\nLC_TIME it\n", "de", nullptr, "it", nullptr},
        {"DBNLS 1\nLC_TIME it\n", "de", "", "it", "it"}, // the empty one is replaced
        {"DBNLS 1\nLC_TIME\n", "de", "", "de", "de"},
        {"DBNLS 1\n", nullptr, "", "en_US.819", "en_US.819"},
        // set in the environment: LANG shadows it in the registry, it wins at lookup
        {"DBNLS 1\nLC_TIME it\n", "de", "es", "de", "es"},
        {"DBNLS 1\n", nullptr, "es", "en_US.819", "es"},
        {"LC_TIME it\n", "de", "", "it", ""},
        {"DBNLS 3\nLC_TIME it\n", "de", nullptr, "it", nullptr},
    };
    for (const auto &row : rows) {
        gFreeEVars();
        unsetenv("LANG");
        unsetenv("LC_TIME");
        if (row.lang != nullptr)
            setenv("LANG", row.lang, 1);
        if (row.lc_time != nullptr)
            setenv("LC_TIME", row.lc_time, 1);
        write_user_file(row.file);
        ASSERT_EQ(greadenv(), 0) << row.file;
        EXPECT_STREQ(stored("LC_TIME"), row.in_registry) << row.file;
        EXPECT_STREQ(getenv("LC_TIME"), row.in_environment) << row.file;
    }
}
