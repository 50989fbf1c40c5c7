// The command's options: -e file, -d file, -k key, each followed by its value.

#pragma once

namespace kestrion {

// Prints the usage text to standard error and leaves with status 255.
[[noreturn]] void usage();

// Takes the access key into key_input and blanks each key in the arguments, where every user of the
// machine can read it. To be called before anything else; what is wrong with a key is reported by
// read_options.
void take_keys(int argc, char **argv);

// Reads the run's other arguments into op_mode, inputfile_path and outputfile_path; leaves at the
// first bad one. A later option overrides an earlier one.
void read_options();

} // namespace kestrion
