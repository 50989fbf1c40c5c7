#include "gls/numbers/multibyte_twin.h"

#include "gls/base/engine_error.h"
#include "gls/text/char_walk.h"
#include <kestrion/char_convert.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/gls_errors.h>

#include <limits.h>
#include <string.h>

namespace kestrion {

namespace {

gl_wchar *allocated_elements(locale_rec *lc, int64_t count) {
    void *block = _gl_ext_malloc(static_cast<size_t>(count) * sizeof(gl_wchar));
    if (block == nullptr)
        set_engine_error(lc, GLS_ERR_NO_MEMORY);
    return static_cast<gl_wchar *>(block);
}

// Formats are ASCII nearly always; the first other character leaves the rest to the code set's own
// routine.
int32_t widened(locale_rec *lc, gl_wchar *dst, const char *source, int32_t size) {
    const locale_rec &own = locale_or_ascii(lc);
    int32_t count = 0;
    if (own.ctype_cat.ascii_bytes)
        for (; count < size; ++count) {
            dst[count] = static_cast<unsigned char>(source[count]);
            if (dst[count] == 0)
                return count;
            if (dst[count] >= 0x80)
                break;
        }
    if (count == size)
        return size;
    const int32_t rest = own.mbstowcs_fn(lc, dst + count, source + count, size - count);
    return rest < 0 ? rest : count + rest;
}

// An upper bound of the characters of a terminated text: its bytes.
int64_t bytes_of(locale_rec *lc, const char *source) {
    int64_t bytes = 0;
    for (const int32_t step = ctype_of(lc).mb_loc_min; !gl_ismbsterm(lc, source + bytes);)
        bytes += step;
    return bytes;
}

} // namespace

wide_copy::wide_copy(locale_rec *lc, const char *source) {
    if (source == nullptr) {
        set_engine_error(lc, GLS_ERR_NULL_ARGUMENT);
        return;
    }
    text_ = on_stack_;
    int32_t count = widened(lc, on_stack_, source, stack_format);
    if (count == stack_format) {
        const int64_t size = bytes_of(lc, source) + 1;
        text_ = size < INT_MAX ? allocated_elements(lc, size) : nullptr;
        if (text_ != nullptr)
            count = widened(lc, text_, source, static_cast<int32_t>(size));
        else
            set_engine_error(lc, GLS_ERR_NO_MEMORY);
    }
    if (count < 0 && text_ != nullptr) {
        if (text_ != on_stack_)
            _gl_ext_free(text_);
        text_ = nullptr;
    }
}

wide_copy::~wide_copy() {
    if (text_ != on_stack_)
        _gl_free_ptr(text_);
}

wide_area::wide_area(locale_rec *lc, int32_t size) {
    if (size < 1) {
        set_engine_error(lc, GLS_ERR_NO_ROOM);
        return;
    }
    const int64_t wanted = size == INT_MAX ? size : size + 1;
    elements_ = wanted <= stack_area ? on_stack_ : allocated_elements(lc, wanted);
    size_ = static_cast<int32_t>(wanted);
}

wide_area::~wide_area() {
    if (elements_ != on_stack_)
        _gl_free_ptr(elements_);
}

int32_t _gl_get_mbstring(locale_rec *lc, char *dst, int32_t size, const gl_wchar *src,
                         int32_t count) {
    if (count < 0)
        return no_result(lc, dst, size, count);
    const ctype_rec &ct = ctype_of(lc);
    const int32_t room = size - ct.mb_loc_min;
    const bool ascii = ct.ascii_bytes != 0;
    int32_t bytes = 0;
    for (int32_t i = 0; i < count; ++i) {
        if (ascii && src[i] - 1 < 0x7f && bytes < room) {
            dst[bytes++] = static_cast<char>(src[i]);
            continue;
        }
        unsigned char character[gl_char_bytes];
        const int32_t length = encode_wide(ct, character, src[i]);
        if (length == 0 || length > room - bytes)
            return no_result(lc, dst, size,
                             fail(lc, length == 0 ? GLS_ERR_BAD_CHARACTER : GLS_ERR_NO_ROOM));
        memcpy(dst + bytes, character, static_cast<size_t>(length));
        bytes += length;
    }
    if (bytes > room)
        return no_result(lc, dst, size, fail(lc, GLS_ERR_NO_ROOM));
    gl_mbsterm(lc, dst + bytes);
    return bytes;
}

int32_t no_result(locale_rec *lc, char *dst, int32_t size, int32_t result) {
    if (dst != nullptr && size >= ctype_of(lc).mb_loc_min)
        gl_mbsterm(lc, dst);
    return result;
}

int32_t no_result(gl_wchar *dst, int32_t size, int32_t result) {
    if (dst != nullptr && size > 0)
        dst[0] = 0;
    return result;
}

} // namespace kestrion
