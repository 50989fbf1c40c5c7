#include "platform/character_tables.h"

#include <ctype.h>
#include <gtest/gtest.h>
#include <locale.h>
#include <string.h>

#include <algorithm>
#include <iterator>

#include "platform/os_control.h"
#include "support/failing_malloc.h"

namespace {

int classes_by_library(int c) {
    return (isupper(c) ? 1 : 0) + (islower(c) ? 2 : 0) + (isdigit(c) ? 4 : 0) +
           (isspace(c) ? 8 : 0) + (ispunct(c) ? 16 : 0) + (iscntrl(c) ? 32 : 0) +
           (isxdigit(c) ? 64 : 0);
}

int class_of(int c) { return _ixctype[c + 1]; }

TEST(CharacterTables, StartAsAsciiWithoutThePrintableBit) {
    for (int c = 0; c < 128; c++) {
        EXPECT_EQ(class_of(c), classes_by_library(c)) << c;
        EXPECT_EQ(_ix2lowmap[c], tolower(c)) << c;
        EXPECT_EQ(_ix2upmap[c], toupper(c)) << c;
    }
    for (int c = 128; c < 256; c++) {
        EXPECT_EQ(class_of(c), c < 174 ? 2 : 16) << c;
        EXPECT_EQ(_ix2lowmap[c], c);
        EXPECT_EQ(_ix2upmap[c], c);
    }
    EXPECT_EQ(_ixctype[0], 0);
    EXPECT_EQ(_ixctype[257], 0);
}

TEST(CharacterTables, HighConstantsReplaceWhatStoodThere) {
    unsigned char before[258];
    memcpy(before, _ixctype, sizeof before);
    memset(_ixctype + 129, 0xFF, 128);
    EXPECT_EQ(rld8bitarr(), 0);
    EXPECT_EQ(memcmp(before, _ixctype, sizeof before), 0);
}

TEST(CharacterTables, FollowTheCLibrarysLocale) {
    memset(_ixctype, 0xFF, 257);
    EXPECT_EQ(rldnlsctype("C.UTF-8"), 0);
    EXPECT_EQ(_ixctype[0], 0);
    EXPECT_EQ(_ixctype[257], 0);
    for (int c = 0; c < 256; c++)
        EXPECT_EQ(class_of(c), classes_by_library(c) + (isprint(c) ? 128 : 0)) << c;
    EXPECT_EQ(class_of('a'), 2 + 64 + 128);
}

TEST(CharacterTables, RefusalsTellTheLocaleFromTheTables) {
    EXPECT_EQ(rldnlsctype("xx_XX.nowhere"), -7206);
    failing_malloc::scope refused(1);
    EXPECT_EQ(rldnlsctype("C"), -406);
}

} // namespace
