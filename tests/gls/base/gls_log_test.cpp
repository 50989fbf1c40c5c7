#include "gls/engine_test.h"
#include "tests/support/temp_dir.h"
#include <kestrion/dynamic_load.h>
#include <kestrion/gls_log.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

// Writes two lines in a directory of its own and gives the log back.
std::string logged_with(const char *glslog, const char *glsdebug) {
    const temp_dir dir;
    std::filesystem::current_path(dir.path());
    setenv("GLSLOG", glslog, 1);
    setenv("GLSDEBUG", glsdebug, 1);
    gl_message("first %s%n line");
    gl_message("second");
    const std::string text = file_text("gls.log");
    std::filesystem::current_path("/");
    return text;
}

TEST(Log, LinesAreAppendedAfterAHead) {
    const std::string text = logged_with("oN", "");
    EXPECT_EQ(text.substr(0, 21), "----\nGLS log started ");
    EXPECT_NE(text.find("\n----\nfirst %s%n line\nsecond\n"), text.npos) << text;
}

TEST(Log, NothingIsWrittenUnlessAskedFor) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(logged_with("off", "oN"), "") << "GLSDEBUG wants a small n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(Log, PrintingGoesToTheStandardOutput) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(logged_with("", "Onwards"), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "GLS: first %s%n line\nGLS: second\n");
}

TEST(Log, FailedAssertionEndsTheProcess) {
    EXPECT_EXIT(gl_assert_failed("file.cpp", 12), testing::ExitedWithCode(1),
                "Assert in file.cpp at line 12 failed.\n");
}

// A process that runs as root on behalf of another user must not lend its rights to a file name.
TEST(Log, IsOpenedAsTheRealUser) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can act for another user";
    constexpr uid_t nobody = 65534;
    const temp_dir dir;
    ASSERT_EQ(chmod(dir.path().c_str(), 0777), 0);
    dir.write("roots/own", "");
    ASSERT_EQ(chmod(dir.at("roots").c_str(), 0700), 0);
    ASSERT_EQ(setresgid(nobody, 0, 0), 0);
    ASSERT_EQ(setresuid(nobody, 0, 0), 0);
    FILE *const log = openlogfile(dir.at("log").c_str(), "a");
    ASSERT_NE(log, nullptr);
    fclose(log);
    struct stat status;
    ASSERT_EQ(stat(dir.at("log").c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, nobody);
    EXPECT_EQ(status.st_gid, nobody);
    EXPECT_EQ(openlogfile(dir.at("roots/own").c_str(), "a"), nullptr);
    EXPECT_EQ(geteuid(), 0u) << "the identity comes back";
    EXPECT_EQ(getegid(), 0u);
    ASSERT_EQ(setresuid(0, 0, 0), 0);
    ASSERT_EQ(setresgid(0, 0, 0), 0);
}

TEST(DynamicLoad, HandleRemembersWhatWentWrong) {
    const counting_allocator memory;
    qvtx_dl_handle handle = {};
    void *symbol = nullptr;
    EXPECT_EQ(qvtx_dlopen(&handle, "libc.so.6", qvtx_dl_default_flags), 0);
    EXPECT_STREQ(handle.path, "libc.so.6");
    EXPECT_EQ(qvtx_dlsym(&handle, &symbol, "strlen"), 0);
    EXPECT_NE(symbol, nullptr);
    EXPECT_EQ(qvtx_dlsym(&handle, &symbol, "no_such_symbol"), -1);
    EXPECT_EQ(handle.error, -1);
    EXPECT_NE(std::string(handle.text).find("no_such_symbol"), std::string::npos);
    EXPECT_EQ(qvtx_dlsym(&handle, &symbol, nullptr), -1);
    EXPECT_EQ(handle.error, -2);
    EXPECT_STREQ(handle.text, "Internal Error");
    EXPECT_EQ(qvtx_dlclose(&handle), 0);
    EXPECT_EQ(qvtx_dlclose(&handle), -1) << "it is closed";

    EXPECT_EQ(qvtx_dlopen(&handle, "/no/such/library", qvtx_dl_default_flags), -1);
    EXPECT_NE(std::string(handle.text).find("/no/such/library"), std::string::npos);
    EXPECT_EQ(qvtx_dlclose(&handle), -1) << "it only takes the text back";
    counting_allocator::fail_call(0);
    EXPECT_EQ(qvtx_dlopen(&handle, "libc.so.6", qvtx_dl_default_flags), -1);
}

} // namespace
