// Conversion of single texts between the code set of the operating system and that of the client.

#pragma once

struct cv_rec; // gls/conversion.h

extern "C" {

// Converts a terminated text into a new block from malloc, which the caller owns.
// Returns null when there is no conversion, no text or no memory, or when the text cannot be
// converted.
char *gcv_malloc(cv_rec *cv, const char *text);
}
