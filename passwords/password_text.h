// The plain password text.
//
// A line ends with a line feed and has exactly four tokens, separated by any run of tab, blank and
// backspace; separators before and after them are ignored. No quoting, no comments, no empty lines.
// Characters after the last line feed are not a line and are ignored; the text ends at its first
// zero byte.
//
//     "ops  secret\tdb1 live\n"  ->  one entry: "ops", "secret", "db1", "live"

#pragma once

#include <kestrion/passwdapi.h>

#include <stdint.h>

namespace kestrion {

// Parses `text`, cutting it up in place, into new records in table[0..*count). `length` is that of
// the text and sizes a scratch block. Nothing bounds the table: it must have a place for each line.
// Returns 0, or -1 with a message on standard error; then the count is not set, the slot of the bad
// line is null, and the records of the lines before it stay in the table.
int parse_file(pw_ctx *ctx, char *text, int32_t length, int32_t *count, pw_entry **table);

inline constexpr int32_t any_line_count = -1;

// parse_file for a table of `capacity` places: a line beyond them is a bad line, and no slot is
// written for it. any_line_count sets no bound.
int parse_lines(pw_ctx *ctx, char *text, int32_t length, int32_t *count, pw_entry **table,
                int32_t capacity);

} // namespace kestrion
