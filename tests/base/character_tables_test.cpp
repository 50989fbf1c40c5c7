#include "support/failing_malloc.h"
#include <kestrion/character_tables.h>
#include <kestrion/env_registry.h>
#include <kestrion/process_characters.h>

#include <ctype.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>

namespace {

int classes_by_library(int c) {
    return (isupper(c) ? 1 : 0) + (islower(c) ? 2 : 0) + (isdigit(c) ? 4 : 0) +
           (isspace(c) ? 8 : 0) + (ispunct(c) ? 16 : 0) + (iscntrl(c) ? 32 : 0) +
           (isxdigit(c) ? 64 : 0);
}

int class_of(int c) { return _ixctype[c + 1]; }

TEST(CharacterTables, StartAsAsciiWithoutThePrintableBit) {
    for (int c = 0; c < 128; ++c) {
        EXPECT_EQ(class_of(c), classes_by_library(c)) << c;
        EXPECT_EQ(_ix2lowmap[c], tolower(c)) << c;
        EXPECT_EQ(_ix2upmap[c], toupper(c)) << c;
    }
    for (int c = 128; c < 256; ++c) {
        EXPECT_EQ(class_of(c), c < 174 ? 2 : 16) << c;
        EXPECT_EQ(_ix2lowmap[c], c);
        EXPECT_EQ(_ix2upmap[c], c);
    }
    EXPECT_EQ(_ixctype[0], 0);
    EXPECT_EQ(_ixctype[257], 0);
}

TEST(CharacterTables, FollowTheCLibrarysLocale) {
    memset(_ixctype, 0xFF, 257);
    EXPECT_EQ(rldnlsctype("C.UTF-8"), 0);
    EXPECT_EQ(_ixctype[0], 0);
    EXPECT_EQ(_ixctype[257], 0);
    for (int c = 0; c < 256; ++c)
        EXPECT_EQ(class_of(c), classes_by_library(c) + (isprint(c) ? 128 : 0)) << c;
    EXPECT_EQ(class_of('a'), 2 + 64 + 128);
}

TEST(CharacterTables, RefusalsTellTheLocaleFromTheTables) {
    EXPECT_EQ(rldnlsctype("xx_XX.nowhere"), -7206);
    failing_malloc::scope refused(1);
    EXPECT_EQ(rldnlsctype("C"), -406);
}

// Sets the tables up as a program does whose registry is loaded.
int set_up(const char *dbnls, const char *lc_all) {
    setenv("LC_ALL", lc_all, 1);
    setenv("DBNLS", dbnls, 1);
    ggetenv("KESTRIONDIR");
    memset(_ixctype, 0, sizeof _ixctype);
    return rldctype();
}

class SetUpUnderDbnls : public testing::TestWithParam<const char *> {};
INSTANTIATE_TEST_SUITE_P(CharacterTables, SetUpUnderDbnls, testing::Values("1", "2"));

TEST_P(SetUpUnderDbnls, FollowsTheLocale) {
    EXPECT_EQ(set_up(GetParam(), "C"), 0);
    EXPECT_EQ(class_of('a'), 2 + 64 + 128);
    EXPECT_EQ(class_of(0x80), 0);
}

TEST(CharacterTables, SetUpOtherwiseTouchesTheHighBytesAlone) {
    EXPECT_EQ(set_up("11", "xx_XX.nowhere"), 0);
    EXPECT_EQ(class_of(127), 0);
    EXPECT_EQ(class_of(128), 2);
    EXPECT_EQ(class_of(173), 2);
    EXPECT_EQ(class_of(174), 16);
    EXPECT_EQ(class_of(255), 16);
    EXPECT_EQ(set_up("1", "C"), 0) << "only the first call works";
    EXPECT_EQ(class_of('a'), 0);
}

TEST(CharacterTables, SetUpFailsWithALocaleThatIsNotThere) {
    EXPECT_EQ(set_up("1", "xx_XX.nowhere"), -1);
    EXPECT_EQ(class_of(0x80), 0);
}

} // namespace
