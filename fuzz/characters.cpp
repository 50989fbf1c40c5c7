// Any bytes as text of several code sets: what the operations on characters say of it must agree, and
// none may look beyond the bytes that it is given.
//
// The first byte of the input chooses the locale, the second one shortens a limit.

#include <kestrion/categories.h>
#include <kestrion/char_case.h>
#include <kestrion/char_class.h>
#include <kestrion/char_convert.h>
#include <kestrion/char_length.h>
#include <kestrion/char_width.h>

#include <iterator>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <vector>

namespace {

constexpr const char *objects[] = {nullptr,         "one_byte.lco",   "two_byte.lco",
                                   "four_byte.lco", "wide_units.lco", "analysed.lco"};

locale_rec *locale_of(size_t choice) {
    static locale_rec *loaded[std::size(objects)];
    choice %= std::size(objects);
    if (objects[choice] != nullptr && loaded[choice] == nullptr &&
        gl_lc_load(&loaded[choice], objects[choice], nullptr, FUZZ_OBJECTS) != 0)
        abort();
    return loaded[choice];
}

void expect(bool holds) {
    if (!holds)
        abort();
}

// One character by its bytes and by its wide form; text[0..limit) is all that may be read.
void check_character(locale_rec *lc, const char *text, int32_t limit) {
    gl_wchar wide = 0, same = 0;
    uint32_t mask = 0;
    const int32_t length = _qvt_gl_full_mblen(lc, text, limit);
    const int32_t counted = gl_full_mblen(lc, text, limit);
    expect(_qvt_gl_full_mbtowc(lc, &wide, text, limit) == counted);
    expect(_qvt_gl_full_mbdescribe(lc, &same, text, &mask, 0xffff, limit) == counted);
    expect(_qvt_gl_im_ismctype(lc, text, limit, 0xffff) == mask);
    if (length < 0)
        return;
    char bytes[gl_char_bytes];
    expect(counted == (wide == 0 ? 0 : length) && same == wide);
    expect(gl_full_wctomb(lc, bytes, wide) == length);
    expect(memcmp(bytes, text, static_cast<size_t>(length)) == 0);
    expect(_gl_im_iswctype(lc, wide, 0xffff) == mask);
    for (const auto by_bytes : {_qvt_gl_im_tomupper, _qvt_gl_im_tomlower}) {
        const auto by_value = by_bytes == _qvt_gl_im_tomupper ? _gl_im_towupper : _gl_im_towlower;
        const gl_wchar other = by_value(lc, wide);
        const int32_t lengths = by_bytes(lc, bytes, text, limit);
        if (lengths == 0) { // not among the characters of the case table
            expect(other == wide);
            continue;
        }
        expect(lengths >> 8 == length && gl_wclen(lc, other) == (lengths & 0xff));
        expect(gl_full_mbtowc(lc, &same, bytes, lengths & 0xff) >= 0 && same == other);
    }
}

// A terminated text forward and backward.
void check_steps(locale_rec *lc, const char *text) {
    mbl_state walk;
    _qvt_gl_getmbl(lc, &walk);
    const char *at = text;
    int32_t characters = 0;
    for (const char *next; (next = gl_full_mbsnext(lc, at)) != nullptr; at = next, ++characters) {
        expect(_qvt_gl_fast_mblen(&walk, at) == next - at);
        expect(gl_full_mbsprev(lc, text, next) == at);
    }
    const int32_t bytes = gl_mbsbytes(lc, text);
    expect(bytes == 0 || lc == nullptr || lc->is_single_byte != 0 ||
           (bytes == at - text + gl_mb_loc_min(lc) && _gl_im_mbslen(lc, text) == characters));
    gl_mbswidth(lc, text, characters);
    gl_mbspwidth(lc, text, at);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 2 || size > 200)
        return 0;
    locale_rec *const lc = locale_of(data[0]);
    const std::vector<char> text(data + 2, data + size); // ends where its block does
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t i = 0; i < length; ++i)
        check_character(lc, &text[static_cast<size_t>(i)], 1 + data[1] % (length - i));
    const int32_t kept = _qvt_gl_mbsntsbytes(lc, text.data(), length);
    expect(kept >= 0 && kept <= length);
    std::vector<char> terminated = text;
    terminated.resize(text.size() + 7); // a character that is cut off, and a wide terminator
    check_steps(lc, terminated.data());
    return 0;
}
