// Numbers in files, which are written with a point whatever the host's locale has.

#pragma once

namespace kestrion {

// The number at the start of a text, and where it ends. Any other text gives 0 and ends at its
// start. The C++ library's own conversion would bring the whole of the mathematical library into
// every program's start.
double c_locale_number(const char *text, const char **end);

} // namespace kestrion
