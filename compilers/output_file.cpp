#include "compilers/output_file.h"

#include "compilers/diagnostics.h"
#include "compilers/input_files.h"
#include "compilers/temporary_names.h"

#include <errno.h>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <system_error>
#include <tuple>
#include <unistd.h>
#include <utility>

namespace kestrion {

const output_calls system_output_calls = {
    .open = [](const char *path, int flags, mode_t mode) { return ::open(path, flags, mode); },
    .write = ::write,
    .fsync = ::fsync,
    .close = ::close,
    .rename = ::rename,
    .unlink = ::unlink,
};
output_calls output_calls_in_use = system_output_calls;

namespace {

[[noreturn]] void fail(const std::string &path, const char *step, int error) {
    throw compiler_failure("cannot write " + path + ": " + step + ": " + strerror(error));
}

// The name that symbolic links lead to, so that a rename replaces the file and not the link.
std::string real_name(const std::string &path) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw compiler_failure("cannot write " + path + ": it exists and is not a regular file");
    if (!std::filesystem::is_symlink(std::filesystem::symlink_status(path, error)))
        return path;
    const std::filesystem::path target = std::filesystem::canonical(path, error);
    if (error)
        fail(path, "following the symbolic link", error.value());
    return target.string();
}

// What a file is, however it is named; a file that is not there is a name in its directory.
using file_identity = std::tuple<dev_t, ino_t, std::string>;

// Throws usage_error for a file that was read.
file_identity identity_of(const std::string &path) {
    struct stat found;
    if (stat(path.c_str(), &found) == 0) {
        if (is_input_file(found))
            throw usage_error(path + " was read and cannot be an output as well");
        return {found.st_dev, found.st_ino, ""};
    }
    const std::filesystem::path named(path);
    const std::string directory = named.has_parent_path() ? named.parent_path().string() : ".";
    if (stat(directory.c_str(), &found) != 0)
        fail(path, "its directory", errno);
    return {found.st_dev, found.st_ino, named.filename().string()};
}

void check_outputs_differ(const std::vector<output_file> &files) {
    std::set<file_identity> seen;
    for (const output_file &file : files)
        if (!file.path.empty() && !seen.insert(identity_of(file.path)).second)
            throw usage_error(file.path + " is named for two outputs");
}

// A complete copy of an output under a temporary name beside it; removed again unless it is
// renamed.
class staged_file {
public:
    explicit staged_file(const output_file &file) : target_(real_name(file.path)) {
        fd_ = create();
        try {
            write_all(file.bytes);
            if (output_calls_in_use.fsync(fd_) != 0)
                fail(target_, "flushing to the disk", errno);
            if (output_calls_in_use.close(std::exchange(fd_, -1)) != 0)
                fail(target_, "closing", errno);
        } catch (...) {
            discard();
            throw;
        }
    }
    staged_file(staged_file &&other) noexcept
        : target_(std::move(other.target_)), temporary_(std::exchange(other.temporary_, {})),
          fd_(std::exchange(other.fd_, -1)) {}
    staged_file &operator=(staged_file &&) = delete;
    ~staged_file() { discard(); }

    void put_in_place() {
        if (output_calls_in_use.rename(temporary_.c_str(), target_.c_str()) != 0)
            fail(target_, "renaming", errno);
        forget_temporary(temporary_);
        temporary_.clear();
    }

private:
    int create() {
        const size_t slash = target_.rfind('/');
        const size_t leaf = slash == std::string::npos ? 0 : slash + 1;
        const std::string stem = target_.substr(0, leaf) + '.' + target_.substr(leaf) + '.' +
                                 std::to_string(getpid()) + '.';
        for (int attempt = 0;; ++attempt) {
            temporary_ = stem + std::to_string(attempt);
            const signals_held held;
            const int fd = output_calls_in_use.open(temporary_.c_str(),
                                                    O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (fd >= 0) {
                note_temporary(temporary_);
                return fd;
            }
            temporary_.clear();
            if (errno != EEXIST || attempt == 100)
                fail(target_, "making a temporary file beside it", errno);
        }
    }

    void write_all(const std::string &bytes) {
        for (size_t done = 0; done < bytes.size();) {
            const ssize_t n =
                output_calls_in_use.write(fd_, bytes.data() + done, bytes.size() - done);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                fail(target_, "writing", n == 0 ? ENOSPC : errno);
            done += static_cast<size_t>(n);
        }
    }

    void discard() {
        if (fd_ >= 0)
            output_calls_in_use.close(std::exchange(fd_, -1));
        if (!temporary_.empty()) {
            output_calls_in_use.unlink(temporary_.c_str());
            forget_temporary(temporary_);
        }
        temporary_.clear();
    }

    std::string target_;
    std::string temporary_; // empty when there is none to remove
    int fd_ = -1;
};

void write_standard_output(const std::string &bytes) {
    if (fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size() || fflush(stdout) != 0)
        fail("the standard output", "writing", errno);
}

} // namespace

void write_output_files(const std::vector<output_file> &files) {
    check_outputs_differ(files);
    const signals_handled handled;
    std::vector<staged_file> staged;
    for (const output_file &file : files)
        if (!file.path.empty())
            staged.emplace_back(file);
    for (staged_file &file : staged)
        file.put_in_place();
    for (const output_file &file : files)
        if (file.path.empty())
            write_standard_output(file.bytes);
}

} // namespace kestrion
