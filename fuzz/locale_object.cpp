// A locale object of any bytes: it is refused and leaves nothing allocated, or it loads and the
// operations on characters and the comparers serve a text that ends at the end of its block.

#include "gls/objects/category_data.h"
#include <kestrion/categories.h>
#include <kestrion/char_case.h>
#include <kestrion/char_class.h>
#include <kestrion/char_convert.h>
#include <kestrion/char_length.h>
#include <kestrion/char_width.h>
#include <kestrion/collation.h>
#include <kestrion/locale_file.h>
#include <kestrion/sort_key.h>
#include <kestrion/thai_order.h>

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

using namespace kestrion;

namespace {

void use_characters(locale_rec *lc, const uint8_t *data, size_t size) {
    size_t count = size < 64 ? size : 64;
    // A character of wide units that is cut off takes zero bytes; the terminator follows.
    size_t end = gl_mb_loc_min(lc) == 1 ? 1 : text_tail;
    char *text = static_cast<char *>(malloc(count + end));
    memcpy(text, data + (size - count), count);
    memset(text + count, 0, end);
    int32_t length = static_cast<int32_t>(count);
    int32_t walked = static_cast<int32_t>(count + end);
    size_t room = static_cast<size_t>(gl_case_conv_outbuflen(lc, walked)) + end;
    char *out = static_cast<char *>(malloc(room + 1));
    gl_wchar wide[80];

    gl_tombsupper(lc, out, text);
    gl_tombslower(lc, out, text);
    gl_mbsbytes(lc, text);
    gl_mbswidth(lc, text, 80);
    _qvt_gl_im_mbfslen(lc, text, length);
    _qvt_gl_im_mbfstowcfs(lc, wide, text, length, 64);
    for (int32_t i = 0; i < length; ++i) {
        uint32_t mask;
        _qvt_gl_full_mbdescribe(lc, wide, text + i, &mask, 0xffff, length - i);
        _gl_im_towlower(lc, wide[0]);
        _gl_im_iswctype(lc, static_cast<gl_wchar>(i) * 0x01010101u, 0xffff);
    }
    free(out);
    free(text);
}

// Compares the last bytes of the object, cut in two, by every comparer.
void compare_texts(locale_rec *lc, const uint8_t *data, size_t size) {
    const size_t count = size < 200 ? size : 200;
    char *text = static_cast<char *>(malloc(count + text_tail));
    memcpy(text, data + (size - count), count);
    memset(text + count, 0, text_tail);
    const int32_t half = static_cast<int32_t>(count / 2);
    const int32_t rest = static_cast<int32_t>(count) - half;
    const gl_mbfscoll_fn comparers[] = {lc->mbfscoll_fn,          _qvt_gl_im_mbfscoll,
                                        _qvt_gl_is_mbfscoll_exp,  _qvt_gl_is_mbfscoll_elem,
                                        _qvt_gl_is_mbfscoll_back, _qvt_gl_is_mbfscoll_exp_elem};
    for (const gl_mbfscoll_fn compare : comparers)
        compare(lc, text, half, text + half, rest);
    qvt_gl_begins_with(lc, text, half, text + half, rest, 2);
    char key[64];
    _gl_thaismoxfrm(lc, text, key, sizeof key);
    gl_full_mbsxfrm(lc, key, text, sizeof key);
    free(text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    locale_rec *lc;
    if (size == 0 || gl_create_null_locale_4(&lc) != 0)
        return 0;
    for (int32_t category = GL_CAT_CTYPE; category <= GL_CAT_MESSAGES; ++category) {
        FILE *file = fmemopen(const_cast<uint8_t *>(data), size, "r");
        gl_free_category(lc, category);
        gl_make_null_category(lc, category);
        if (read_one_category(lc, category, file) != 0 && category == GL_CAT_CTYPE &&
            gl_mb_loc_max(lc) != 0)
            abort();
        fclose(file);
    }
    update_locale(lc);
    use_characters(lc, data, size);
    compare_texts(lc, data, size);
    gl_lc_unload(lc);
    return 0;
}
