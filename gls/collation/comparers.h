// Which comparers suit a locale.

#pragma once

#include <kestrion/locale_rec.h>

namespace kestrion {

// Sets mbscoll_fn, mbfscoll_fn and mbsxfrm_fn by the code set and the features of the collation.
void choose_comparers(locale_rec *lc);

} // namespace kestrion
