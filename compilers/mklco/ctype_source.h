// LC_CTYPE of a locale source, put together with a charmap: the characters of the code set with
// their classes and partners in case.
//
// A source gives classes to characters of all code sets at once; ignore what the charmap lacks.
// The rest is what a source leaves to the compiler:
//
//     upper, lower              are alpha
//     alpha, digit, punct       are graph, and graph is print
//     the blank U+0020          is print, space and blank
//     a charmap's width 2       is the named class "full_width", bit 0
//     class NAME                the bits 1 to 4 in the order of the source; one without a member
//                               gets none
//
// Losses are further named classes, and the width 0.
#pragma once

#include "compilers/mklco/object.h"
#include "compilers/posix/source_library.h"

namespace kestrion {

// Fills characters, class_names, pairs and growth of `object`.
// widths  charmap to take the widths from by code point when `map` has none; may be null.
// Throws source_error.
void compile_ctype(source_library &library, const locale_source &source, const charmap &map,
                   const charmap *widths, diagnostics &said, locale_object &object);

} // namespace kestrion
