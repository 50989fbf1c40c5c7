#include <kestrion/sort_key.h>

#include "gls/base/arrays.h"
#include "gls/collation/comparison.h"
#include "gls/collation/thai_key.h"
#include "gls/collation/weight_walk.h"
#include <kestrion/char_convert.h>

#include <iterator>

using namespace kestrion;

namespace {

constexpr char level_separator = 1;

// ---- Weights as digits. The digits 00 and 01 remain free for the terminator and the separator.

constexpr uint32_t first_digit = 2;
constexpr uint32_t powers[] = {1, 254, 64516, 16387064, 4162314256}; // of the base 254
constexpr int32_t most_digits = static_cast<int32_t>(std::size(powers));

// How many digits a weight has depends on the largest one that can occur, never on its own value.
int32_t digits_for(uint32_t limit) {
    int32_t digits = 1;
    while (digits < most_digits && limit > powers[digits] - 1)
        ++digits;
    return digits;
}

// The largest element that a key is prepared for.
uint32_t element_limit(const locale_rec *lc) {
    constexpr uint32_t limits[] = {0, 0xFF, 0xFFFF, 0xFFFFFF, 0xFFFFFFFF};
    const int32_t bytes = lc->ctype_cat.mb_loc_max;
    return bytes >= 0 && bytes <= gl_char_bytes ? limits[bytes] : 0;
}

// Writes a weight as `digits` digits, highest first. The elements 0 and 1 are below the first
// weight: they wrap to the greatest numbers, and what is too great for the highest digit wraps in
// its byte.
template <int32_t digits> void write_digits(uint32_t weight, char *out) {
    uint32_t value = weight - first_digit;
    for (int32_t i = digits - 1; i > 0; --i) {
        *out++ = static_cast<char>(value / powers[i] + first_digit);
        value %= powers[i];
    }
    *out = static_cast<char>(value + first_digit);
}

using digit_writer = void (*)(uint32_t, char *);
constexpr digit_writer digit_writers[] = {write_digits<1>, write_digits<2>, write_digits<3>,
                                          write_digits<4>, write_digits<5>};

// ---- Keys

// A key on its way: bytes that do not fit are only counted.
struct key_output {
    char *dst;
    int64_t size;
    int64_t count = 0;

    // Takes `length` bytes that `write` makes.
    template <class Write> void add(int32_t length, Write write) {
        if (size - count >= length) {
            write(dst + count);
        } else {
            char piece[most_digits] = {};
            write(piece);
            for (int32_t i = 0; i < length && count + i < size; ++i)
                dst[count + i] = piece[i];
        }
        count += length;
    }
};

// Writes the weights of a level, each of `digits` digits.
template <int32_t digits>
void write_level(const collate_rec &r, int32_t level, unit_range text, int32_t element_digits,
                 key_output &key) {
    coll_state state = init_coll_state(r, level, text);
    gl_wchar element;
    while (const uint16_t weight = next_weight(state, element)) {
        key.add(digits,
                [weight](char *out) { write_digits<digits>(weight & coll_value_bits, out); });
        if (weight & coll_tie_on_char)
            key.add(element_digits, [element, element_digits](char *out) {
                digit_writers[element_digits - 1](element, out);
            });
    }
}

using level_writer = void (*)(const collate_rec &, int32_t, unit_range, int32_t, key_output &);
constexpr level_writer level_writers[] = {write_level<1>, write_level<2>, write_level<3>,
                                          write_level<4>, write_level<5>};

int32_t write_key(const locale_rec *lc, unit_range text, char *dst, int32_t size) {
    const collate_rec &r = lc->collate_cat;
    const int32_t element_digits = digits_for(element_limit(lc));
    const level_writer write = level_writers[digits_for(r.max_weight) - 1];
    key_output key = {dst, size < 0 ? 0 : size};
    for (int32_t level = 0; level < r.level_count; ++level) {
        if (level > 0)
            key.add(1, [](char *out) { *out = level_separator; });
        write(r, level, text, element_digits, key);
    }
    if (key.count < key.size)
        dst[key.count] = 0;
    return key.count > INT32_MAX ? INT32_MAX : static_cast<int32_t>(key.count);
}

// ---- Locales without weights

int32_t empty_key(char *dst, int32_t size) {
    if (size > 0)
        dst[0] = 0;
    return 0;
}

// The key of a locale that orders by codes is the text in bytes.
int32_t code_key(locale_rec *lc, char *dst, const gl_wchar *src, int32_t size) {
    int32_t bytes = 0;
    for (const gl_wchar *at = src; *at != 0; ++at) {
        const int32_t length = gl_wclen(lc, *at);
        if (length < 0)
            return -1;
        bytes += length;
    }
    if (size < 1)
        return bytes;
    const int32_t written = lc->is_single_byte ? _gl_is_wcstombs(lc, dst, src, size)
                                               : gl_full_wcstombs(lc, dst, src, size);
    return written < 0 ? -1 : bytes;
}

int32_t thai_key(locale_rec *lc, char *dst, const gl_wchar *src, int32_t size) {
    constexpr int32_t stack_size = 512;
    char stack[stack_size];
    const int32_t bytes = gl_wcsbytes(lc, src);
    char *text = bytes < stack_size
                     ? stack
                     : static_cast<char *>(_gl_ext_malloc(static_cast<size_t>(bytes)));
    if (text == nullptr)
        return fail(lc, GLS_ERR_NO_MEMORY);
    const int32_t room = bytes < stack_size ? stack_size : bytes;
    const bool spelled = gl_full_wcstombs(lc, text, src, room) >= 0;
    const int32_t length = spelled ? thai_strxfrm(text, dst, size) : -1;
    if (text != stack)
        _gl_free_ptr(text);
    return length;
}

// The key of a text that does not go by weights, by way of wide characters.
int32_t key_by_wide(locale_rec *lc, char *dst, const char *src, int32_t count, int32_t size) {
    gl_wchar stack[stack_units + 1];
    gl_wchar *wide = count <= stack_units
                         ? stack
                         : static_cast<gl_wchar *>(
                               _gl_ext_malloc((static_cast<size_t>(count) + 1) * sizeof(gl_wchar)));
    if (wide == nullptr)
        return fail(lc, GLS_ERR_NO_MEMORY);
    // One more for the zero element.
    const int32_t made = lc->mbstowcs_fn(lc, wide, src, count + 1);
    const int32_t length = made < 0 ? -1 : gl_wcsxfrm(lc, dst, wide, size);
    if (wide != stack)
        _gl_free_ptr(wide);
    return length;
}

bool goes_by_weights(const locale_rec *lc) {
    return !lc->code_set_order && lc->collate_cat.coll_method != COLL_THAI_SMO;
}

} // namespace

int32_t gl_wcsxfrm(locale_rec *lc, char *dst, const gl_wchar *src, int32_t size) {
    if (!all_given(lc, src, src))
        return 0;
    if (lc->code_set_order)
        return code_key(lc, dst, src, size);
    if (lc->collate_cat.coll_method == COLL_THAI_SMO)
        return thai_key(lc, dst, src, size);
    unit_list text;
    if (lc->collate_cat.level_count > 0 && !list_wide_units(lc, src, gl_wcslen(lc, src), text))
        return -1;
    return write_key(lc, text.range(), dst, size);
}

int32_t gl_full_mbsxfrm(locale_rec *lc, char *dst, const char *src, int32_t size) {
    if (!all_given(lc, src, src))
        return 0;
    const char *end = end_of_text(lc, src);
    if (end == nullptr)
        return -1;
    if (src == end)
        return empty_key(dst, size);
    if (!goes_by_weights(lc) || lc->collate_cat.level_count == 0) {
        const int32_t count =
            lc->is_single_byte ? static_cast<int32_t>(end - src) : _gl_im_mbslen(lc, src);
        return count < 0 ? -1 : key_by_wide(lc, dst, src, count, size);
    }
    unit_list text;
    return list_text_units(lc, src, end, text) ? write_key(lc, text.range(), dst, size) : -1;
}

int32_t _glu_mbsxfrm(locale_rec *, char *dst, const char *, int32_t size) {
    return empty_key(dst, size);
}
