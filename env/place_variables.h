#pragma once

namespace kestrion {

// Whether the variable names a file, a folder or a program, or has a file written where the program
// runs: a program with raised privileges does not take it from its caller.
bool is_place_variable(const char *name);

} // namespace kestrion
