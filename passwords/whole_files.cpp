#include "passwords/whole_files.h"

#include "base/print_as_format.h"
#include "passwords/message_texts.h"
#include <kestrion/files.h>

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>

namespace kestrion {

namespace {

constexpr mode_t file_mode = 0664; // of a new file, before the umask

int open_or_report(const char *path, int flags, int32_t security) {
    const int fd = qvt_fd_open(path, flags, file_mode, security);
    if (fd < 0) {
        const format_arg name = text_arg(path);
        print_as_format(stderr, s_err_openfile, &name, 1);
    }
    return fd;
}

enum read_result { READ_FAILED = -1, READ_WHOLE = 0, READ_MUST_GROW = -2 };

// A read of the whole limit leaves nothing to ask for, and the read of nothing then looks like the
// end of the file: a regular file above the limit is cut there silently. Only a short read with
// more after it asks for growth. The sealed files in the field were made this way.
read_result read_open_file(int fd, char *buffer, int32_t limit, int32_t *length) {
    for (int32_t left = limit;;) {
        const ssize_t got = qvt_read(fd, buffer + *length, static_cast<size_t>(left));
        if (got < 0)
            return READ_FAILED;
        if (got == 0)
            return READ_WHOLE;
        *length += static_cast<int32_t>(got);
        if (left < *length)
            return READ_MUST_GROW;
        left -= static_cast<int32_t>(got);
    }
}

} // namespace

int read_file(pw_ctx *, const char *path, char *buffer, int32_t limit, int32_t *length) {
    *length = 0;
    const int fd = open_or_report(path, O_RDONLY, QVT_STREAM_R);
    if (fd < 0)
        return -1;
    const read_result result = read_open_file(fd, buffer, limit, length);
    const int error = errno;
    qvt_close(fd);
    if (result == READ_WHOLE)
        buffer[*length] = '\0';
    if (result == READ_FAILED) {
        const format_arg number = number_arg(error);
        print_as_format(stderr, s_errread, &number, 1);
    }
    return result;
}

int write_file(const char *path, const char *data, int32_t length) {
    const int fd = open_or_report(path, O_WRONLY, QVT_TRUNC_OR_CREATE);
    if (fd < 0)
        return -1;
    ssize_t put = 0;
    do {
        put = qvt_write(fd, data, static_cast<size_t>(length));
        if (put > 0) {
            data += put;
            length -= static_cast<int32_t>(put);
        }
    } while (put > 0);
    const int error = errno;
    qvt_close(fd);
    if (put == 0)
        return 0; // also where the system takes nothing more, which it does not report as an error
    fprintf(stderr, "Error writing file; errno=%d\n", error);
    return -1;
}

bool next_read_size(int32_t *limit, int32_t *buffer_size) {
    constexpr int32_t room = 1025; // one less than the first buffer has
    const int64_t next = int64_t{*limit} * 10;
    if (next + room > INT32_MAX)
        return false;
    *limit = static_cast<int32_t>(next);
    *buffer_size = *limit + room;
    return true;
}

} // namespace kestrion
