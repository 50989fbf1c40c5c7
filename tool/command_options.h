// The command's options: -e file, -d file, -k key, each followed by its value.

#pragma once

namespace kestrion {

// Prints the usage text to standard error and leaves with status 255.
[[noreturn]] void usage();

// Reads the run's arguments into op_mode, inputfile_path, outputfile_path and key_input; leaves at
// the first bad one. A later option overrides an earlier one; each key is blanked in the arguments,
// where every user of the machine can read it.
void read_options();

} // namespace kestrion
