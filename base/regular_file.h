// Opening a file that somebody else may have put there: a configuration, a catalogue, an object.
//
// Where the file should be there may be a pipe, whose opening waits for a writer that never comes,
// or a device that never ends. Only a regular file is opened, and at once.

#pragma once

#include <stdio.h>

namespace kestrion {

// Opens the regular file `path` for reading. Returns a descriptor that is closed on exec, or -1
// with errno; EINVAL for what is not a regular file.
int open_regular_file(const char *path);

// The same as a stream for reading; null on failure.
FILE *open_regular_stream(const char *path);

} // namespace kestrion
