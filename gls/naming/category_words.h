#pragma once

#include <kestrion/category.h>

namespace kestrion {

// Keywords of the categories in composite names; also environment variables.
inline constexpr const char *category_params[gl_category_count] = {
    "GL_CTYPE", "GL_COLLATE", "GL_NUMERIC", "GL_MONETARY", "GL_TIME", "GL_MESSAGES",
};

// Whether a number is one of the six categories.
constexpr bool is_single_category(int32_t category) {
    return category >= gl_first_category && category <= GL_CAT_MESSAGES;
}

} // namespace kestrion
