#include <kestrion/char_class.h>

#include "gls/base/engine_error.h"
#include "gls/text/char_walk.h"
#include <kestrion/ctype_masks.h>

#include <string.h>

using namespace kestrion;

namespace {

struct standard_class {
    const char *name;
    uint32_t mask;
};

// Most wanted first.
constexpr standard_class standard_classes[] = {
    {"alpha", CT_ALPHA},   {"lower", CT_LOWER}, {"upper", CT_UPPER}, {"digit", CT_DIGIT},
    {"xdigit", CT_XDIGIT}, {"alnum", CT_ALNUM}, {"blank", CT_BLANK}, {"space", CT_SPACE},
    {"punct", CT_PUNCT},   {"graph", CT_GRAPH}, {"print", CT_PRINT}, {"cntrl", CT_CNTRL},
};

// Bits above the widest mask that the shift can hold name no class.
constexpr int32_t mask_bits_left = 20;

uint32_t named_mask(int32_t bit) {
    return bit >= 0 && bit <= mask_bits_left ? uint32_t{CT_NAMED} << bit : 0;
}

// What an invalid character gives.
uint32_t no_class(locale_rec *lc, int32_t error) {
    set_engine_error(lc, error);
    return 0;
}

// The rare ways of a class question, out of the common one's way: a null locale, a character
// without a prefix, an invalid one.
[[gnu::noinline]] uint32_t rare_wide_class(locale_rec *lc, gl_wchar wc, uint32_t mask) {
    const ctype_rec &ct = ctype_of(lc);
    multi_step step = wide_step(ct, ct.class_walk, ct.class_prefixes, wc);
    return step.next == multi_end ? step.datum & mask : no_class(lc, GLS_ERR_BAD_CHARACTER);
}

} // namespace

uint32_t gl_ctype(locale_rec *lc, const char *name) {
    if (name == nullptr)
        return 0;
    // "full_width" is asked for at every width; no standard name begins like it.
    if (name[0] != 'f')
        for (const standard_class &c : standard_classes)
            if (strcmp(c.name, name) == 0)
                return c.mask;
    const ctype_rec &ct = ctype_of(lc);
    for (int32_t i = 0; i < ct.class_name_count; ++i)
        if (strcmp(ct.class_names[i].name, name) == 0)
            return named_mask(ct.class_names[i].bit);
    return 0;
}

uint32_t _gl_im_iswctype(locale_rec *lc, gl_wchar wc, uint32_t mask) {
    if (lc != nullptr && has_prefix(lc->ctype_cat, wc)) {
        multi_step step =
            step_by_prefix(lc->ctype_cat.class_walk, lc->ctype_cat.class_prefixes, wc);
        if (step.next == multi_end)
            return step.datum & mask;
    }
    return rare_wide_class(lc, wc, mask);
}

uint32_t _gl_im_ismctype(locale_rec *lc, const char *s, uint32_t mask) {
    return _qvt_gl_im_ismctype(lc, s, -1, mask);
}

uint32_t _qvt_gl_im_ismctype(locale_rec *lc, const char *s, int32_t limit, uint32_t mask) {
    if (s == nullptr)
        return 0;
    if (limit < 1 && limit != -1)
        return no_class(lc, GLS_ERR_SPECIFIER);
    const ctype_rec &ct = ctype_of(lc);
    decoded_char c =
        limit == -1 ? decode_text(ct, ct.class_walk, s) : decode_limited(ct.class_walk, s, limit);
    return is_char(c) ? c.step.datum & mask : no_class(lc, decode_error(c));
}
