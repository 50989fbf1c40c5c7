// Where the installation lies where no setting says so.

#pragma once

#ifndef KESTRION_BUILT_IN_DIRECTORY // a CMake option
#define KESTRION_BUILT_IN_DIRECTORY "/usr/kestrion"
#endif

namespace kestrion {

// What stands in for KESTRIONDIR.
inline constexpr char built_in_directory[] = KESTRION_BUILT_IN_DIRECTORY;

} // namespace kestrion
