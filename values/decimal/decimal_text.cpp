// Decimal to text: fixed notation where it fits, with fewer decimals where that helps, exponent
// notation where nothing else does.

#include <kestrion/decimal_text.h>

#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>
#include <kestrion/startup.h>

#include "values/decimal/conventions_in_use.h"
#include "values/decimal/digit_text.h"
#include "values/decimal/operand.h"
#include "values/decimal/text_range.h"

#include <algorithm>

using namespace kestrion;

constinit int32_t dbfltprec = 16;
constinit int32_t dbsmfltprec = -1;

namespace {

constexpr int least_fixed_position = -3; // more zeros after the point ask for exponent notation
constexpr int widest_fraction = 260;     // decimals past those that fit change nothing
constexpr int exponent_size = 5;         // "e-123"

int fill_with_stars(char *buffer, int length) {
    memset(buffer, '*', static_cast<size_t>(length));
    return -1;
}

char *append(char *out, const char *text, size_t length) {
    if (length == 1)
        *out = *text;
    else
        memcpy(out, text, length);
    return out + length;
}

// Digits of the block, which has room after them, into a buffer that is filled up afterwards: more
// may be copied than is meant, so that the sizes that occur need no choice of a way.
char *append_digits(char *out, const char *buffer_end, const char *digits, int64_t count) {
    if (count <= 8 && buffer_end - out >= 8)
        memcpy(out, digits, 8);
    else if (count <= 32 && buffer_end - out >= 32)
        memcpy(out, digits, 32);
    else
        memcpy(out, digits, static_cast<size_t>(count));
    return out + count;
}

char *append_zeros(char *out, int64_t count) {
    if (count > 0)
        memset(out, '0', static_cast<size_t>(count));
    return out + count;
}

// One text being written: what dectoasc and dbltoasc share, and where they differ.
struct decimal_layout {
    const dec_value *dec;
    gentcb *block;
    const lconv_rec *conventions;
    const char *sign; // what a negative value begins with in fixed notation
    bool cuts_zeros;  // of a value below 1
    size_t sign_length = length_of(sign);
    size_t radix_length = length_of(conventions->radix);

    made_digits made = {};
    int position = 0; // of the point in them
    int negative = 0;

    int64_t needed(int64_t right) const {
        return static_cast<int64_t>((negative != 0 ? sign_length : 0) +
                                    (right > 0 ? radix_length : 0)) +
               1 + right + (position > 0 ? position - 1 : 0);
    }
    int write(char *buffer, int length, int64_t right);
    char *write_fixed(char *out, const char *buffer_end, int64_t right);
    char *write_fraction(char *out, const char *buffer_end, int64_t right);
};

// Lowers the count of decimals until the text fits, or takes exponent notation.
int decimal_layout::write(char *buffer, int length, int64_t right) {
    for (;;) {
        if (make_digits(dec, right, &position, &negative, deccvt_text, block, &made) !=
            digit_result::made)
            return -1;
        const int64_t excess = needed(right) - length;
        if (excess <= 0) {
            char *end = write_fixed(buffer, buffer + length, right);
            memset(end, ' ', static_cast<size_t>(buffer + length - end));
            return 0;
        }
        if (position < least_fixed_position || position <= -right)
            break;
        if (right >= excess)
            right -= excess;
        else if (right != 0 && right + static_cast<int64_t>(radix_length) >= excess)
            right = 0; // without the radix it fits
        else
            break;
    }
    memset(buffer, ' ', static_cast<size_t>(length));
    if (dectoexp_int(dec, buffer, length, position, negative, block, conventions) != 0)
        return fill_with_stars(buffer, length);
    return 0;
}

// Returns the end of the text. No negative zero is shown: its "0" takes the place of the sign.
char *decimal_layout::write_fixed(char *out, const char *buffer_end, int64_t right) {
    const bool below_one = position <= 0;
    const int64_t shown = std::clamp<int64_t>(position + right, 0, made.count);
    const bool zero =
        below_one && std::all_of(made.text, made.text + shown, [](char c) { return c == '0'; });
    if (negative != 0 && !zero)
        out = append(out, sign, sign_length);
    if (below_one)
        *out++ = '0';
    else
        out = append_digits(out, buffer_end, made.text, position);
    return right > 0 ? write_fraction(out, buffer_end, right) : out;
}

char *decimal_layout::write_fraction(char *out, const char *buffer_end, int64_t right) {
    const bool below_one = position <= 0;
    if (below_one && cuts_zeros) {
        while (made.count > 0 && made.text[made.count - 1] == '0')
            --made.count;
        if (made.count == 0) { // "0.00": the block has room for both
            made.text[0] = made.text[1] = '0';
            made.count = 2;
        }
    }
    const int64_t taken = below_one ? 0 : position;
    const int64_t zeros = std::clamp<int64_t>(-int64_t{position}, 0, right);
    out = append(out, conventions->radix, radix_length);
    out = append_zeros(out, zeros);
    return append_digits(out, buffer_end, made.text + taken,
                         std::min(right - zeros, made.count - taken));
}

// The decimals that a value has, at least 1.
int64_t own_decimals(const dec_value *dec) {
    if (dec->ndigits == 0)
        return 1;
    const int unused = dec->digits[dec->ndigits - 1] % 10 == 0;
    return std::max(2 * (dec->ndigits - dec->exponent) - unused, 1);
}

int64_t decimals_to_write(const dec_value *dec, int length, int right) {
    const int64_t wanted = right < 0 ? own_decimals(dec) : right;
    return std::min(wanted, int64_t{length} + widest_fraction);
}

// What comes before the layout: the result when there is nothing to lay out, else 1.
int begin_text(const dec_value *dec, char *buffer, int length) {
    if (length < 0 || decverify(dec) != 0)
        return -1;
    if (dec->sign == dec_null_sign) {
        memset(buffer, ' ', static_cast<size_t>(length));
        return 0;
    }
    const int failure = chkglsinit();
    return failure != 0 ? failure : 1;
}

// "e", "-" if below 0, two digits or three.
char *write_exponent(char *out, int exponent) {
    const int size = exponent < 0 ? -exponent : exponent;
    *out++ = 'e';
    if (exponent < 0)
        *out++ = '-';
    if (size >= 100)
        *out++ = static_cast<char>('0' + size / 100);
    *out++ = static_cast<char>('0' + size / 10 % 10);
    *out++ = static_cast<char>('0' + size % 10);
    return out;
}

} // namespace

int dectoasc_int(const dec_value *dec, char *buffer, int length, int right, gentcb *block,
                 const lconv_rec *conventions) {
    if (const int answer = begin_text(dec, buffer, length); answer != 1)
        return answer;
    if (block == nullptr)
        return -1;
    if (conventions == nullptr)
        conventions = neutral_conventions();
    decimal_layout layout = {dec, block, conventions, "-", false};
    return layout.write(buffer, length, decimals_to_write(dec, length, right));
}

int dectoasc(const dec_value *dec, char *buffer, int length, int right) {
    return dectoasc_int(dec, buffer, length, right, CheckGenInit(), local_conventions());
}

int dectoasc_net(const dec_value *dec, char *buffer, int length, int right) {
    return dectoasc_int(dec, buffer, length, right, CheckGenInit(), neutral_conventions());
}

int dbltoasc(const dec_value *dec, char *buffer, int length, int right) {
    if (const int answer = begin_text(dec, buffer, length); answer != 1)
        return answer;
    gentcb *block = CheckGenInit();
    if (block == nullptr)
        return fill_with_stars(buffer, length);
    const lconv_rec *conventions = local_conventions();
    decimal_layout layout = {dec, block, conventions, conventions->negative_sign, true};
    return layout.write(buffer, length, decimals_to_write(dec, length, right));
}

int dectoexp_int(const dec_value *dec, char *buffer, int length, int position, int negative,
                 gentcb *block, const lconv_rec *conventions) {
    if (conventions == nullptr)
        conventions = neutral_conventions();
    const char *sign = negative != 0 ? conventions->negative_sign : "";
    const size_t sign_length = length_of(sign), radix_length = length_of(conventions->radix);
    const int64_t before = int64_t{position} - 1;
    // The radix, "e", two digits, and what the exponent may need besides.
    const int64_t overhead = static_cast<int64_t>(sign_length + radix_length) + 3 + (before < 0) +
                             (before <= -100 || before >= 100);
    if (overhead >= length || block == nullptr || decverify(dec) != 0 || dec->sign == dec_null_sign)
        return 1;
    made_digits made;
    int own_negative;
    if (make_digits(dec, length - overhead, &position, &own_negative, deccvt_significant, block,
                    &made) != digit_result::made)
        return 1;
    while (made.count > 1 && made.text[made.count - 1] == '0')
        --made.count;

    char exponent[exponent_size];
    const auto exponent_length =
        static_cast<size_t>(write_exponent(exponent, position - 1) - exponent);
    const auto fraction = static_cast<size_t>(made.count - 1);
    if (sign_length + 1 + (fraction > 0 ? radix_length + fraction : 0) + exponent_length >
        static_cast<size_t>(length)) // the position given was not the value's
        return 1;
    buffer = append(buffer, sign, sign_length);
    *buffer++ = made.text[0];
    if (fraction > 0) {
        buffer = append(buffer, conventions->radix, radix_length);
        buffer = append(buffer, made.text + 1, fraction);
    }
    append(buffer, exponent, exponent_length);
    return 0;
}
