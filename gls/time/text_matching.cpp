#include "gls/time/text_matching.h"

#include <kestrion/char_case.h>
#include <kestrion/ctype_masks.h>

namespace kestrion {
namespace {

constexpr gl_wchar ascii_lower(gl_wchar c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; }

// The step of a character. Of what is none, as a wide text may hold, the operations on characters
// would leave an error.
multi_step step_of(const ctype_rec &ct, gl_wchar c) {
    return wide_step(ct, ct.class_walk, ct.class_prefixes, c);
}

bool has_case(const ctype_rec &ct, gl_wchar c) {
    const multi_step step = step_of(ct, c);
    return step.next == multi_end && (step.datum & (CT_UPPER | CT_LOWER)) != 0;
}

} // namespace

bool is_space_beyond_ascii(const locale_rec *lc, gl_wchar c) {
    const multi_step step = step_of(ctype_of(lc), c);
    return step.next == multi_end && (step.datum & CT_SPACE) != 0;
}

bool is_same_letter(locale_rec *lc, gl_wchar a, gl_wchar b) {
    const ctype_rec &ct = ctype_of(lc);
    if (a == b)
        return true;
    if (ct.plain_ascii != 0 && a < 0x80 && b < 0x80)
        return ascii_lower(a) == ascii_lower(b);
    if (!has_case(ct, a) || !has_case(ct, b))
        return false;
    return _gl_im_towlower(lc, a) == _gl_im_towlower(lc, b) ||
           _gl_im_towupper(lc, a) == _gl_im_towupper(lc, b);
}

} // namespace kestrion
