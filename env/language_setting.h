#pragma once

namespace kestrion {

// Whether a value of DBNLS is one that has the locale variables filled in: "1" or "2".
bool turns_language_on(const char *dbnls);

} // namespace kestrion
