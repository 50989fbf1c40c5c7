// LC_NUMERIC, LC_MONETARY, LC_TIME and LC_MESSAGES of a locale source.
//
// What differs between a source and an object:
//
//     grouping 3;3            3 0: the 0 repeats the size before it; -1 ends the list and grouping
//     -1 in *_cs_precedes, *_sep_by_space, *_sign_posn   1, 0, 1: amounts can be written all the
//     same numeric signs           "+" and "-", which sources do not name formats see time_format.h
//     era "+:1:-0001//12//31:-*:B.C.:%EC%Ey"   seven fields, the name twice; the sign says which
//     way the
//                             years run: "-" when the end lies before the start, else "+"
//
// Lost, and told: positions of international amounts that differ from the local ones, a group
// separator of amounts that differs from that of numbers (amounts are written with the latter),
// alternative digits behind the hundredth.
#pragma once

#include "compilers/mklco/object.h"
#include "compilers/mklco/text_encoder.h"

namespace kestrion {

// Fills the fields of `object`. Throws source_error.
void compile_sections(source_library &library, const locale_source &source, text_encoder &encoder,
                      diagnostics &said, const std::string &calendar, locale_object &object);

} // namespace kestrion
