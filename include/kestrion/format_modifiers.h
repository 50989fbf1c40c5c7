// The modifiers of a directive of number and time formats: flags, width and ".precision" after "%".
//
//   flag   in the locale's text
//   '      groups digits
//   -      justifies on the left
//   +      shows the positive sign
//   blank  shows as many blanks as the positive sign has characters
//   0      pads with zeros; the last flag, and "-" overrides it
//   #      alternate form

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

// Flags of a directive, as the modifiers' parser gives them.
enum gl_number_flags {
    gl_flag_group = 0x001,     // "'"
    gl_flag_left = 0x002,      // "-"
    gl_flag_plus = 0x004,      // "+"
    gl_flag_blank = 0x008,     // " "
    gl_flag_zero = 0x010,      // "0"
    gl_flag_alternate = 0x100, // "#"
    gl_flag_upper_case = 0x200 // digits above 9 and the prefix of base 16; no character sets it
};

enum {
    gl_modifier_unset = -1,   // a width or precision that the directive does not have
    gl_modifier_limit = 9999, // larger widths and precisions count as this
    gl_base_limit = 36        // largest base of an integer
};

#ifdef __cplusplus
extern "C" {
#endif

// Reads the flags, the width and the ".precision" of a directive. "*" is not read: it stays for the
// caller, who refuses it as a conversion.
// at         the element after "%"; afterwards the first one that is not a modifier.
// width      and precision: 0 to gl_modifier_limit, or gl_modifier_unset. "." without digits is 0.
// flags      bits of gl_number_flags.
// Returns    0, or -1 with GLS_ERR_PRECISION. The end of the format is left to the caller.
// Example    at "-06.3Ey" -> at "Ey", width 6, precision 3, flags gl_flag_left | gl_flag_zero
int32_t _gl_scan_format_modifiers(locale_rec *lc, const gl_wchar **at, int32_t *width,
                                  int32_t *precision, uint32_t *flags);

#ifdef __cplusplus
}
#endif
