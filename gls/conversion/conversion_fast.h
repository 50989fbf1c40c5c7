// The fast way through the inside of a text, by the derived tables of
// gls/conversion/conversion_tables.h.
//
// It stops at whatever needs a decision: near either end, at an error, at a terminator; what it did
// is exactly what the routine would have done.

#pragma once

#include <kestrion/conversion.h>

namespace kestrion {

// Converts as far as the tables go and moves the arguments forward. target null: measures.
void convert_fast(const cv_rec *cv, const char **source, int32_t *source_length, char **target,
                  int32_t *room, int32_t *lossy);

} // namespace kestrion
