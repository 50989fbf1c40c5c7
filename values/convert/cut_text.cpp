#include "values/convert/cut_text.h"

#include <kestrion/char_length.h>
#include <kestrion/gls_env.h>

#include <algorithm>
#include <string.h>

namespace kestrion {

int32_t whole_characters(const char *text, int32_t length, int32_t room) {
    locale_rec *lc = CheckGlsEnv()->cur_lc;
    if (length <= room)
        return length;
    if (lc == nullptr || lc->is_single_byte != 0)
        return room;
    int32_t at = 0;
    while (at < room) {
        const int32_t bytes = std::max(_qvt_gl_full_mblen(lc, text + at, length - at), 1);
        if (bytes > room - at)
            break;
        at += bytes;
    }
    return at;
}

int32_t copy_cut(const char *text, int32_t length, char *to, int32_t room) {
    const int32_t written = std::min(length, room);
    if (written <= 0)
        return 0;
    const int32_t whole = whole_characters(text, length, room);
    memmove(to, text, static_cast<size_t>(whole)); // a text may be cut in place
    memset(to + whole, ' ', static_cast<size_t>(written - whole));
    return written;
}

} // namespace kestrion
