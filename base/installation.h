// Where the installation lies, and how far the process environment decides it.
//
// A program with raised privileges (set-user-id and the like) has rights that its caller lacks. The
// caller must not choose whose code it loads or which files it reads and writes: no setting that names
// a file, a folder or a program comes from the environment or the home directory then.

#pragma once

#ifndef KESTRION_BUILT_IN_DIRECTORY // a CMake option
#define KESTRION_BUILT_IN_DIRECTORY "/usr/kestrion"
#endif

namespace kestrion {

// What stands in for KESTRIONDIR, and serves alone with raised privileges.
inline constexpr char built_in_directory[] = KESTRION_BUILT_IN_DIRECTORY;

bool has_raised_privileges();

// The value of a variable that names a file, a folder or a program; null with raised privileges.
char *place_from_environment(const char *name);

// KESTRIONDIR as the process environment has it, or null; with raised privileges the built-in
// directory.
const char *directory_from_environment();

} // namespace kestrion
