#include <kestrion/text_length.h>

#include <kestrion/byte_blocks.h>
#include <kestrion/char_length.h>
#include <kestrion/gls_env.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

ptrdiff_t byleng(const void *block, ptrdiff_t length) {
    locale_rec *lc = CheckGlsEnv()->cur_lc;
    // No block comes near the engine's limits; one that did is all the same measured within bounds.
    if (lc == nullptr || lc->is_single_byte != 0 || length < 0 || length > INT32_MAX)
        return qvt_byleng(block, length);
    return _qvt_gl_mbsntsbytes(lc, static_cast<const char *>(block), static_cast<int32_t>(length));
}
