// LC_NUMERIC, LC_MONETARY, LC_TIME and LC_MESSAGES of a locale source.
//
// What differs between a source and an object:
//
//     in the source                       in the object
//     grouping 3;3                        3 0: the 0 repeats the size before it
//     grouping 3;-1                       3 -1: no more groups
//     -1 in *_cs_precedes,                1
//     *_sep_by_space,                     0
//     *_sign_posn                         1: an amount can be written all the same
//     numeric signs, which it lacks       "+" and "-"
//     formats                             see time_format.h
//     era "+:1:-0001//12//31:-*:B.C.:f"   seven fields, the name twice; the sign is "-" when the
//                                         end is before the start, else "+"
//
// Losses are positions of international amounts that differ from the local ones, a group
// separator of amounts that differs from that of numbers (amounts are written with the latter),
// alternative digits after the hundredth.
#pragma once

#include "compilers/mklco/object.h"
#include "compilers/mklco/text_encoder.h"

namespace kestrion {

// Fills the fields of `object`. Throws source_error.
void compile_sections(source_library &library, const locale_source &source, text_encoder &encoder,
                      diagnostics &said, const std::string &calendar, locale_object &object);

} // namespace kestrion
