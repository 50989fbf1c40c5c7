// The words that writer and reader of listings share.
#pragma once

#include <kestrion/ctype_masks.h>

#include <stdint.h>

namespace kestrion {

struct class_word {
    const char *word;
    uint32_t mask;
};

// Classes that every locale has, by their names in locale sources.
inline constexpr class_word class_words[] = {
    {"upper", CT_UPPER}, {"lower", CT_LOWER},   {"alpha", CT_ALPHA}, {"digit", CT_DIGIT},
    {"space", CT_SPACE}, {"cntrl", CT_CNTRL},   {"punct", CT_PUNCT}, {"graph", CT_GRAPH},
    {"print", CT_PRINT}, {"xdigit", CT_XDIGIT}, {"blank", CT_BLANK},
};

} // namespace kestrion
