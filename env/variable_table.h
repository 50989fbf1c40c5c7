// The variable table as the compiler sees it: an index is worked out while the runtime is compiled,
// and a row is found by name without a walk along the table.

#pragma once

#include "base/installation.h"
#include <kestrion/variable_table.h>

#include <iterator>
#include <string_view>

namespace kestrion {

// What Kes_DVals holds. No code reads it at run time, so that the archive has the rows once.
inline constexpr env_variable variable_rows[] = {
#include "env/variable_rows.inc"
};
static_assert(std::size(variable_rows) == Num_DVals + 1);
static_assert(variable_rows[Num_DVals].name == nullptr);

// The index of a variable; a name that is not in the table does not compile.
consteval int32_t variable_index(std::string_view name) {
    int32_t index = 0;
    while (name != variable_rows[index].name)
        ++index;
    return index;
}

// The row of `name` in Kes_DVals, or -1.
int32_t find_variable(const char *name);

} // namespace kestrion
