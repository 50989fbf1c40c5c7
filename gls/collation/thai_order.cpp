#include <kestrion/thai_order.h>

#include "gls/collation/comparison.h"
#include "gls/collation/thai_key.h"

using namespace kestrion;

namespace {

enum thai_type : uint8_t { thai_other = 1, leading_vowel = 2, tone_or_mark = 3 };

constexpr unsigned first_classified = 0xD0;
constexpr int32_t longest_key = 256; // bytes of a key that are stored

// clang-format off
constexpr uint8_t rgVowType[32] = {
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, // D0
    2, 2, 2, 2, 2, 1, 1, 3, 3, 3, 3, 3, 3, 3, 3, 1, // E0
};
constexpr uint8_t rgMap2Int[32] = {
    0xD0, 0x80, 0xD1, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0xDB, 0xDC, 0xDD, 0xDE, 0xDF, // D0
    0xE0, 0xE1, 0xE2, 0xE3, 0xE4, 0xE5, 0xE6, 0x8E, 0x8F, 0x90, 0x91, 0x92, 0x93, 0x94, 0x95, 0xEF, // E0
};
// clang-format on

uint8_t type_of(unsigned char c) {
    return c >= first_classified && c < first_classified + 32 ? rgVowType[c - first_classified]
                                                              : uint8_t{thai_other};
}

uint8_t mapped(unsigned char c) { return rgMap2Int[c - first_classified]; }

// Where a key goes: what does not fit is only counted.
struct key_output {
    char *dst;
    int32_t room;
    int32_t count = 0;

    void put(unsigned byte) {
        if (count < room)
            dst[count] = static_cast<char>(byte);
        ++count;
    }
};

// Goes through a text once for each of the two parts of its key: the base text, in which a leading
// vowel follows its consonant, and the marks, each after the position in the base text where it
// stands. The position is kept in a byte, so that it comes round to 0 in a long text.
template <class Base, class Mark> void walk_key(const char *source, Base base, Mark mark) {
    unsigned position = 1;
    unsigned pending = 0;
    for (; *source != 0; ++source) {
        const unsigned char c = static_cast<unsigned char>(*source);
        const uint8_t type = type_of(c);
        if (type == tone_or_mark) {
            mark(position & 0xff);
            mark(mapped(c));
            continue;
        }
        if (type == leading_vowel && pending == 0) {
            pending = mapped(c);
            ++position;
            continue;
        }
        base(c);
        if (pending != 0)
            base(pending);
        // A second leading vowel in a row takes its own place as well as that of the first.
        position += type == leading_vowel ? 2 : 1;
        pending = 0;
    }
    if (pending != 0)
        base(pending);
}

// ---- Comparing

// A text of which every byte beyond its end reads as zero.
struct thai_text {
    const char *at;
    const char *end;

    unsigned char byte() const { return at < end ? static_cast<unsigned char>(*at) : 0; }
    bool ended() const { return at >= end; }
};

bool is_tone(unsigned char c) { return c >= 0xE7 && c <= 0xEC; }
bool is_leading(unsigned char c) { return c >= 0xE0 && c <= 0xE4; }

void skip_tones_and_vowels(thai_text &text) {
    while (is_tone(text.byte()) || is_leading(text.byte()))
        ++text.at;
}

// A text has ended where the other goes on: blanks don't count. Returns `longer` if there is more.
int32_t compare_rest(thai_text rest, int32_t so_far, int32_t longer) {
    while (rest.byte() == ' ')
        ++rest.at;
    return rest.byte() == 0 ? so_far : longer;
}

// Compares where one text has a leading vowel and the other has not: what follows the vowel counts,
// and only if that is the same the vowel itself, as `more`.
int32_t compare_after_vowel(thai_text with_vowel, unsigned char other, int32_t direction) {
    skip_tones_and_vowels(with_vowel);
    if (with_vowel.ended())
        return -direction;
    if (with_vowel.byte() == other)
        return direction;
    return direction * (with_vowel.byte() - other);
}

int32_t compare_two_vowels(thai_text a, thai_text b) {
    const int32_t vowels = a.byte() - b.byte();
    skip_tones_and_vowels(a);
    skip_tones_and_vowels(b);
    if (a.byte() == b.byte())
        return vowels;
    if (!a.ended() && !b.ended())
        return a.byte() - b.byte();
    return a.ended() ? -1 : 1;
}

int32_t bythcmpr(thai_text a, thai_text b) {
    int32_t tones = 0; // what the tones so far say, should all else be equal
    for (;;) {
        const unsigned char c = a.byte();
        const unsigned char d = b.byte();
        if (c == d) {
            if (c == 0)
                return tones;
            ++a.at;
            ++b.at;
        } else if (is_tone(c)) {
            const bool both = is_tone(d);
            if (tones == 0)
                tones = both ? c - d : 1;
            ++a.at;
            b.at += both;
        } else if (is_tone(d)) {
            if (tones == 0)
                tones = -1;
            ++b.at;
        } else if (c == 0) {
            return compare_rest(b, tones, -1);
        } else if (d == 0) {
            return compare_rest(a, tones, 1);
        } else if (is_leading(c) && is_leading(d)) {
            return compare_two_vowels(a, b);
        } else if (is_leading(c)) {
            return compare_after_vowel(a, d, 1);
        } else if (is_leading(d)) {
            return compare_after_vowel(b, c, -1);
        } else {
            return c - d;
        }
    }
}

} // namespace

namespace kestrion {

int32_t thai_strxfrm(const char *source, char *dst, int32_t size) {
    const int32_t room = dst == nullptr || size < 0 ? 0 : size < longest_key ? size : longest_key;
    key_output out = {dst, room};
    const auto put = [&out](unsigned byte) { out.put(byte); };
    const auto leave = [](unsigned) {};
    walk_key(source, put, leave);
    walk_key(source, leave, put);
    if (out.count < room)
        dst[out.count] = 0;
    return out.count;
}

} // namespace kestrion

int32_t _gl_thaismocoll(locale_rec *lc, const char *a, const char *b) {
    return _qvt_gl_thaismoncoll(lc, a, -1, b, -1);
}

int32_t _qvt_gl_thaismoncoll(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                             int32_t b_length) {
    text_range first, second;
    if (!settle_texts(lc, a, a_length, b, b_length, first, second))
        return 0;
    return bythcmpr({first.begin, first.end}, {second.begin, second.end});
}

int32_t _gl_thaismoxfrm(locale_rec *lc, char *first, const char *second, int32_t size) {
    if (lc == nullptr || first == nullptr) {
        set_engine_error(lc, GLS_ERR_NULL_ARGUMENT);
        return 0;
    }
    // The type is that of all key makers, but this one reads its first text and writes the second.
    return thai_strxfrm(first, const_cast<char *>(second), size);
}
