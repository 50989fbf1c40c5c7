// Where catalogues are searched, and in which order.

#include "support/temp_dir.h"
#include <kestrion/code_set_registry.h>
#include <kestrion/env_registry.h>
#include <kestrion/gls_env.h>
#include <kestrion/message_paths.h>
#include <kestrion/message_ranges.h>
#include <kestrion/messages.h>

#include <errno.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

namespace {

struct MessagePaths : testing::Test {
    void SetUp() override {
        for (const char *variable : {"DBLANG", "DBNLS", "LANG", "CLIENT_LOCALE"})
            unsetenv(variable);
        setenv("KESTRIONDIR", dir.path().c_str(), 1);
        new_gls_env.init_flags = 1;          // the search needs no locale,
        gl_cache_registry(nullptr, nullptr); // but the names of code sets
    }

    void install(const std::string &place) { dir.write(place + "/x.qem", "x"); }

    // The directory in which the leaf is found, below the installation directory.
    std::string found(const char *locale = nullptr) {
        const char *path = rmsgfname_gls("x.qem", locale);
        if (path == nullptr)
            return "null";
        const std::string name = path;
        const size_t base = dir.path().size() + 1;
        return name.empty() ? "" : name.substr(base, name.rfind('/') - base);
    }

    temp_dir dir;
};

bool raised = false;

} // namespace

extern "C" unsigned long __wrap_getauxval(unsigned long) { return raised; }

TEST_F(MessagePaths, NamesLeadOutOfTheInstallationOnlyWithoutRaisedPrivileges) {
    setenv("CLIENT_LOCALE", "../../out", 1);
    dir.write("here/msg/english/x.qem", "x");
    dir.write("out/x.qem", "x");
    ASSERT_NE(ggetenv("KESTRIONDIR"), nullptr);
    ASSERT_EQ(ginsenv("KESTRIONDIR", dir.at("here").c_str(), nullptr), 0);
    for (const bool with_privileges : {false, true}) {
        raised = with_privileges;
        unsetenv("KESTRIONDIR");
        EXPECT_EQ(found(), with_privileges ? "here/msg/english" : "here/msg/../../out");
    }
    raised = false;
}

TEST_F(MessagePaths, EachPlaceWinsInItsTurn) {
    setenv("DBLANG", "de_DE.8859-1", 1);
    setenv("CLIENT_LOCALE", "fr_FR.8859-1", 1);
    const char *places[] = {
        "msg/de_DE.8859-1", "de_DE.8859-1",   "msg/de_de/0333",   "msg/fr_fr/0333",
        "msg/fr_FR.8859-1", "msg/en_us/0333", "msg/en_US.8859-1", "msg",
        "msg/english",
    };
    for (const char *place : places)
        install(place);
    for (const char *place : places) {
        errno = ENOENT;
        EXPECT_EQ(found(), place);
        EXPECT_EQ(errno, 0) << place;
        std::filesystem::remove(dir.at(std::string(place) + "/x.qem"));
    }
    EXPECT_EQ(found(), "") << "no file anywhere is an empty path, not a null one";
}

TEST_F(MessagePaths, LocaleArgumentEndsTheUsersDirectory) {
    setenv("DBLANG", "mine", 1);
    for (const char *place : {"msg/mine", "msg/de_de/0333", "msg/en_us/0333"})
        install(place);
    EXPECT_EQ(found(), "msg/mine");
    EXPECT_EQ(found("de_DE.8859-1"), "msg/de_de/0333");
    EXPECT_EQ(found(), "msg/en_us/0333") << "for later searches too";
    rmsg_init();
    EXPECT_EQ(found(), "msg/mine") << "until the state is forgotten";
}

TEST_F(MessagePaths, LangStandsInForDblangUnderDbnls) {
    setenv("LANG", "mine", 1);
    install("msg/mine");
    EXPECT_EQ(found(), "");
    setenv("DBNLS", "1", 1);
    EXPECT_EQ(found(), "") << "settled at the first search";
    rmsg_init();
    EXPECT_EQ(found(), "msg/mine");
}

TEST_F(MessagePaths, NamesTooLongAreLeftOut) {
    install("msg/english");
    setenv("DBLANG", std::string(259, 'a').c_str(), 1);
    EXPECT_EQ(found(), "msg/english") << "no path fits, and none is cut";
    EXPECT_EQ(strlen(msg_langdir), 259U);
    rmsg_init();
    setenv("DBLANG", std::string(260, 'a').c_str(), 1);
    EXPECT_EQ(found(), "msg/english");
    EXPECT_STREQ(msg_langdir, "");
    EXPECT_EQ(found(std::string(260, 'b').c_str()), "msg/english");
}

// 256 bytes less 21 are left for the installation directory and the leaf.
TEST_F(MessagePaths, LongInstallationDirectoryGivesNoPath) {
    setenv("KESTRIONDIR", ("/" + std::string(199, 'd')).c_str(), 1);
    EXPECT_STREQ(rmsgfname(std::string(35, 'l').c_str()), "");
    EXPECT_EQ(rmsgfname(std::string(36, 'l').c_str()), nullptr);
}

TEST_F(MessagePaths, OnlyRegularReadableFilesCount) {
    std::filesystem::create_directories(dir.at("msg/en_us/0333/x.qem"));
    install("msg/english");
    EXPECT_EQ(found(), "msg/english");
    EXPECT_EQ(_ofreadable(dir.at("missing").c_str()), 0);
}

TEST_F(MessagePaths, RangesLeadToLeaves) {
    const struct {
        int32_t number;
        const char *leaf;
        int32_t result;
    } rows[] = {
        {-84400, "pwseal.qem", 0}, {84415, "pwseal.qem", 0},  {-84399, "os.qem", -3},
        {-84416, "os.qem", -3},    {32766, "os.qem", -3},     {32765, "os.qem", -3},
        {1202, "os.qem", -3},      {-1204, "os.qem", -3},     {0, "os.qem", -3},
        {INT32_MIN, "os.qem", -3}, {-9602, "collect.qem", 0}, {-23115, "locale.qem", 0},
        {-34394, "locale.qem", 0},
    };
    for (const message_range *table : {_cmfqvt, _smfqvt}) {
        _mfqvt = table;
        for (const auto &row : rows) {
            char leaf[message_leaf_size];
            EXPECT_EQ(rmkmsgleafname(row.number, leaf), row.result) << row.number;
            EXPECT_STREQ(leaf, row.leaf) << row.number;
        }
    }
    const std::string longest(message_leaf_size - 1, 'l');
    const message_range own[] = {{1, 5, 5, longest.c_str()}, {1, 0, 9, "late"}, {0, 0, 99, "end"}};
    _mfqvt = own;
    char leaf[message_leaf_size];
    EXPECT_EQ(rmkmsgleafname(-5, leaf), 0);
    EXPECT_EQ(leaf, longest) << "the first row that takes the number counts";
    EXPECT_EQ(rmkmsgleafname(10, leaf), -3) << "the row with marker 0 ends the table";
}
