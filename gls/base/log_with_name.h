// Log lines that name a file.

#pragma once

namespace kestrion {

// Writes one line to the engine's log, made of a fixed start and a text of any length, such as a
// file name.
void log_with_name(const char *start, const char *name);

} // namespace kestrion
