#pragma once

#include <kestrion/path_search.h>

namespace kestrion {

// What separates the parts of a file name, as a text for strcspn: either slash, and the mark that
// replaces one.
inline constexpr char gl_name_separators[] = {'/', '\\', gl_directory_mark, '\0'};

} // namespace kestrion
