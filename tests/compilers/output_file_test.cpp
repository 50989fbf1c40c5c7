// Files are written whole or not at all, whichever system call fails.

#include "compilers/diagnostics.h"
#include "compilers/output_file.h"
#include "tests/compilers/command.h"

#include <algorithm>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace kestrion;

namespace {

int calls_left = -1; // the call that brings this to 0 fails; -1: none

bool fails() { return calls_left > 0 && --calls_left == 0; }

int refuse(int error) {
    errno = error;
    return -1;
}

// Each call behaves as the system's until its turn to fail has come. A failed write or close has
// done part of its work, as on a disk that fills.
const output_calls failing_calls = {
    .open = [](const char *path, int flags,
               mode_t mode) { return fails() ? refuse(EACCES) : ::open(path, flags, mode); },
    .write = [](int fd, const void *bytes, size_t count) -> ssize_t {
        static bool interrupted = false;
        if (interrupted = !interrupted; interrupted)
            return refuse(EINTR);
        const bool now = fails();
        const ssize_t n = ::write(fd, bytes, std::min<size_t>(count, 7)); // always partial
        return now ? refuse(ENOSPC) : n;
    },
    .fsync = [](int fd) { return fails() ? refuse(EIO) : ::fsync(fd); },
    .close =
        [](int fd) {
            const bool now = fails();
            ::close(fd);
            return now ? refuse(EIO) : 0;
        },
    .rename = [](const char *from,
                 const char *to) { return fails() ? refuse(EXDEV) : ::rename(from, to); },
    .unlink = ::unlink,
};

struct OutputFile : testing::Test {
    void SetUp() override {
        char name[] = "/tmp/kestrion-output-XXXXXX";
        dir = mkdtemp(name);
        std::ofstream(dir / "old") << "the old file";
    }
    void TearDown() override {
        output_calls_in_use = system_output_calls;
        fs::remove_all(dir);
    }
    ptrdiff_t entries() const { return std::distance(fs::directory_iterator(dir), {}); }
    fs::path dir;
};

} // namespace

TEST_F(OutputFile, OldFileSurvivesEveryFailingCall) {
    const std::string bytes = "bytes that take four writes.";
    output_calls_in_use = failing_calls;
    int failures = 0;
    for (;; ++failures) {
        calls_left = failures + 1;
        try {
            write_output_files({{dir / "list", "losses"}, {dir / "old", bytes}});
        } catch (const compiler_failure &error) {
            EXPECT_EQ(content(dir / "old"), "the old file") << "call " << failures + 1;
            EXPECT_EQ(entries(), fs::exists(dir / "list") ? 2 : 1) << "a temporary file stays";
            EXPECT_NE(std::string(error.what()).find(dir), std::string::npos) << error.what();
            continue;
        }
        break;
    }
    EXPECT_EQ(content(dir / "old"), bytes);
    EXPECT_EQ(content(dir / "list"), "losses");
    EXPECT_EQ(entries(), 2);
    EXPECT_EQ(failures, 2 + (1 + 4) + 2 + 2 + 2); // open, write, fsync, close, rename
}

TEST_F(OutputFile, SignalsLeaveNoTemporaryFile) {
    for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGXFSZ}) {
        static int sent;
        sent = signal;
        const pid_t child = fork();
        if (child == 0) {
            ::signal(signal, SIG_DFL);
            output_calls_in_use.rename = [](const char *, const char *) { return raise(sent); };
            write_output_files({{dir / "list", "losses"}, {dir / "old", "new"}});
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal << " " << status;
        EXPECT_EQ(entries(), 1) << signal;
        EXPECT_EQ(content(dir / "old"), "the old file");
    }
}

TEST_F(OutputFile, NamesThatAreNoRegularFilesAreNotReplaced) {
    fs::create_directory(dir / "directory");
    ASSERT_EQ(mkfifo((dir / "pipe").c_str(), 0600), 0);
    for (const char *name : {"directory", "pipe", "missing/file"})
        EXPECT_THROW(write_output_files({{dir / name, "x"}}), compiler_failure) << name;
    EXPECT_TRUE(fs::is_fifo(dir / "pipe"));

    fs::create_symlink("old", dir / "link");
    write_output_files({{dir / "link", "through the link"}});
    EXPECT_TRUE(fs::is_symlink(dir / "link"));
    EXPECT_EQ(content(dir / "old"), "through the link");
}

TEST_F(OutputFile, NewFilesGetTheModeOfTheUmask) {
    const mode_t before = umask(027);
    write_output_files({{dir / "new", ""}});
    umask(before);
    struct stat status;
    ASSERT_EQ(stat((dir / "new").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
    EXPECT_EQ(status.st_size, 0);
}
