// Derived tables that make plain conversions fast.
//
// A pair of single-byte code sets has 256 target bytes, and the range outside of which all bytes
// stay as they are: blocks without a byte in the range are copied.
//
// Any other tree is laid out flat, one entry for each byte that can follow in a state. An entry
// holds a finished character, or where the next state lies:
//
//     bits 0-7    control byte; 0: not finished
//     bits 8 up   finished: the target bytes, the first one lowest (3 in a 32-bit entry, 4 in a
//                 64-bit one)
//                 not finished: the next state
//     a state     bits 12 up: its first entry, in units of 64
//                 bits 8-9:   the quarter of the byte values that it has, when it has 64 entries
//                 bits 10-11: both set for 64 entries, clear for 256
//
// A byte that no character goes on with, or ends with unmapped, leads to an empty state, and that
// to itself, so that a walk has nothing to test but its end.
//
// Trail bytes of most code sets lie in one quarter, which keeps the tables in the cache. Three-byte
// characters of UTF-8 get there by one step more directly: rows[] has the state behind their first
// two bytes. Runs of ASCII that stay as they are move eight bytes at a time.
//
// The tables do the inside of a text only. They stop at whatever needs a decision: near either end,
// at an error, at a terminator; what they did is exactly what the routine would have done.

#pragma once

#include "gls/conversion.h"

namespace kestrion {

// Make the tables of a record with a complete table_normal and no shift states. Without memory, or
// for a tree that would take too much of it, there are none, and convert_fast does nothing.
void make_single_byte_tables(cv_rec *cv);
void make_flat_tables(cv_rec *cv);
void free_fast_tables(cv_rec *cv);

// Converts as far as the tables go and moves the arguments forward. target null: measures.
void convert_fast(const cv_rec *cv, const char **source, int32_t *source_length, char **target,
                  int32_t *room, int32_t *lossy);

} // namespace kestrion
