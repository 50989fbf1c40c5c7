// The six categories of a locale, by the engine's own numbers.

#pragma once

#include <stdint.h>

// An index into the arrays of a record is the number less gl_first_category.
enum gl_category : int32_t {
    GL_CAT_ALL = 1,
    GL_CAT_CTYPE,
    GL_CAT_COLLATE,
    GL_CAT_NUMERIC,
    GL_CAT_MONETARY,
    GL_CAT_TIME,
    GL_CAT_MESSAGES
};
inline constexpr int32_t gl_first_category = GL_CAT_CTYPE;
inline constexpr int32_t gl_category_count = 6;

// Whether a number is one of the six.
inline bool is_single_category(int32_t category) {
    return category >= gl_first_category && category < gl_first_category + gl_category_count;
}
