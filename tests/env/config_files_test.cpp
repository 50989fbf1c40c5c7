#include "environment.h"
#include <kestrion/config_files.h>
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/first_load.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace std::string_literals;

namespace {

class ConfigFile : public Environment {
protected:
    void SetUp() override {
        Environment::SetUp();
        ASSERT_EQ(greadenv(), 0);
        ignore = _ginitnamelist();
    }
    void TearDown() override {
        _gfreenamelist(ignore);
        Environment::TearDown();
    }
    int load(std::string_view bytes) {
        return ldcffile(root.write("file", bytes).c_str(), ignore, &line, &flags);
    }
    env_name_list *ignore = nullptr;
    uint32_t line = 99;
    uint32_t flags = 0;
};

const char *stored(const char *name) { return idx_getdefault(name, -1); }

} // namespace

TEST_F(ConfigFile, LinesAreTakenByteByByte) {
    const struct {
        std::string bytes;
        int status;
        const char *w1, *w2;
    } rows[] = {
        {"", 0, nullptr, nullptr},
        {"W1 one\nW2 two\n", 0, "one", "two"},
        {"W1 \t one  two \t\nW2\ttwo\n", 0, "one  two \t", "two"},
        {"W1\nW2  \n", 0, "", ""},
        {"W1 one\nW1\n", 0, "", nullptr},
        {"W1 one\nW1 two\n", 0, "two", nullptr},
        {"W1 \"a\" $b \\\nW2 c\n", 0, "\"a\" $b \\", "c"},
        {"W1 one\r\nW2\r\n", 0, "one\r", ""},
        {"W1 one\0 more\nW2 two\n"s, 0, "one", "two"},
        // comments and empty lines
        {"# W1 a\n#\n\n\nW1 one # not a comment\n", 0, "one # not a comment", nullptr},
        {" # W1 a\nW2 two\n", 0, nullptr, "two"},
        {"W2#b c\nW1 one\n", 0, "one", nullptr},
        {" W1 one\nW2 two\n", 0, nullptr, "two"},
        // ends of the file
        {"W1 one\nW2 two", 0, "one", nullptr},
        {"W1 one\nW2 two\xFF", 0, "one", nullptr},
        {"W1 one\nW2 t\xFFwo\nW1 late\n", 0, "one", nullptr},
        {"\xFF\nW2 two\n", 0, nullptr, "two"},   // as a first byte it is text
        {"# \xFF\nW2 two\n", 0, nullptr, "two"}, // in a comment it is dropped
        // an unknown name goes unnoticed but on the last line
        {"NOT_KNOWN a\nW1 one\n", 0, "one", nullptr},
        {"W1 one\nNOT_KNOWN a\n", err_env_value_size, "one", nullptr},
        {"W1 one\nNOT_KNOWN a\n# the\n\n# end\n", err_env_value_size, "one", nullptr},
        {"W1 one\nNOT_KNOWN a\nW2 lost", err_env_value_size, "one", nullptr},
        {"W1 one\n W2 two\n", err_env_value_size, "one", nullptr},
        {"NOT_KNOWN a\nLANG\n", 0, nullptr, nullptr}, // a language name without a value is a line
        // a value over its limit ends the reading
        {"W1 one\nKESTRIONSERVER " + std::string(128, 's') + "\nW2 two\n", 0, "one", "two"},
        {"W1 one\nKESTRIONSERVER " + std::string(129, 's') + "\nW2 two\n", err_env_value_size,
         "one", nullptr},
    };
    for (const auto &row : rows) {
        gFreeEVars();
        ASSERT_EQ(greadenv(), 0);
        EXPECT_EQ(load(row.bytes), row.status) << row.bytes;
        EXPECT_STREQ(stored("W1"), row.w1) << row.bytes;
        EXPECT_STREQ(stored("W2"), row.w2) << row.bytes;
    }
}

TEST_F(ConfigFile, LanguageNamesCountOnlyWithAValue) {
    const struct {
        const char *bytes;
        uint32_t flags;
        const char *name, *value;
    } rows[] = {
        {"DBNLS 1\n", 1, "DBNLS", "1"},
        {"DBNLS 2\n", 1, "DBNLS", "2"},
        {"DBNLS 3\n", 0, "DBNLS", "3"},
        {"DBNLS 1 \n", 0, "DBNLS", "1 "},
        {"LANG de_DE\n", 2, "LANG", "de_DE"},
        {"LC_COLLATE a\n", 4, "LC_COLLATE", "a"},
        {"LC_CTYPE a\n", 8, "LC_CTYPE", "a"},
        {"LC_MONETARY a\n", 16, "LC_MONETARY", "a"},
        {"LC_NUMERIC a\n", 32, "LC_NUMERIC", "a"},
        {"LC_TIME a\n", 64, "LC_TIME", "a"},
        {"DBNLS\nLANG \nLC_TIME\t\n", 0, "LC_TIME", nullptr},
        {"LC_TIME a\nLC_TIME\n", 64, "LC_TIME", "a"},
        {"CLIENT_LOCALE\n", 0, "CLIENT_LOCALE", ""},
    };
    for (const auto &row : rows) {
        gFreeEVars();
        ASSERT_EQ(greadenv(), 0);
        flags = 0;
        EXPECT_EQ(load(row.bytes), 0) << row.bytes;
        EXPECT_EQ(flags, row.flags) << row.bytes;
        EXPECT_STREQ(stored(row.name), row.value) << row.bytes;
    }
    EXPECT_EQ(load("LANG a\n"), 0);
    EXPECT_EQ(load("LC_TIME a\n"), 0);
    EXPECT_EQ(flags, 66U); // bits of several files come together
}

TEST_F(ConfigFile, IgnoredNamesAreSkippedAndAreNoLastLine) {
    EXPECT_EQ(_gaddnamelist(ignore, "W1"), 0);
    EXPECT_EQ(_gaddnamelist(ignore, "LANG"), 1);
    EXPECT_EQ(_gaddnamelist(ignore, "NOT_KNOWN"), 2);
    EXPECT_EQ(load("W1 one\nLANG de\nW2 two\nNOT_KNOWN\n"), 0);
    EXPECT_EQ(stored("W1"), nullptr);
    EXPECT_STREQ(stored("W2"), "two");
    EXPECT_EQ(flags, 0U);
}

TEST_F(ConfigFile, CountsTheLinesItReads) {
    EXPECT_EQ(
        load("# one\n\nW1 three\n\n# five\nKESTRIONSERVER " + std::string(200, 's') + "\nW2\n"),
        err_env_value_size);
    EXPECT_EQ(line, 6U);
}

TEST_F(ConfigFile, WhatCannotBeReadIsNoError) {
    EXPECT_EQ(ldcffile(root.at("missing").c_str(), ignore, &line, &flags), 0);
    EXPECT_EQ(line, 0U);
    EXPECT_EQ(ldcffile(root.path().c_str(), ignore, &line, &flags), 0);
    ASSERT_EQ(mkfifo(root.at("pipe").c_str(), 0600), 0); // nothing writes to it
    EXPECT_EQ(ldcffile(root.at("pipe").c_str(), ignore, &line, &flags), 0);
}

// Every length up to several steps of growth, read whole, with the descriptor left after the line.
TEST_F(ConfigFile, LineBufferGrowsInStepsOf128) {
    for (size_t length = 1; length < 600; ++length) {
        const std::string text(length, 'x');
        const std::string file = root.write("file", "# c\n\n" + text + "\nnext\n");
        const int descriptor = open(file.c_str(), O_RDONLY);
        size_t size = 128;
        auto *buffer = static_cast<char *>(malloc(size));
        line = 0;
        ASSERT_EQ(_ggetcfline(descriptor, &buffer, &size, &line), 0);
        EXPECT_EQ(buffer, text);
        EXPECT_EQ(line, 3U);
        EXPECT_EQ(size, 128 * ((length + 1) / 128 + 1)) << length; // one byte stays free
        EXPECT_EQ(lseek(descriptor, 0, SEEK_CUR), static_cast<off_t>(length + 6));
        ASSERT_EQ(_ggetcfline(descriptor, &buffer, &size, &line), 0);
        EXPECT_STREQ(buffer, "next");
        EXPECT_EQ(_ggetcfline(descriptor, &buffer, &size, &line), -1);
        EXPECT_EQ(line, 4U);
        close(descriptor);
        free(buffer);
    }
    EXPECT_EQ(load("W1 " + std::string(100000, 'x') + "\n"), 0);
    EXPECT_EQ(stored("W1"), std::string(100000, 'x'));
}

TEST_F(ConfigFile, LineReaderTakesABufferWithoutRoom) {
    const int descriptor = open(root.write("file", "ab\n").c_str(), O_RDONLY);
    char *buffer = nullptr;
    size_t size = 0;
    EXPECT_EQ(_ggetcfline(descriptor, &buffer, &size, &line), 0);
    EXPECT_STREQ(buffer, "ab");
    free(buffer);
    close(descriptor);
}

TEST_F(ConfigFile, ExampleOfTheFormatPageReadsAsThePageSays) {
    const std::string text = file_text(KESTRION_SOURCE_DIR "/docs/formats/kestrion_rc.md");
    const size_t begin = text.find("```\n") + 4;
    ASSERT_EQ(load(text.substr(begin, text.find("```", begin) - begin)), 0);
    EXPECT_STREQ(stored("TERM"), "vt220");
    EXPECT_STREQ(stored("DBEDIT"), "/usr/bin/vi -e");
    EXPECT_STREQ(stored("DBPRINT"), "lp -s -d \"second floor\"");
    EXPECT_STREQ(stored("DBTEMP"), "");
    EXPECT_STREQ(stored("DBDATE"), "Y4MD-");
}

TEST(NameList, GrowsBySixteenAndFindsTheFirst) {
    env_name_list *list = _ginitnamelist();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->capacity, 16);
    std::string name = "N";
    for (int i = 0; i < 33; ++i)
        EXPECT_EQ(_gaddnamelist(list, (name + std::to_string(i % 30)).c_str()), i);
    EXPECT_EQ(list->capacity, 48);
    EXPECT_EQ(_gsrchnamelist(list, "N1"), 1); // also at 31
    EXPECT_EQ(_gsrchnamelist(list, "N29"), 29);
    EXPECT_EQ(_gsrchnamelist(list, "n1"), -1);
    EXPECT_EQ(_gsrchnamelist(list, ""), -1);
    _gfreenamelist(list);
    _gfreenamelist(nullptr);
}
