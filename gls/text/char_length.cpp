#include <kestrion/char_length.h>

#include "gls/base/engine_error.h"
#include "gls/text/char_walk.h"
#include <kestrion/char_convert.h>
#include <kestrion/ctype_masks.h>

#include <limits.h>
#include <string.h>

using namespace kestrion;

namespace {

// Decodes the first character for the length operations. Returns false with the error word set.
bool decode_for_length(locale_rec *lc, const char *s, int32_t limit, decoded_char &c) {
    if (limit < 1)
        return refuse(lc, GLS_ERR_SPECIFIER);
    c = decode_limited(ctype_of(lc).class_walk, s, limit);
    if (is_char(c))
        return true;
    return refuse(lc, decode_error(c));
}

// Walks terminated text to its zero character. Returns false at an invalid character, else the
// bytes and characters before the zero.
bool measure_text(locale_rec *lc, const char *s, int32_t &bytes, int32_t &characters) {
    const ctype_rec &ct = ctype_of(lc);
    bytes = characters = 0;
    for (;;) {
        decoded_char c = decode_text(ct, ct.class_walk, s + bytes);
        if (!is_char(c))
            return refuse(lc, GLS_ERR_BAD_CHARACTER);
        if (c.wide == 0)
            return true;
        bytes += c.length;
        ++characters;
    }
}

// What the common way leaves over: the zero character, single bytes above ASCII, characters of four
// bytes, code sets with wide units, invalid ones.
[[gnu::noinline]] int32_t rare_mblen(const mbl_state *state, const char *s) {
    const ctype_rec &ct = ctype_of(state->lc);
    decoded_char c = decode_text(ct, ct.class_walk, s);
    if (is_char(c))
        return c.wide == 0 ? 0 : c.length;
    // A character still open at its fourth byte has the length 1; no table that loads holds one.
    bool open = ct.mb_loc_min == 1 && c.step.next != multi_stop;
    return open ? 1 : fail(state->lc, GLS_ERR_BAD_CHARACTER);
}

} // namespace

int32_t gl_full_mblen(locale_rec *lc, const char *s, int32_t limit) {
    decoded_char c;
    if (s == nullptr)
        return 0;
    if (!decode_for_length(lc, s, limit, c))
        return -1;
    return c.wide == 0 ? 0 : c.length;
}

int32_t _qvt_gl_full_mblen(locale_rec *lc, const char *s, int32_t limit) {
    decoded_char c;
    if (s == nullptr)
        return 0;
    return decode_for_length(lc, s, limit, c) ? c.length : -1;
}

int32_t _qvt_gl_getmbl(locale_rec *lc, mbl_state *state) {
    const locale_rec &l = locale_or_ascii(lc);
    const ctype_rec &ct = l.ctype_cat;
    *state = {.lc = lc,
              .root = ct.class_table != nullptr ? ct.class_table->root : nullptr,
              .plug_in = l.glu_in_use[GL_CAT_CTYPE - gl_first_category],
              .walk = ct.byte_walk,
              .ascii_bytes = ct.ascii_bytes};
    return state->plug_in;
}

// A processor mispredicts where text turns from ASCII to other characters. Testing the byte itself
// finds that out a load earlier than its step, and the alignment keeps the way of ASCII, call to
// return, in one line of instructions.
[[gnu::aligned(64)]] int32_t _qvt_gl_fast_mblen(const mbl_state *state, const char *s) {
    const auto *bytes = reinterpret_cast<const unsigned char *>(s);
    if (is_ascii_above_zero(bytes[0]) && state->ascii_bytes) [[likely]]
        return 1;
    const multi_step *walk = state->walk;
    multi_step step = walk[bytes[0]];
    if (step.next >= multi_first_state) [[likely]] {
        step = next_step(walk, step, bytes[1]);
        if (step.next == multi_end) [[likely]]
            return 2;
        if (step.next != multi_stop && next_step(walk, step, bytes[2]).next == multi_end) [[likely]]
            return 3;
    }
    return rare_mblen(state, s);
}

int32_t _gl_im_mbslen(locale_rec *lc, const char *s) {
    int32_t bytes, characters;
    if (s == nullptr)
        return 0;
    return measure_text(lc, s, bytes, characters) ? characters : -1;
}

int32_t _qvt_gl_im_mbfslen(locale_rec *lc, const char *s, int32_t length) {
    int32_t min_len = ctype_of(lc).mb_loc_min;
    if (length < 0) {
        length = gl_mbsbytes(lc, s) - min_len;
        if (length < 0)
            return -1;
    }
    int32_t characters = 0;
    for (int32_t position = 0; position < length; ++characters) {
        decoded_char c = decode_limited(ctype_of(lc).class_walk, s + position, length - position);
        if (!is_char(c))
            return fail(lc, GLS_ERR_BAD_CHARACTER);
        position += c.length;
    }
    return characters;
}

int32_t gl_mbsbytes(locale_rec *lc, const char *s) {
    int32_t bytes, characters;
    if (s == nullptr)
        return 0;
    const locale_rec &l = locale_or_ascii(lc);
    if (l.is_single_byte)
        return static_cast<int32_t>(strlen(s)) + l.ctype_cat.mb_loc_min;
    return measure_text(lc, s, bytes, characters) ? bytes + l.ctype_cat.mb_loc_min : 0;
}

int32_t gl_mb_loc_max(locale_rec *lc) { return ctype_of(lc).mb_loc_max; }

int32_t gl_mb_loc_min(locale_rec *lc) { return ctype_of(lc).mb_loc_min; }

const char *gl_full_mbsnext(locale_rec *lc, const char *s) {
    if (s == nullptr)
        return fail_with_null(lc, GLS_ERR_NULL_ARGUMENT);
    const ctype_rec &ct = ctype_of(lc);
    decoded_char c = decode_text(ct, ct.class_walk, s);
    if (!is_char(c))
        return fail_with_null(lc, GLS_ERR_BAD_CHARACTER);
    return c.wide == 0 ? nullptr : s + c.length;
}

const char *gl_full_mbsprev(locale_rec *lc, const char *start, const char *s) {
    const char *previous = nullptr;
    for (const char *at = start; at != nullptr && at < s; at = gl_full_mbsnext(lc, at))
        previous = at;
    return previous;
}

int32_t gl_full_fgetmb(locale_rec *lc, char *buffer, FILE *file) {
    const multi_step *walk = ctype_of(lc).class_walk;
    multi_step step = {0, multi_stop};
    int32_t length = 0;
    do {
        int byte = _gl_ext_fgetc(file);
        if (byte < 0 && _gl_ext_ferror(file))
            return fail(lc, GLS_ERR_READ);
        if (byte < 0)
            return fail(lc, length == 0 ? GLS_ERR_END_OF_FILE : GLS_ERR_BAD_CHARACTER);
        size_t state = length == 0 ? 0 : step.next;
        step = walk[state << 8 | static_cast<unsigned char>(byte)];
        buffer[length++] = static_cast<char>(byte);
    } while (step.next >= multi_first_state && length < gl_char_bytes);
    return step.next == multi_end ? length : fail(lc, GLS_ERR_BAD_CHARACTER);
}

int32_t _qvt_gl_mbsntsbytes(locale_rec *lc, const char *text, int32_t length) {
    const multi_step *walk = ctype_of(lc).class_walk;
    int32_t kept = 0;
    for (int32_t position = 0; position < length;) {
        decoded_char c = decode_limited(walk, text + position, length - position);
        if (!is_char(c))
            break;
        position += c.length;
        if (!(c.step.datum & CT_BLANK))
            kept = position;
    }
    return kept;
}
