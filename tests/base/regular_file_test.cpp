#include "base/regular_file.h"

#include "support/temp_dir.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A hang is what each of the refusals guards against.
TEST(RegularFile, OpensNothingElseAndWaitsForNobody) {
    temp_dir directory;
    ASSERT_EQ(mkfifo(directory.at("pipe").c_str(), 0600), 0);
    const std::string refused[] = {directory.at("pipe"), directory.path(), "/dev/zero"};
    for (const std::string &path : refused) {
        errno = 0;
        EXPECT_EQ(kestrion::open_regular_stream(path.c_str()), nullptr) << path;
        EXPECT_EQ(errno, EINVAL) << path;
    }
    EXPECT_EQ(kestrion::open_regular_file(directory.at("absent").c_str()), -1);
    EXPECT_EQ(errno, ENOENT);

    const std::string file = directory.write("file", "text");
    ASSERT_EQ(symlink(file.c_str(), directory.at("link").c_str()), 0);
    for (const std::string &path : {file, directory.at("link")}) {
        FILE *const stream = kestrion::open_regular_stream(path.c_str());
        ASSERT_NE(stream, nullptr) << path;
        EXPECT_EQ(fgetc(stream), 't');
        EXPECT_EQ(fcntl(fileno(stream), F_GETFD), FD_CLOEXEC);
        fclose(stream);
    }
}

} // namespace
