#include <kestrion/files.h>

#include <errno.h>
#include <fcntl.h>
#include <iterator>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int32_t stream_mode_bits = 0xFF;

// Stream modes by the low byte of the security flags, from QVT_STREAM_R on.
constexpr const char *flag_map[] = {
    "r", "r+", "rb", "rb+", // 3..6
    "w", "w+", "wb", "wb+", // 7..10
    "a", "a+", "ab", "ab+", // 11..14
};
static_assert(std::size(flag_map) == QVT_STREAM_AB_PLUS - QVT_STREAM_R + 1);

const char *stream_mode(int32_t security) {
    const int32_t low = security & stream_mode_bits;
    if (low < QVT_STREAM_R || low > QVT_STREAM_AB_PLUS)
        return nullptr;
    return flag_map[low - QVT_STREAM_R];
}

int settle_exec(int fd, int32_t security) {
    return (security & QVT_KEEP_ON_EXEC) != 0 ? fd : set_fd_cloexec(fd);
}

// The descriptor stays open whatever the result, as the callers of this operation know it.
int open_unless_world_writable(const char *path, mode_t mode, int32_t security) {
    const int fd = settle_exec(open(path, O_RDONLY, mode), security);
    if (fd <= 0)
        return fd;
    struct stat status;
    if (fstat(fd, &status) != 0)
        return -1;
    return (status.st_mode & S_IWOTH) != 0 ? qvt_world_writable : fd;
}

} // namespace

int qvt_open(const char *path, int flags, mode_t mode) { return open(path, flags, mode); }
int qvt_creat(const char *path, mode_t mode) { return creat(path, mode); }
int qvt_close(int fd) { return close(fd); }
ssize_t qvt_read(int fd, void *buffer, size_t count) { return read(fd, buffer, count); }
ssize_t qvt_write(int fd, const void *buffer, size_t count) { return write(fd, buffer, count); }
off_t qvt_lseek(int fd, off_t offset, int whence) { return lseek(fd, offset, whence); }

int qvt_fd_open(const char *path, int flags, mode_t mode, int32_t security) {
    if ((security & QVT_CHECK_WORLD_WRITE) != 0)
        return open_unless_world_writable(path, mode, security);

    const bool trunc_or_create = (security & QVT_TRUNC_OR_CREATE) != 0;
    const bool wants_creation = trunc_or_create || (flags & O_CREAT) != 0;
    mode &= ~static_cast<mode_t>(S_IWOTH);
    if ((flags & O_ACCMODE) == O_WRONLY && (flags & O_APPEND) == 0 && trunc_or_create)
        flags |= O_TRUNC;

    int fd = open(path, flags & ~(O_CREAT | O_EXCL), mode);
    if (fd < 0 && wants_creation)
        fd = open(path, flags | O_CREAT | O_EXCL, mode);
    return fd < 0 ? fd : settle_exec(fd, security);
}

int qvt_fd_close(int fd) { return close(fd); }
ssize_t qvt_fd_read(int fd, void *buffer, size_t count) { return read(fd, buffer, count); }
ssize_t qvt_fd_write(int fd, const void *buffer, size_t count) { return write(fd, buffer, count); }

FILE *qvt_fp_open(const char *path, int flags, mode_t mode, int32_t security) {
    const char *stream = stream_mode(security);
    if (stream == nullptr) {
        errno = EINVAL;
        return nullptr;
    }
    const int fd = qvt_fd_open(path, flags, mode, security | QVT_TRUNC_OR_CREATE);
    if (fd < 0)
        return nullptr;
    FILE *opened = fdopen(fd, stream);
    if (opened == nullptr) {
        const int reason = errno;
        close(fd);
        errno = reason;
    }
    return opened;
}

int qvt_fp_close(FILE *stream) { return fclose(stream); }

size_t qvt_fp_read(FILE *stream, void *buffer, size_t size, size_t count) {
    return fread(buffer, size, count, stream);
}

size_t qvt_fp_write(FILE *stream, const void *buffer, size_t size, size_t count) {
    return fwrite(buffer, size, count, stream);
}

int qvt_mkdir(const char *path, mode_t mode) {
    const mode_t before = umask(S_IWOTH);
    const int result = mkdir(path, mode);
    const mode_t old = umask(before);
    if (old != S_IWOTH) {
        fputs("qvt_mkdir: the file mode mask changed meanwhile, \"old == 02\" failed\n", stderr);
        abort();
    }
    return result;
}

mode_t qvt_chksec_setumask(void) {
    const mode_t before = umask(0);
    return umask(before | 0113);
}

int set_fd_cloexec(int fd) {
    if (fd < 0 || fcntl(fd, F_SETFD, FD_CLOEXEC) == 0)
        return fd;
    close(fd);
    return -1;
}
