// What the formatter and the scanner of amounts share: directives, patterns, the texts of tokens.

#pragma once

#include "gls/numbers/number_conventions.h"
#include <kestrion/money_pattern.h>

#include <stdint.h>

namespace kestrion {

// Flags of a money directive.
enum money_flags : uint32_t {
    money_no_groups = 1,   // "^"
    money_plus = 2,        // "+"
    money_parentheses = 4, // "("
    money_no_symbol = 8,   // "!"
    money_left = 16,       // "-"
    money_zero = 32,       // "0"
};

struct money_directive {
    uint32_t flags;
    gl_wchar fill;
    int32_t width;           // this and the next two: or gl_modifier_unset
    int32_t left_precision;  //
    int32_t right_precision; //
    gl_wchar conversion;     // 0 when the format ended before it
};

// Reads a directive from the element after "%" and leaves `at` after its conversion.
money_directive read_money_directive(const gl_wchar *&at);

// How amounts of one sign are laid out.
struct money_layout {
    int32_t tokens[money_pattern_size]; // empty when the locale does not say
    wide_piece symbol;
    wide_piece sign;
};

// The layouts for a directive; the sign of the positive one is the locale's positive sign. Where
// the locale does not say how amounts look, the layout is empty.
money_layout layout_of(const locale_rec *lc, const money_directive &directive, bool negative);

// The text of a token other than the value.
wide_piece token_text(const money_layout &layout, int32_t token);

} // namespace kestrion
