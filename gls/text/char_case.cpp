#include <kestrion/char_case.h>

#include "gls/base/engine_error.h"
#include "gls/text/char_walk.h"
#include <kestrion/char_convert.h>

#include <bit>
#include <math.h>
#include <string.h>

using namespace kestrion;

namespace {

constexpr size_t word_bytes = sizeof(uint64_t);

// The same byte in all eight places of a word.
constexpr uint64_t each_byte(unsigned char b) { return 0x0101010101010101u * b; }

// Changes the case of the ASCII letters among eight bytes.
template <letter_case to> uint64_t ascii_word_case(uint64_t word) {
    constexpr unsigned char first = to == letter_case::upper ? 'a' : 'A';
    uint64_t low = word & each_byte(0x7f);
    uint64_t at_least_first = low + each_byte(0x80 - first);
    uint64_t above_last = low + each_byte(0x80 - first - 26);
    uint64_t letters = at_least_first & ~above_last & ~word & each_byte(0x80);
    return word ^ (letters >> 2);
}

// Bytes of a word, in the order of memory, before the first one above 0x7f.
size_t ascii_bytes(uint64_t word) {
    uint64_t high = word & each_byte(0x80);
    int zeros = std::endian::native == std::endian::little ? std::countr_zero(high)
                                                           : std::countl_zero(high);
    return static_cast<size_t>(zeros) / 8;
}

template <letter_case to> gl_wchar pair_member(const case_pair &pair) {
    return to == letter_case::upper ? pair.upper : pair.lower;
}

template <letter_case to> const case_text &pair_text(const ctype_rec &ct, uint32_t index) {
    return ct.case_texts[2 * index + (to == letter_case::upper ? 0 : 1)];
}

template <letter_case to> const uint8_t *byte_map(const locale_rec &lc) {
    return to == letter_case::upper ? lc.sb_upper : lc.sb_lower;
}

// The other case of a wide character whose step is `step`. Entry 0 of the pairs has no partners, so
// that characters with and without one go the same way.
template <letter_case to> gl_wchar partner_of(const ctype_rec &ct, multi_step step, gl_wchar wc) {
    gl_wchar partner = pair_member<to>(ct.case_pairs[step.datum]);
    return partner != 0 ? partner : wc;
}

// Characters of three bytes and more, and the rare ways: a null locale, an invalid character, a
// partner far away.
template <letter_case to>
[[gnu::noinline]] gl_wchar wide_character_by_table(locale_rec *lc, gl_wchar wc) {
    const ctype_rec &ct = ctype_of(lc);
    multi_step step = wide_step(ct, ct.case_walk, ct.case_prefixes, wc);
    if (step.next == multi_end)
        return partner_of<to>(ct, step, wc);
    set_engine_error(lc, GLS_ERR_BAD_CHARACTER);
    return wc;
}

template <letter_case to> gl_wchar wide_character(locale_rec *lc, gl_wchar wc) {
    if (lc && wc < lc->ctype_cat.shift_count) {
        const case_shift &shift = lc->ctype_cat.case_shifts[wc];
        uint32_t biased = to == letter_case::upper ? shift.to_upper : shift.to_lower;
        if (biased != 0)
            return wc + biased - case_shift_bias;
    }
    return wide_character_by_table<to>(lc, wc);
}

struct spelling {
    const char *bytes;
    int32_t length;
};

// The other case of a valid character, or the character.
template <letter_case to>
spelling other_case(const ctype_rec &ct, const decoded_char &c, const char *src) {
    const case_text &partner = pair_text<to>(ct, c.step.datum); // entry 0 is empty
    if (partner.length > 0)
        return {reinterpret_cast<const char *>(partner.bytes), partner.length};
    return {src, c.length};
}

// Writes it. Returns the bytes written.
template <letter_case to>
int32_t write_case(const ctype_rec &ct, const decoded_char &c, char *dst, const char *src) {
    spelling other = other_case<to>(ct, c, src);
    for (int32_t i = 0; i < other.length; ++i)
        dst[i] = other.bytes[i];
    return other.length;
}

int32_t read_and_written(int32_t bytes_read, int32_t written) { return bytes_read << 8 | written; }

template <letter_case to> int32_t multibyte_character(locale_rec *lc, char *dst, const char *src) {
    const ctype_rec &ct = ctype_of(lc);
    decoded_char c = decode_text(ct, ct.case_walk, src);
    if (is_char(c))
        return read_and_written(c.length, write_case<to>(ct, c, dst, src));
    set_engine_error(lc, GLS_ERR_BAD_CHARACTER);
    // A walk that broke off at the terminator has looked at it; a caller that goes on after what
    // was read must still meet it.
    int32_t length = c.length;
    while (length > ct.mb_loc_min && src[length - 1] == 0)
        --length;
    memcpy(dst, src, static_cast<size_t>(length));
    return read_and_written(length, length);
}

template <letter_case to>
int32_t limited_character(locale_rec *lc, char *dst, const char *src, int32_t limit) {
    if (limit < 1 && limit != -1) {
        set_engine_error(lc, GLS_ERR_SPECIFIER);
        return 0;
    }
    const ctype_rec &ct = ctype_of(lc);
    decoded_char c =
        limit == -1 ? decode_text(ct, ct.case_walk, src) : decode_limited(ct.case_walk, src, limit);
    if (is_char(c))
        return read_and_written(c.length, write_case<to>(ct, c, dst, src));
    set_engine_error(lc, decode_error(c));
    return 0;
}

// A text on its way from one case to the other.
struct case_run {
    const char *src;
    char *dst;
    size_t read;
    size_t written;
};

// The destination holds at least as many bytes as are left of the source, so that more can be
// stored than is converted; what follows is written again.

// Writes the other case by a store of four bytes whatever its length, without a branch by it.
template <letter_case to>
int32_t store_case(const ctype_rec &ct, const decoded_char &c, char *dst, const char *src) {
    spelling other = other_case<to>(ct, c, src);
    memcpy(dst, other.bytes, gl_char_bytes);
    return other.length;
}

// Converts the ASCII bytes at the start of the next word.
template <letter_case to> void convert_ascii_word(case_run &run) {
    uint64_t word;
    memcpy(&word, run.src + run.read, word_bytes);
    size_t count = ascii_bytes(word);
    word = ascii_word_case<to>(word);
    memcpy(run.dst + run.written, &word, word_bytes);
    run.read += count;
    run.written += count;
}

// Converts characters of a code set whose terminator is one byte until `end` bytes are read; the
// last one may go beyond. Returns false at an invalid character.
template <letter_case to> bool convert_until(const ctype_rec &ct, case_run &run, size_t end) {
    while (run.read < end) {
        const char *src = run.src + run.read;
        bool ascii = static_cast<unsigned char>(*src) < 0x80;
        if (ascii && ct.plain_ascii && end - run.read >= word_bytes) {
            convert_ascii_word<to>(run);
            continue;
        }
        decoded_char c = decode_limited(ct.case_walk, src, gl_char_bytes);
        if (!is_char(c))
            return false;
        char *dst = run.dst + run.written;
        int32_t written;
        if (end - run.read >= gl_char_bytes)
            written = store_case<to>(ct, c, dst, src);
        else
            written = write_case<to>(ct, c, dst, src);
        run.read += static_cast<size_t>(c.length);
        run.written += static_cast<size_t>(written);
    }
    return true;
}

// Converts single bytes by their map, words of nothing but ASCII by the word.
template <letter_case to>
void convert_bytes(const ctype_rec &ct, const uint8_t *map, case_run &run, size_t end) {
    const auto *src = reinterpret_cast<const unsigned char *>(run.src);
    auto *dst = reinterpret_cast<unsigned char *>(run.dst);
    size_t i = 0;
    for (; end - i >= word_bytes; i += word_bytes) {
        unsigned char bytes[word_bytes];
        uint64_t word;
        memcpy(&word, src + i, word_bytes);
        if (ct.plain_ascii && ascii_bytes(word) == word_bytes) {
            word = ascii_word_case<to>(word);
            memcpy(dst + i, &word, word_bytes);
            continue;
        }
        for (size_t k = 0; k < word_bytes; ++k)
            bytes[k] = map[src[i + k]];
        memcpy(dst + i, bytes, word_bytes);
    }
    for (; i < end; ++i)
        dst[i] = map[src[i]];
    run.read = run.written = end;
}

// The same up to the terminator for code sets with wide units.
template <letter_case to>
bool convert_wide_units(const ctype_rec &ct, case_run &run, uint32_t count, locale_rec *lc) {
    while (count != 0 && !gl_ismbsterm(lc, run.src + run.read)) {
        decoded_char c = decode_text(ct, ct.case_walk, run.src + run.read);
        if (!is_char(c))
            return false;
        run.written +=
            static_cast<size_t>(write_case<to>(ct, c, run.dst + run.written, run.src + run.read));
        run.read += static_cast<size_t>(c.length);
        count -= static_cast<uint32_t>(c.length);
    }
    return true;
}

// Converts up to `count` bytes. The count goes down character by character and ends the work when
// it comes to exactly 0; a count that falls inside a character passes 0, wraps, and the terminator
// ends the work. Callers size their destinations by that.
template <letter_case to>
bool convert_multibyte(const ctype_rec &ct, case_run &run, uint32_t count, locale_rec *lc) {
    if (ct.mb_loc_min != 1)
        return convert_wide_units<to>(ct, run, count, lc);
    size_t bytes = strnlen(run.src, count);
    if (!convert_until<to>(ct, run, bytes))
        return false;
    if (bytes < count || run.read == count)
        return true;
    return convert_until<to>(ct, run, run.read + strlen(run.src + run.read));
}

template <letter_case to>
int32_t multibyte_text(locale_rec *lc, char *dst, const char *src, uint32_t count) {
    const locale_rec &l = locale_or_ascii(lc);
    const uint8_t *map = byte_map<to>(l);
    case_run run = {.src = src, .dst = dst};
    if (map) {
        convert_bytes<to>(l.ctype_cat, map, run, strnlen(src, count));
        dst[run.written] = 0;
        return static_cast<int32_t>(run.written);
    }
    if (!convert_multibyte<to>(l.ctype_cat, run, count, lc))
        return fail(lc, GLS_ERR_BAD_CHARACTER);
    gl_mbsterm(lc, dst + run.written);
    return static_cast<int32_t>(run.written);
}

template <letter_case to> int32_t wide_text(locale_rec *lc, gl_wchar *dst, const gl_wchar *src) {
    const locale_rec &l = locale_or_ascii(lc);
    const ctype_rec &ct = l.ctype_cat;
    const uint8_t *map = byte_map<to>(l);
    for (; *src != 0; ++src, ++dst) {
        multi_step step = {0, multi_end};
        if (!map)
            step = wide_step(ct, ct.case_walk, ct.case_prefixes, *src);
        if (map ? *src > 0xff : step.next != multi_end)
            return fail(lc, GLS_ERR_BAD_CHARACTER);
        *dst = map ? map[*src] : partner_of<to>(ct, step, *src);
    }
    *dst = 0;
    return 0;
}

} // namespace

gl_wchar _gl_im_towupper(locale_rec *lc, gl_wchar wc) {
    return wide_character<letter_case::upper>(lc, wc);
}

gl_wchar _gl_im_towlower(locale_rec *lc, gl_wchar wc) {
    return wide_character<letter_case::lower>(lc, wc);
}

int32_t _gl_im_tomupper(locale_rec *lc, char *dst, const char *src) {
    return multibyte_character<letter_case::upper>(lc, dst, src);
}

int32_t _gl_im_tomlower(locale_rec *lc, char *dst, const char *src) {
    return multibyte_character<letter_case::lower>(lc, dst, src);
}

int32_t _qvt_gl_im_tomupper(locale_rec *lc, char *dst, const char *src, int32_t limit) {
    return limited_character<letter_case::upper>(lc, dst, src, limit);
}

int32_t _qvt_gl_im_tomlower(locale_rec *lc, char *dst, const char *src, int32_t limit) {
    return limited_character<letter_case::lower>(lc, dst, src, limit);
}

int32_t gl_tombsupper(locale_rec *lc, char *dst, const char *src) {
    return multibyte_text<letter_case::upper>(lc, dst, src, UINT32_MAX);
}

int32_t gl_tombslower(locale_rec *lc, char *dst, const char *src) {
    return multibyte_text<letter_case::lower>(lc, dst, src, UINT32_MAX);
}

int32_t _qvt_gl_tombsupper_len(locale_rec *lc, char *dst, const char *src, int32_t count) {
    return multibyte_text<letter_case::upper>(lc, dst, src, static_cast<uint32_t>(count));
}

int32_t _qvt_gl_tombslower_len(locale_rec *lc, char *dst, const char *src, int32_t count) {
    return multibyte_text<letter_case::lower>(lc, dst, src, static_cast<uint32_t>(count));
}

int32_t gl_towcsupper(locale_rec *lc, gl_wchar *dst, const gl_wchar *src) {
    return wide_text<letter_case::upper>(lc, dst, src);
}

int32_t gl_towcslower(locale_rec *lc, gl_wchar *dst, const gl_wchar *src) {
    return wide_text<letter_case::lower>(lc, dst, src);
}

int32_t gl_case_conv_outbuflen(locale_rec *lc, int32_t length) {
    double factor = ceil(locale_or_ascii(lc).case_expansion);
    double bytes = factor * length;
    return bytes >= INT32_MAX ? INT32_MAX : bytes <= 0 ? 0 : static_cast<int32_t>(bytes);
}
