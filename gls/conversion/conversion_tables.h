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
//     a state     bits 16 up:  its first entry, in units of 16
//                 bits 12-15:  which of the high four bits of a byte all its bytes share: 1111 for
//                              16 entries, 1100 for 64, 0000 for 256
//                 bits 8-11:   these bits
//
// A byte that no character goes on with, or ends with unmapped, leads to an empty state, and that
// to itself, so that a walk has nothing to test but its end.
//
// Trail bytes of most code sets lie in one quarter of the byte values, or less, which keeps the
// tables small and in the cache. Three-byte characters of UTF-8 get there by one step more directly:
// rows[] has the state after their first two bytes. Runs of ASCII that stay as they are move eight
// bytes at a time.

#pragma once

#include <kestrion/conversion.h>
#include <kestrion/multi.h>

namespace kestrion {

inline constexpr uint32_t state_unit = 16; // entries
inline constexpr uint32_t root_units = gl_bytes / state_unit;
inline constexpr uint32_t utf8_trails = 64;        // entries of a state for trail bytes of UTF-8
inline constexpr uint32_t empty_unit = root_units; // after the root: leads to itself alone
inline constexpr uint32_t empty_units = utf8_trails / state_unit;
inline constexpr uint32_t state_prefix_shift = 8;
inline constexpr uint32_t state_shared_shift = 12;
inline constexpr uint32_t state_base_shift = 16;
// No such character, or no mapping: a state that never ends one.
inline constexpr uint32_t absent_entry = empty_unit << state_base_shift | 0xfu
                                                                              << state_shared_shift;

inline constexpr uint32_t utf8_leads = 16;

enum class table_form : unsigned char { single, narrow, wide };

struct fast_tables {
    table_form kind;
    bool only_zero_ends; // no character but a zero byte ends a terminated text
    bool keeps_ascii;    // bytes below 80 stay as they are
    bool has_rows;
    uint32_t rows[utf8_leads * utf8_trails]; // first entry by the first two bytes
};

// What the record of a single-byte pair has in place of the rows and entries above.
struct single_tables {
    fast_tables head;
    unsigned char first_odd; // the bytes that don't stay as they are lie from here
    unsigned char odd_span;  // to here: last less first
    unsigned char target[gl_bytes];
    unsigned char control[gl_bytes]; // CV_INEXACT, single_unmapped, or 0
};

inline constexpr unsigned char single_unmapped = 1;

inline size_t offset_of_entries() { return (sizeof(fast_tables) + 7) / 8 * 8; }

template <typename Entry> Entry *entries_of(fast_tables *fast) {
    return reinterpret_cast<Entry *>(reinterpret_cast<unsigned char *>(fast) + offset_of_entries());
}
template <typename Entry> const Entry *entries_of(const fast_tables *fast) {
    return entries_of<Entry>(const_cast<fast_tables *>(fast));
}

template <typename Entry> uint32_t first_entry(Entry state) {
    return (static_cast<uint32_t>(state) >> state_base_shift) * state_unit;
}

// Make the tables of a record with a complete table_normal and no shift states. Without memory, or
// for a tree that would take too much of it, they make nothing, and then convert_fast does nothing.
void make_single_byte_tables(cv_rec *cv);
void make_flat_tables(cv_rec *cv);
void free_fast_tables(cv_rec *cv);

} // namespace kestrion
