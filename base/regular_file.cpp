#include "base/regular_file.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

void close_keeping_errno(int descriptor) {
    const int reason = errno;
    close(descriptor);
    errno = reason;
}

} // namespace

namespace kestrion {

// O_NONBLOCK is for the opening of a pipe; regular files ignore it.
int open_regular_file(const char *path) {
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (descriptor < 0)
        return -1;
    struct stat status;
    if (fstat(descriptor, &status) == 0) {
        if (S_ISREG(status.st_mode))
            return descriptor;
        errno = EINVAL;
    }
    close_keeping_errno(descriptor);
    return -1;
}

FILE *open_regular_stream(const char *path) {
    const int descriptor = open_regular_file(path);
    if (descriptor < 0)
        return nullptr;
    FILE *const stream = fdopen(descriptor, "r");
    if (stream == nullptr)
        close_keeping_errno(descriptor);
    return stream;
}

} // namespace kestrion
