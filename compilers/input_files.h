// The files that a compiler has read, so that its outputs do not replace one of them.
#pragma once

#include <sys/stat.h>

namespace kestrion {

// Notes an open file. Readers of sources call it before they read.
void note_input_file(int fd);
bool is_input_file(const struct stat &file);
// For a process that runs more than one compiler.
void forget_input_files();

} // namespace kestrion
