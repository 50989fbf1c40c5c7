// The words by which texts name the categories.

#pragma once

#include <kestrion/category.h>
#include <kestrion/specifiers.h>

namespace kestrion {

// Keyword of each category in composite names, which is also its environment variable, and the
// number that `_gl_is_category` gives for it.
struct category_word {
    const char *text;
    gl_keyword keyword;
};
inline constexpr category_word category_words[gl_category_count] = {
    {"GL_CTYPE", GL_KEYWORD_CTYPE},     {"GL_COLLATE", GL_KEYWORD_COLLATE},
    {"GL_NUMERIC", GL_KEYWORD_NUMERIC}, {"GL_MONETARY", GL_KEYWORD_MONETARY},
    {"GL_TIME", GL_KEYWORD_TIME},       {"GL_MESSAGES", GL_KEYWORD_MESSAGES},
};

// Whether a number is one of the six categories.
constexpr bool is_single_category(int32_t category) {
    return category >= gl_first_category && category <= GL_CAT_MESSAGES;
}

} // namespace kestrion
