// Formats of dates and times, rewritten for this system's formatter, which knows fewer conversions
// than the sources use and gives some of them another meaning.
//
//     %F          %Y-%m-%d
//     %k %l       %H %I
//     %P          %p
//     %-d         %d, and so for every conversion
//     %OB %Op     %B %p
//     %Z %z       nothing, and a blank beside it goes too
//
// Any other conversion that the formatter lacks is an error.
#pragma once

#include "compilers/posix/locale_source.h"

#include <vector>

namespace kestrion {

// Throws source_error at the conversion that cannot be written.
std::vector<text_element> rewrite_format(const locale_source &source,
                                         const std::vector<text_element> &format);

} // namespace kestrion
