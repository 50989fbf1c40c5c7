// LC_COLLATE of a locale source, put together with a charmap: rows, weights, expansions and
// contractions of an object.
//
// A row is one distinct set of weights, one a level; level_weights.h says how places become
// weights. Row 0 is for the characters that the source does not order: after all others, by their
// codes. What a source may say and an object holds in another way:
//
//     several places at the first level      an expansion of characters that bear one of them each;
//                                            without such characters one weight between its
//                                            neighbours
//     several places between first and last  in a multibyte code set expansions for the whole level,
//                                            if its collating elements let it; else one weight each
//     a place that no character bears        for expansions, a character that is none: a byte
//                                            sequence that the row table knows and no text can hold
//     collating elements                     contractions, longer ones first
//
// In a single-byte code set texts are compared byte by byte, by expansions or contractions but not
// by both: a locale with collating elements of its own keeps those, any other the expansions. There
// each byte has a weight of its own at the first level, listed or not; on a tie nothing else would
// tell two bytes apart.
//
// Lost, and reported: directions of scripts other than that of the letter a; `position`; several
// places that became one weight; collating elements that were dropped and order otherwise than
// their characters; the order of characters beyond 16382 weights of a level.
#pragma once

#include "compilers/mklco/object.h"
#include "compilers/posix/source_library.h"

namespace kestrion {

// Fills the collation of `object`, whose characters are there. Throws source_error.
void compile_collation(source_library &library, const locale_source &source, const charmap &map,
                       diagnostics &said, locale_object &object);

} // namespace kestrion
