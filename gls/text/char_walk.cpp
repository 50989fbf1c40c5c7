#include "gls/text/char_walk.h"

#include "base/ascii_class.h"
#include <kestrion/char_convert.h>
#include <kestrion/ctype_masks.h>

namespace kestrion {

decoded_char decode_wide_unit_text(const multi_step *walk, const char *text, int32_t min_len) {
    decoded_char c = decode_limited(walk, text, min_len);
    if (c.step.next < multi_first_state)
        return c;
    bool terminator = true;
    for (int32_t i = 0; i < min_len; ++i)
        terminator = terminator && text[c.length + i] == 0;
    if (terminator) {
        c.step.next = multi_stop;
        return c;
    }
    return decode_limited(walk, text, gl_char_bytes);
}

multi_step walk_wide(const multi_step *walk, gl_wchar wc, int32_t min_len) {
    multi_step step = {0, 0}; // the root
    for (int32_t left = wide_length(wc, min_len); left > 0; --left) {
        step = next_step(walk, step, static_cast<unsigned char>(wc >> (8 * (left - 1))));
        if (step.next < multi_first_state && left > 1)
            return {0, multi_stop};
    }
    return step;
}

namespace {

constexpr uint16_t ascii_class(int byte) {
    constexpr uint32_t letter = CT_ALPHA | CT_GRAPH | CT_PRINT;
    if (is_ascii_upper(byte))
        return static_cast<uint16_t>(letter | CT_UPPER | (byte <= 'F' ? CT_XDIGIT : 0));
    if (is_ascii_lower(byte))
        return static_cast<uint16_t>(letter | CT_LOWER | (byte <= 'f' ? CT_XDIGIT : 0));
    if (is_ascii_digit(byte))
        return CT_DIGIT | CT_XDIGIT | CT_GRAPH | CT_PRINT;
    if (is_ascii_graphic(byte))
        return CT_PUNCT | CT_GRAPH | CT_PRINT;
    if (byte == ' ')
        return CT_SPACE | CT_PRINT | CT_BLANK;
    if (byte == '\t')
        return CT_SPACE | CT_CNTRL | CT_BLANK;
    if (byte >= '\n' && byte <= '\r')
        return CT_SPACE | CT_CNTRL;
    return byte < ' ' || byte == 0x7f ? CT_CNTRL : 0;
}

struct ascii_tables {
    uint8_t upper[256];
    uint8_t lower[256];
    uint16_t classes[256];
    multi_step class_walk[256];
    multi_step case_walk[256];
    case_pair pairs[27]; // A..Z after the unused first one
    case_text texts[2 * 27];
    uint16_t prefixes[1]; // single bytes have none: the root
};

constexpr ascii_tables make_ascii() {
    ascii_tables t = {};
    for (int i = 0; i < 256; ++i) {
        const int letter = is_ascii_letter(i) ? ascii_upper(i) - 'A' + 1 : 0;
        t.upper[i] = static_cast<uint8_t>(ascii_upper(i));
        t.lower[i] = static_cast<uint8_t>(ascii_lower(i));
        t.classes[i] = ascii_class(i);
        t.class_walk[i] = {ascii_class(i), multi_end};
        t.case_walk[i] = {static_cast<uint16_t>(letter), multi_end};
    }
    for (unsigned i = 1; i <= 26; ++i) {
        unsigned char upper = static_cast<unsigned char>('A' + i - 1);
        unsigned char lower = static_cast<unsigned char>('a' + i - 1);
        t.pairs[i] = {upper, lower};
        t.texts[2 * i] = {{upper}, 1};
        t.texts[2 * i + 1] = {{lower}, 1};
    }
    return t;
}

// Not const: the record's pointers are those of any other record. Nothing writes here.
constinit ascii_tables ascii = make_ascii();

} // namespace

constinit const locale_rec ascii_locale = {
    .mbstowcs_fn = _gl_is_mbstowcs,
    .mbfstowcfs_fn = _qvt_gl_is_mbfstowcfs,
    .case_expansion = 1.0,
    .max_expansion = 1.0,
    .sb_upper = ascii.upper,
    .sb_lower = ascii.lower,
    .sb_class = ascii.classes,
    .is_single_byte = 1,
    .ctype_cat = {.case_pairs = ascii.pairs,
                  .case_pair_count = 26,
                  .mb_loc_max = 1,
                  .mb_loc_min = 1,
                  .ascii_bytes = 1,
                  .plain_ascii = 1,
                  .class_walk = ascii.class_walk,
                  .byte_walk = ascii.class_walk,
                  .case_walk = ascii.case_walk,
                  .prefix_count = 1,
                  .class_prefixes = ascii.prefixes,
                  .case_prefixes = ascii.prefixes,
                  .case_texts = ascii.texts},
};

constinit const multi_step no_characters[256] = {};

} // namespace kestrion
