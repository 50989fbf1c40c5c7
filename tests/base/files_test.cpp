#include "support/temp_dir.h"
#include <kestrion/files.h>

#include <atomic>
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int no_file = -1;

class Files : public testing::Test {
protected:
    void SetUp() override { umask(0); }

    std::string path(const char *name) const { return directory_.at(name); }
    std::string content(const char *name) const { return directory_.read(name); }

    std::string make(const char *name, const char *content, mode_t mode) const {
        const std::string file = directory_.write(name, content);
        EXPECT_EQ(chmod(file.c_str(), mode), 0);
        return file;
    }

    int mode_of(const char *name) const {
        struct stat status;
        return stat(path(name).c_str(), &status) == 0 ? status.st_mode & 07777 : no_file;
    }

private:
    temp_dir directory_;
};

bool is_open(int fd) { return fcntl(fd, F_GETFD) >= 0; }
bool closes_on_exec(int fd) { return fcntl(fd, F_GETFD) == FD_CLOEXEC; }

// Keeps descriptor 0 free for one open.
class free_standard_input {
public:
    free_standard_input() : kept_(dup(0)) { close(0); }
    ~free_standard_input() {
        dup2(kept_, 0);
        close(kept_);
    }

private:
    int kept_;
};

TEST_F(Files, CheckedOpenRefusesWorldWritableFilesButLeavesThemOpen) {
    const std::string bad = make("bad", "x", 0602), good = make("good", "x", 0664);
    const int next = open("/dev/null", O_RDONLY); // descriptors come lowest first
    close(next);
    EXPECT_EQ(qvt_fd_open(bad.c_str(), O_RDONLY, 0, QVT_CHECK_WORLD_WRITE), -2);
    EXPECT_TRUE(closes_on_exec(next));
    EXPECT_EQ(lseek(next, 0, SEEK_END), 1);
    const int fd = qvt_fd_open(good.c_str(), O_RDONLY, 0, QVT_CHECK_WORLD_WRITE);
    EXPECT_GT(fd, next);
    EXPECT_TRUE(closes_on_exec(fd));
    EXPECT_EQ(qvt_fd_open(path("none").c_str(), O_RDONLY, 0, QVT_CHECK_WORLD_WRITE), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(Files, CheckedOpenIsReadOnlyWhateverTheFlags) {
    const std::string file = make("file", "old", 0600);
    const int fd = qvt_fd_open(file.c_str(), O_RDWR | O_TRUNC | O_CREAT, 0666,
                               QVT_CHECK_WORLD_WRITE | QVT_TRUNC_OR_CREATE | QVT_KEEP_ON_EXEC);
    ASSERT_GT(fd, 0);
    EXPECT_EQ(fcntl(fd, F_GETFL) & O_ACCMODE, O_RDONLY);
    EXPECT_FALSE(closes_on_exec(fd));
    EXPECT_EQ(qvt_fd_write(fd, "x", 1), -1);
    EXPECT_EQ(content("file"), "old");
    EXPECT_EQ(qvt_fd_open(path("none").c_str(), O_RDWR | O_CREAT, 0666, QVT_CHECK_WORLD_WRITE), -1);
    EXPECT_EQ(mode_of("none"), no_file);
}

TEST_F(Files, CheckedOpenDoesNotExamineDescriptorZero) {
    const std::string bad = make("bad", "x", 0666);
    const free_standard_input zero;
    EXPECT_EQ(qvt_fd_open(bad.c_str(), O_RDONLY, 0, QVT_CHECK_WORLD_WRITE), 0);
}

TEST_F(Files, TruncationIsForWriteOnlyWithoutAppendUnderItsBit) {
    const struct {
        int flags;
        int32_t security;
        const char *wanted;
    } rows[] = {
        {O_WRONLY, QVT_TRUNC_OR_CREATE, ""},
        {O_WRONLY, 0, "old"},
        {O_WRONLY | O_CREAT | O_EXCL, 0, "old"}, // an existing file is opened all the same
        {O_WRONLY | O_APPEND, QVT_TRUNC_OR_CREATE, "old"},
        {O_RDWR, QVT_TRUNC_OR_CREATE, "old"},
        {O_RDONLY, QVT_TRUNC_OR_CREATE, "old"},
        {O_RDWR | O_TRUNC, 0, ""},
    };
    for (const auto &row : rows) {
        const std::string file = make("file", "old", 0602);
        const int fd = qvt_fd_open(file.c_str(), row.flags, 0600, row.security);
        ASSERT_GE(fd, 0) << row.flags;
        EXPECT_EQ(content("file"), row.wanted) << row.flags << " " << row.security;
        EXPECT_EQ(mode_of("file"), 0602) << "an existing file keeps its mode";
        EXPECT_EQ(qvt_fd_close(fd), 0);
    }
}

TEST_F(Files, CreationNeedsARequestAndDropsWorldWriting) {
    const struct {
        int flags;
        int32_t security;
        mode_t mask;
        int wanted; // mode of the new file
    } rows[] = {
        {O_WRONLY, 0, 0, no_file},
        {O_RDWR | O_EXCL, 0, 0, no_file},
        {O_WRONLY | O_CREAT, 0, 0, 0664},
        {O_WRONLY, QVT_TRUNC_OR_CREATE, 0, 0664},
        {O_RDONLY, QVT_TRUNC_OR_CREATE, 0, 0664},
        {O_WRONLY, QVT_TRUNC_OR_CREATE, 027, 0640},
    };
    for (const auto &row : rows) {
        const std::string file = path("file");
        umask(row.mask);
        const int fd = qvt_fd_open(file.c_str(), row.flags, 0666, row.security);
        EXPECT_EQ(fd >= 0, row.wanted != no_file) << row.flags;
        EXPECT_EQ(mode_of("file"), row.wanted) << row.flags;
        if (fd >= 0)
            close(fd);
        unlink(file.c_str());
    }
}

TEST_F(Files, CreationFollowsNoDanglingLink) {
    const std::string link = path("link"), target = path("target");
    ASSERT_EQ(symlink(target.c_str(), link.c_str()), 0);
    EXPECT_EQ(qvt_fd_open(link.c_str(), O_WRONLY | O_CREAT, 0600, QVT_TRUNC_OR_CREATE), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(mode_of("target"), no_file);
    // A link to a file that is there is followed.
    make("target", "old", 0600);
    const int fd = qvt_fd_open(link.c_str(), O_WRONLY, 0600, QVT_TRUNC_OR_CREATE);
    EXPECT_GE(fd, 0);
    EXPECT_EQ(content("target"), "");
}

TEST_F(Files, DescriptorsCloseOnExecUnlessKept) {
    const std::string file = make("file", "x", 0600);
    EXPECT_TRUE(closes_on_exec(qvt_fd_open(file.c_str(), O_RDONLY, 0, 0)));
    EXPECT_FALSE(closes_on_exec(qvt_fd_open(file.c_str(), O_RDONLY, 0, QVT_KEEP_ON_EXEC)));
    EXPECT_TRUE(closes_on_exec(qvt_fd_open(path("new").c_str(), O_WRONLY | O_CREAT, 0600, 0)));
    const int plain = qvt_open(file.c_str(), O_RDONLY, 0);
    EXPECT_FALSE(closes_on_exec(plain));
    EXPECT_EQ(set_fd_cloexec(plain), plain);
    EXPECT_TRUE(closes_on_exec(plain));
    EXPECT_EQ(set_fd_cloexec(-2), -2);
    EXPECT_EQ(set_fd_cloexec(999), -1);
}

TEST_F(Files, StreamsTakeTheirModeFromTheLowByte) {
    const std::string file = make("file", "old", 0600);
    FILE *stream = qvt_fp_open(file.c_str(), O_WRONLY | O_APPEND, 0600, QVT_STREAM_AB);
    ASSERT_NE(stream, nullptr);
    EXPECT_TRUE(closes_on_exec(fileno(stream)));
    EXPECT_EQ(qvt_fp_write(stream, "er", 1, 2), 2u);
    EXPECT_EQ(qvt_fp_close(stream), 0);
    EXPECT_EQ(content("file"), "older");
    stream = qvt_fp_open(file.c_str(), O_RDWR, 0600, QVT_STREAM_RB_PLUS);
    ASSERT_NE(stream, nullptr);
    char text[8] = "";
    EXPECT_EQ(qvt_fp_read(stream, text, 1, 7), 5u);
    EXPECT_STREQ(text, "older");
    EXPECT_EQ(qvt_fp_close(stream), 0);
    // A missing file is made, even one that is only to be read.
    stream = qvt_fp_open(path("new").c_str(), O_RDONLY, 0666, QVT_STREAM_R);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(mode_of("new"), 0664);
    EXPECT_EQ(qvt_fp_close(stream), 0);
}

TEST_F(Files, StreamsThatCannotBeLeaveNothingBehind) {
    for (int32_t low : {0, 1, 2, 15, 255}) {
        errno = 0;
        EXPECT_EQ(qvt_fp_open(path("none").c_str(), O_WRONLY, 0600, low), nullptr) << low;
        EXPECT_EQ(errno, EINVAL);
        EXPECT_EQ(mode_of("none"), no_file);
    }
    const std::string file = make("file", "x", 0600);
    const int next = open(file.c_str(), O_RDONLY);
    close(next);
    EXPECT_EQ(qvt_fp_open(file.c_str(), O_RDONLY, 0600, QVT_STREAM_W), nullptr);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_FALSE(is_open(next)) << "the descriptor under a stream that failed";
}

TEST_F(Files, DirectoriesAreMadeUnderTheirOwnMask) {
    umask(077);
    EXPECT_EQ(qvt_mkdir(path("d").c_str(), 0777), 0);
    EXPECT_EQ(mode_of("d"), 0775);
    EXPECT_EQ(qvt_mkdir(path("d").c_str(), 0777), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(umask(0), 077u) << "the mask is put back, after a failure too";
}

TEST_F(Files, MaskChangedBehindMkdirEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            std::atomic<bool> *go = new std::atomic<bool>(true);
            pthread_t meddler;
            pthread_create(
                &meddler, nullptr,
                [](void *flag) -> void * {
                    while (*static_cast<std::atomic<bool> *>(flag))
                        umask(022);
                    return nullptr;
                },
                go);
            for (;;)
                qvt_mkdir(path("missing/d").c_str(), 0777);
        },
        "old == 02");
}

TEST_F(Files, SecurityMaskIsAddedAndZeroReturned) {
    umask(004);
    EXPECT_EQ(qvt_chksec_setumask(), 0u);
    EXPECT_EQ(umask(0), 0117u);
}

} // namespace
