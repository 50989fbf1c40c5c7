// Files: system calls under the names of the runtime, and an open that decides about security.
//
// The wrappers report what the system call reported and leave `errno` as it left it; none retries
// after an interruption. Only qvt_fd_open(), qvt_mkdir() and qvt_chksec_setumask() decide anything.

#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <sys/types.h>

// Security flags of qvt_fd_open() and qvt_fp_open(). The low byte is the stream mode, which
// qvt_fd_open() ignores.
enum qvt_security_flag {
    QVT_STREAM_R = 3,        // "r"
    QVT_STREAM_R_PLUS = 4,   // "r+"
    QVT_STREAM_RB = 5,       // "rb"
    QVT_STREAM_RB_PLUS = 6,  // "rb+"
    QVT_STREAM_W = 7,        // "w"
    QVT_STREAM_W_PLUS = 8,   // "w+"
    QVT_STREAM_WB = 9,       // "wb"
    QVT_STREAM_WB_PLUS = 10, // "wb+"
    QVT_STREAM_A = 11,       // "a"
    QVT_STREAM_A_PLUS = 12,  // "a+"
    QVT_STREAM_AB = 13,      // "ab"
    QVT_STREAM_AB_PLUS = 14, // "ab+"

    QVT_KEEP_ON_EXEC = 0x100,      // leave the descriptor open across exec
    QVT_CHECK_WORLD_WRITE = 0x200, // open for reading, refuse a file that the world may write
    QVT_TRUNC_OR_CREATE = 0x1000,  // truncate if it exists, else create it
};

enum {
    qvt_world_writable = -2 // result of qvt_fd_open() for a refused file
};

#ifdef __cplusplus
extern "C" {
#endif

int qvt_open(const char *path, int flags, mode_t mode);
int qvt_creat(const char *path, mode_t mode);
int qvt_close(int fd);
ssize_t qvt_read(int fd, void *buffer, size_t count);
ssize_t qvt_write(int fd, const void *buffer, size_t count);
off_t qvt_lseek(int fd, off_t offset, int whence);

// Opens `path` and returns the descriptor, or a negative value.
//
// With QVT_CHECK_WORLD_WRITE it opens for reading whatever `flags` say. A file that the world may
// write gives qvt_world_writable, one that cannot be examined -1, and in both cases the descriptor
// stays open. Descriptor 0 is not examined.
//
// Otherwise an existing file is opened first, truncated only for write-only access without append
// under QVT_TRUNC_OR_CREATE. If that fails, and that flag or O_CREAT in `flags` asks for it, the
// file is created exclusively: this follows no dangling link and cannot be raced into someone
// else's file. `mode` loses the bit that lets the world write.
int qvt_fd_open(const char *path, int flags, mode_t mode, int32_t security);
int qvt_fd_close(int fd);
ssize_t qvt_fd_read(int fd, void *buffer, size_t count);
ssize_t qvt_fd_write(int fd, const void *buffer, size_t count);

// As qvt_fd_open() with QVT_TRUNC_OR_CREATE added, so that even mode "r" creates a missing file;
// then a stream in the mode of the low byte. Null on failure; a low byte outside 3..14 gives EINVAL
// and opens nothing.
FILE *qvt_fp_open(const char *path, int flags, mode_t mode, int32_t security);
int qvt_fp_close(FILE *stream);
size_t qvt_fp_read(FILE *stream, void *buffer, size_t size, size_t count);
size_t qvt_fp_write(FILE *stream, const void *buffer, size_t size, size_t count);

// mkdir() under a file mode mask of 2. Ends the process when something else changed the mask
// meanwhile: the directory's mode, and every later file's, would be a matter of luck.
int qvt_mkdir(const char *path, mode_t mode);

// Adds 0113 to the file mode mask: from here on nothing is made executable for its owner, nor
// executable or writable for others. Returns 0, which is the mask it meets on its second step.
mode_t qvt_chksec_setumask(void);

// Sets close-on-exec and returns `fd`; a negative `fd` comes straight back. On failure closes it
// and returns -1.
int set_fd_cloexec(int fd);

#ifdef __cplusplus
}
#endif
