// Prints texts that come from outside the program as formats.
//
// Catalogue texts, provider errors and trace lines carry printf-like directives but are data:
// handed to printf they could read arguments that are not there or write memory. Here the caller
// gives a list of typed arguments, and a directive is carried out only while it finds one that
// suits it:
//
//     %%                  a percent sign; takes no argument
//     %s                  the next argument, a number in decimal
//     %d %ld %u %x %c     the next argument, if it is a number
//
// with the usual flags, width and precision (each below format_width_limit). Everything else, such
// as %n, a width of '*', a number wanted where the next argument is a text, or no argument left,
// prints as it stands and uses up no argument. A null format prints nothing, a null text argument
// an empty text.
//
// Example  "%s: %d of %d%%%n" with text "x" and number 7  ->  "x: 7 of %d%%n"

#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

namespace kestrion {

inline constexpr unsigned format_width_limit = 1000;

enum format_arg_kind { FORMAT_TEXT, FORMAT_NUMBER };

struct format_arg {
    format_arg_kind kind;
    const char *text; // FORMAT_TEXT: terminated text or null
    int64_t number;   // FORMAT_NUMBER: value; a negative one under %u and %x shows its low 32 bits
                      // when they hold it
};

constexpr format_arg text_arg(const char *text) { return {FORMAT_TEXT, text, 0}; }
constexpr format_arg number_arg(int64_t number) { return {FORMAT_NUMBER, nullptr, number}; }

// Prints `format` with args[0..count) on `stream`. Short texts reach an unbuffered stream in one
// write.
void print_as_format(FILE *stream, const char *format, const format_arg *args, size_t count);

// The same into buffer[0..size), cut to fit and terminated when `size` is above 0.
// Returns the length of the whole result without the terminator, so a null buffer with size 0
// measures.
// `format` and the texts must not lie in `buffer`.
size_t print_as_format_into(char *buffer, size_t size, const char *format, const format_arg *args,
                            size_t count);

// Prints `text` as a format with itself as its one argument: the first "%s" shows the whole text,
// not expanded again.
void print_as_own_format(FILE *stream, const char *text);

} // namespace kestrion
