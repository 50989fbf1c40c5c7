// Finds a row of Kes_DVals by name without walking the table.

#pragma once

#include <cstdint>

namespace kestrion {

// Returns the index of the variable of exactly that name, or -1.
int32_t find_variable(const char *name);

} // namespace kestrion
