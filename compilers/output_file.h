// Files that are written whole or not at all.
//
// Every file of a set first becomes a temporary file in its own directory: written, flushed to the
// disk, closed, each step checked. Only when all are complete are they renamed, in order, so the
// file that matters comes last. A failed step removes the temporary files and leaves the old
// ones byte for byte. A name that is a symbolic link means the file that it leads to; what exists
// and is not a regular file is refused, not replaced. A signal that ends the process removes the
// temporary files, too.

#pragma once

#include <stddef.h>
#include <string>
#include <sys/types.h>
#include <vector>

namespace kestrion {

// The system calls that writing makes, in a table so that a test can make the n-th of them fail.
struct output_calls {
    int (*open)(const char *path, int flags, mode_t mode);
    ssize_t (*write)(int fd, const void *bytes, size_t count);
    int (*fsync)(int fd);
    int (*close)(int fd);
    int (*rename)(const char *from, const char *to);
    int (*unlink)(const char *path);
};
extern const output_calls system_output_calls;
extern output_calls output_calls_in_use; // the system's, but in tests

struct output_file {
    std::string path; // empty: the standard output
    std::string bytes;
};

// Writes all files or none. Throws usage_error when two of them are one, or one was read
// (input_files.h), and compiler_failure that names the file, the step and the reason.
// What goes to the standard output goes there last, when every file is in place.
void write_output_files(const std::vector<output_file> &files);

} // namespace kestrion
