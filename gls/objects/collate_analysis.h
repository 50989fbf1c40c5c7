// What the collation rows say about characters: which are ignored at every level, and which are
// equivalent.

#pragma once

#include <kestrion/locale_rec.h>

namespace kestrion {

// Fills ignorable_chars and equiv_pairs from the rows. Returns false with the error word set: 3, or
// 11 for more texts than any code set gives.
bool analyse_rows(locale_rec *lc);

void free_analysis(collate_rec &r);

} // namespace kestrion
