#include "values/decimal/digit_text.h"

#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>

#include "values/decimal/packed.h"

#include <algorithm>
#include <stdlib.h>

using namespace kestrion;

namespace {

constexpr int64_t usual_digits = 80;
constexpr int64_t spare_bytes = 34; // the digits before they are cut, a carry and the terminator

// The two characters of each of four digit bytes, the first in the most significant byte. Below
// 100, x / 10 is x * 103 >> 10.
constexpr uint64_t characters_of(uint32_t four) {
    uint64_t x = (uint64_t{four} | uint64_t{four} << 16) & UINT64_C(0x0000FFFF0000FFFF);
    x = (x | x << 8) & UINT64_C(0x00FF00FF00FF00FF);
    const uint64_t tens = x * 103 >> 10 & UINT64_C(0x000F000F000F000F);
    return (tens << 8 | (x - tens * 10)) + UINT64_C(0x3030303030303030);
}

// All 32 characters of a word: how many there are to write is not asked, which would be guessed
// wrong often.
void write_characters(digit_word digits, char *text) {
    for (int shift = 96; shift >= 0; shift -= 32, text += 8)
        store_big_endian(characters_of(static_cast<uint32_t>(digits >> shift)),
                         reinterpret_cast<unsigned char *>(text));
}

// Makes the block's text hold `count` digits. What it held is kept.
bool has_room(gentcb *block, int64_t count) {
    const int64_t wanted = std::max(count, usual_digits) + spare_bytes;
    if (block->digit_capacity >= wanted)
        return true;
    char *grown =
        wanted > INT32_MAX
            ? nullptr
            : static_cast<char *>(realloc(block->digit_text, static_cast<size_t>(wanted)));
    if (grown == nullptr) {
        free(block->digit_text);
        block->digit_text = nullptr;
        block->digit_capacity = 0;
        return false;
    }
    block->digit_text = grown;
    block->digit_capacity = static_cast<int32_t>(wanted);
    return true;
}

// Adds 1 to the last of `count` digits. Returns false when all were 9 and are now 0.
bool increment(char *text, int64_t count) {
    while (count > 0 && text[count - 1] == '9')
        text[--count] = '0';
    if (count == 0)
        return false;
    ++text[count - 1];
    return true;
}

// Cuts the text after `count` digits and rounds it half up. A carry out of the first digit moves
// the point, and makes the text longer by a digit unless significant digits were asked for.
int64_t cut_digits(char *text, int64_t count, int *position, int mode) {
    if (text[count] < '5' || increment(text, count))
        return count;
    ++*position;
    if (mode != deccvt_significant)
        text[count++] = '0';
    if (count > 0)
        text[0] = '1';
    return count;
}

// The digits that a mode asks for, below 0 when there are none; the wider rule of the mode that
// serves dectoasc takes in the zeros right of the point.
int64_t wanted_digits(int64_t ndigit, int position, int mode) {
    if (mode == deccvt_significant)
        return std::max<int64_t>(ndigit, 0);
    if (mode == deccvt_text && ndigit + position < 0)
        return ndigit - position;
    return ndigit + position;
}

} // namespace

digit_result kestrion::make_digits(const dec_value *dec, int64_t ndigit, int *position,
                                   int *negative, int mode, gentcb *block, made_digits *made) {
    if (!has_room(block, ndigit))
        return digit_result::no_memory;
    *made = {block->digit_text, std::max<int64_t>(ndigit, 0)};
    if (dec->sign == dec_null_sign) { // blanks, and the out values stay
        memset(made->text, ' ', static_cast<size_t>(made->count));
        if (mode == deccvt_text && made->count == 0)
            made->text[made->count++] = '0';
        return digit_result::made;
    }
    *negative = dec->sign == dec_negative;
    *position = dec->ndigits == 0 ? 0 : dec->exponent * 2;
    const int skipped = dec->ndigits != 0 && dec->digits[0] < 10;
    *position -= skipped;
    const int64_t wanted = wanted_digits(ndigit, *position, mode);
    if (wanted < 0)
        return digit_result::count_negative;
    if (!has_room(block, wanted))
        return digit_result::no_larger_block;

    write_characters(load_word(dec->digits) & leading_bytes[static_cast<size_t>(dec->ndigits)],
                     block->digit_text);
    *made = {block->digit_text + skipped, wanted};
    // A last digit of 0 is not counted: whether it is there to be cut would be guessed wrong often.
    int64_t present = dec->ndigits * 2 - skipped;
    present -= present > 0 && made->text[present - 1] == '0';
    if (present > wanted)
        made->count = cut_digits(made->text, wanted, position, mode);
    else if (present < wanted)
        memset(made->text + present, '0', static_cast<size_t>(wanted - present));
    if (mode == deccvt_text && made->count == 0)
        made->text[made->count++] = '0';
    return digit_result::made;
}

char *dec1to2(const unsigned char *digits, int count, char *text) {
    for (int i = 0; i < count; ++i) {
        *text++ = static_cast<char>('0' + digits[i] / 10);
        *text++ = static_cast<char>('0' + digits[i] % 10);
    }
    *text = '\0';
    return text;
}

char *deccvt_int(const dec_value *dec, int ndigit, int *position, int *negative, int mode,
                 gentcb *block) {
    made_digits made;
    if (block == nullptr || decverify(dec) != 0 ||
        make_digits(dec, ndigit, position, negative, mode, block, &made) != digit_result::made)
        return nullptr;
    made.text[made.count] = '\0';
    return made.text;
}

char *deccvt(const dec_value *dec, int ndigit, int *position, int *negative, int mode) {
    return deccvt_int(dec, ndigit, position, negative, mode, CheckGenInit());
}

char *dececvt(const dec_value *dec, int ndigit, int *position, int *negative) {
    return deccvt(dec, ndigit, position, negative, deccvt_significant);
}

char *decfcvt(const dec_value *dec, int ndigit, int *position, int *negative) {
    return deccvt(dec, ndigit, position, negative, deccvt_fraction);
}

int qvt_deccvt(const dec_value *dec, int ndigit, int *position, int *negative, int mode,
               char *buffer, int size) {
    gentcb *block = CheckGenInit();
    if (block == nullptr)
        return err_no_block;
    if (decverify(dec) != 0)
        return -1;
    made_digits made;
    switch (make_digits(dec, ndigit, position, negative, mode, block, &made)) {
    case digit_result::no_memory:
        return err_result_size;
    case digit_result::no_larger_block: // as ever: no digits and no error
    case digit_result::count_negative:
        made = {buffer, 0};
        break;
    case digit_result::made:
        break;
    }
    if (size <= made.count)
        return err_result_size;
    memmove(buffer, made.text, static_cast<size_t>(made.count));
    buffer[made.count] = '\0';
    return 0;
}

int qvt_dececvt(const dec_value *dec, int ndigit, int *position, int *negative, char *buffer,
                int size) {
    return qvt_deccvt(dec, ndigit, position, negative, deccvt_significant, buffer, size);
}

int qvt_decfcvt(const dec_value *dec, int ndigit, int *position, int *negative, char *buffer,
                int size) {
    return qvt_deccvt(dec, ndigit, position, negative, deccvt_fraction, buffer, size);
}
