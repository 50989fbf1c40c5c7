// The six categories of a locale, by the engine's own numbers.

#pragma once

#include <stdint.h>

// An index into the arrays of a record is the number less gl_first_category.
enum gl_category {
    GL_CAT_ALL = 1,
    GL_CAT_CTYPE,
    GL_CAT_COLLATE,
    GL_CAT_NUMERIC,
    GL_CAT_MONETARY,
    GL_CAT_TIME,
    GL_CAT_MESSAGES,

    gl_first_category = GL_CAT_CTYPE
};
enum { gl_category_count = 6 };
