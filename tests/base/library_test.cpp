#include <kestrion/library.h>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <string.h>

namespace {

TEST(Library, LoadsFindsAndCloses) {
    void *library = qvt_load_library(MODULE_FILE, 0);
    ASSERT_NE(library, nullptr);
    auto *answer = reinterpret_cast<int (*)()>(qvt_findsym_library(library, "module_answer"));
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);
    EXPECT_EQ(qvt_findsym_library(library, "no_such_symbol"), nullptr);
    EXPECT_EQ(qvt_close_library(library), 0);
    EXPECT_EQ(dlopen(MODULE_FILE, RTLD_NOW | RTLD_NOLOAD), nullptr);
}

TEST(Library, ModeZeroIsGlobalAndAnyOtherModeIsKept) {
    void *local = qvt_load_library(MODULE_FILE, RTLD_LAZY);
    ASSERT_NE(local, nullptr);
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "module_answer"), nullptr);
    EXPECT_EQ(qvt_load_library(MODULE_FILE, 0), local);
    EXPECT_NE(dlsym(RTLD_DEFAULT, "module_answer"), nullptr);
}

TEST(Library, ErrorTextIsCutTerminatedAndGivenOnce) {
    char text[256];
    EXPECT_EQ(qvt_load_library("/no/such/library.so", 0), nullptr);
    EXPECT_EQ(qvt_error_library(text, sizeof text), text);
    EXPECT_NE(strstr(text, "/no/such/library.so"), nullptr) << text;
    EXPECT_STREQ(qvt_error_library(text, sizeof text), "");

    EXPECT_EQ(qvt_load_library("/no/such/library.so", 0), nullptr);
    strcpy(text, "########");
    qvt_error_library(text, 4);
    EXPECT_STREQ(text, "/no");
    EXPECT_EQ(text[4], '#');
    EXPECT_EQ(qvt_error_library(text, 0), text);
    EXPECT_STREQ(text, "/no");
    EXPECT_EQ(qvt_error_library(nullptr, 9), nullptr);
}

} // namespace
