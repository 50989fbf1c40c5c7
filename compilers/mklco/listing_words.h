// The words that writer and reader of listings share.
#pragma once

#include <kestrion/ctype_masks.h>

#include <stdint.h>
#include <string>
#include <string_view>

namespace kestrion {

// The first line of a listing.
inline constexpr std::string_view listing_mark = "locale_object 11";

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

// The word for a named class without a name of its own.
inline std::string bit_word(int bit) { return "bit" + std::to_string(bit); }

} // namespace kestrion
