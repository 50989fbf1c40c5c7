#include <kestrion/case_shift.h>

#include "gls/base/engine_error.h"
#include <kestrion/char_case.h>
#include <kestrion/char_class.h>
#include <kestrion/char_desc.h>
#include <kestrion/char_length.h>
#include <kestrion/character_tables.h>
#include <kestrion/ctype_masks.h>
#include <kestrion/error_numbers.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/gls_env.h>
#include <kestrion/gls_errors.h>
#include <kestrion/startup.h>
#include <kestrion/strings.h>

#include <algorithm>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

namespace {

// Bytes that one character took in the source and takes in the destination; read is 0 for a
// character that is invalid or cut off.
struct step {
    int32_t read;
    int32_t written;
};

constexpr step one_byte = {1, 1};

struct source_rest {
    const char *at;
    int32_t left; // bytes to the end, as far as the engine counts

    unsigned char byte() const { return static_cast<unsigned char>(*at); }
};

// The tables of a code set in which every character is a byte; null in any other. Without a locale
// the process's own.
const unsigned char *byte_table(const locale_rec *lc, int operation) {
    if (lc == nullptr)
        return operation == CASE_UPPER ? _ix2upmap : _ix2lowmap;
    return operation == CASE_UPPER ? lc->sb_upper : lc->sb_lower;
}

step shift_character(locale_rec *lc, int operation, source_rest source, char *out) {
    if (const unsigned char *table = byte_table(lc, operation)) {
        *out = static_cast<char>(table[source.byte()]);
        return one_byte;
    }
    const int32_t counts = operation == CASE_UPPER
                               ? _qvt_gl_im_tomupper(lc, out, source.at, source.left)
                               : _qvt_gl_im_tomlower(lc, out, source.at, source.left);
    return {counts >> 8, counts & 0xFF};
}

step copy_character(locale_rec *lc, source_rest source, char *out) {
    if (byte_table(lc, CASE_UPPER) != nullptr) {
        *out = *source.at;
        return one_byte;
    }
    const int32_t length = std::max(_qvt_gl_full_mblen(lc, source.at, source.left), 0);
    memcpy(out, source.at, static_cast<size_t>(length));
    return {length, length};
}

bool is_letter(locale_rec *lc, source_rest source) {
    if (lc == nullptr)
        return (_ixctype[source.byte() + 1] & (CHARACTER_UPPER | CHARACTER_LOWER)) != 0;
    if (lc->sb_class != nullptr)
        return (lc->sb_class[source.byte()] & CT_ALPHA) != 0;
    return _qvt_gl_im_ismctype(lc, source.at, source.left, CT_ALPHA) != 0;
}

// Every character of the source in one case.
struct whole_text {
    int operation;

    step operator()(locale_rec *lc, source_rest source, char *out) const {
        return shift_character(lc, operation, source, out);
    }
};

// Words with an initial capital.
struct words {
    bool inside = false; // after a letter

    step operator()(locale_rec *lc, source_rest source, char *out) {
        if (!is_letter(lc, source)) {
            inside = false;
            return copy_character(lc, source, out);
        }
        const int operation = inside ? CASE_LOWER : CASE_UPPER;
        inside = true;
        return shift_character(lc, operation, source, out);
    }
};

// Takes the source through `shift`, character by character, until it is used up or the next one
// would pass the destination's end.
template <typename Shift>
int shift_text(Shift shift, const char *source, char *destination, ptrdiff_t length) {
    locale_rec *lc = CheckGlsEnv()->cur_lc;
    if (lc != nullptr)
        kestrion::set_engine_error(lc, GLS_OK);
    ptrdiff_t read = 0;
    ptrdiff_t written = 0;
    while (read < length && written < length) {
        const int32_t left = static_cast<int32_t>(std::min<ptrdiff_t>(length - read, INT32_MAX));
        char out[gl_char_bytes];
        const step taken = shift(lc, {source + read, left}, out);
        if (taken.read == 0)
            return err_bad_character;
        if (taken.written > length - written)
            break;
        memcpy(destination + written, out, static_cast<size_t>(taken.written));
        read += taken.read;
        written += taken.written;
    }
    memset(destination + written, 0, static_cast<size_t>(length - written));
    return 0;
}

// Shifts by way of a work block, for a locale in which a written character might overtake the
// source.
void shift_through_block(int operation, char *text, ptrdiff_t length, ptrdiff_t block_size) {
    char *block = static_cast<char *>(malloc(static_cast<size_t>(block_size)));
    if (block == nullptr)
        return;
    if (sqlcaseshift(operation, text, block, length) == 0)
        memcpy(text, block, static_cast<size_t>(length));
    free(block);
}

} // namespace

int sqlcaseshift(int operation, const char *source, char *destination, ptrdiff_t length) {
    return length < 1 ? 0 : shift_text(whole_text{operation}, source, destination, length);
}

int sqlinitcap(const char *source, char *destination, ptrdiff_t length) {
    return length < 1 ? 0 : shift_text(words{}, source, destination, length);
}

void rcaseshift(int operation, char *text) {
    if (text == nullptr || chkglsinit() != 0)
        return;
    locale_rec *lc = CheckGlsEnv()->cur_lc;
    const ptrdiff_t length = stleng(text);
    if (gl_case_conv_outbuflen(lc, 1) == 1) {
        sqlcaseshift(operation, text, text, length);
        return;
    }
    const int32_t counted = static_cast<int32_t>(std::min<ptrdiff_t>(length, INT32_MAX));
    const ptrdiff_t grown = gl_case_conv_outbuflen(lc, counted);
    shift_through_block(operation, text, length, std::max(grown, length) + 1);
}

void rupshift(char *text) { rcaseshift(CASE_UPPER, text); }
void rdownshift(char *text) { rcaseshift(CASE_LOWER, text); }
