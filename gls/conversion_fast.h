// Derived tables that make plain conversions fast.
//
// The tree of a conversion is laid out flat: one entry for each byte that can follow in a state. An
// entry holds the control byte and the target bytes of a finished character, or where the next
// state lies:
//
//     bits 0-7   control byte; 0: not finished
//     bits 8 up  finished: the target bytes, first one lowest (3 in a 32-bit entry, 4 in a 64-bit
//     one)
//                not finished: the next state; 0: no such character, or no mapping
//     a state    base in units of 64 entries (bits 11 up), and which bytes it has: bit 8 set: the
//     64 from
//                64 times bits 9-10 on; bit 8 clear: all 256
//
// Trail bytes of most code sets lie in one such quarter, which keeps the tables in the cache. Runs
// of bytes that stay as they are in an ASCII-compatible pair move eight at a time.
//
// The tables do the inside of a text only. They stop at whatever needs a decision: near either end,
// at an error, at a terminator; what they did is exactly what the routine would have done.

#pragma once

#include "gls/conversion.h"

namespace kestrion {

// Makes the tables of a record with a complete table_normal and no shift states. Without memory, or
// for a tree that would take too much of it, there are none, and convert_fast does nothing.
void make_fast_tables(cv_rec *cv);
void free_fast_tables(cv_rec *cv);

// Converts as far as the tables go and moves the arguments forward. target null: measures.
void convert_fast(const cv_rec *cv, const char **source, int32_t *source_length, char **target,
                  int32_t *room, int32_t *lossy);

} // namespace kestrion
