#include "base/print_as_format.h"

#include "base/ascii_class.h"

#include <algorithm>
#include <charconv>
#include <string.h>

namespace kestrion {
namespace {

// Collects output and hands it on in blocks, so that a message reaches standard error whole.
struct sink {
    FILE *stream;       // target, or null for a buffer
    char *buffer;       // target buffer, or the block for the stream
    size_t size;        // bytes that the buffer takes
    size_t used = 0;    // bytes waiting in the buffer
    size_t written = 0; // bytes put altogether

    void flush() {
        fwrite(buffer, 1, used, stream);
        used = 0;
    }

    void put(const char *bytes, size_t count) {
        written += count;
        while (count > 0) {
            if (used == size) {
                if (stream == nullptr)
                    return;
                flush();
            }
            const size_t taken = std::min(count, size - used);
            memcpy(buffer + used, bytes, taken);
            used += taken;
            bytes += taken;
            count -= taken;
        }
    }

    void put(const char *bytes, const char *end) { put(bytes, static_cast<size_t>(end - bytes)); }

    void pad(char byte, size_t count) {
        for (; count > 0; --count)
            put(&byte, 1);
    }
};

struct directive {
    const char *end; // after the conversion character
    char conversion; // s d u x c, or 0 for one that is not carried out
    bool left;       // '-'
    bool plus;       // '+'
    bool blank;      // ' '
    bool alternate;  // '#'
    bool zero;       // '0'
    bool has_precision;
    size_t width;
    size_t precision;
};

// Reads digits at *at; returns format_width_limit for a number that reaches it.
size_t read_number(const char **at) {
    size_t number = 0;
    for (; is_ascii_digit(**at); ++*at)
        number =
            std::min<size_t>(number * 10 + static_cast<size_t>(**at - '0'), format_width_limit);
    return number;
}

void read_flags(const char **at, directive *d) {
    for (;; ++*at) {
        switch (**at) {
        case '-':
            d->left = true;
            break;
        case '+':
            d->plus = true;
            break;
        case ' ':
            d->blank = true;
            break;
        case '#':
            d->alternate = true;
            break;
        case '0':
            d->zero = true;
            break;
        default:
            return;
        }
    }
}

// Reads the directive that the percent sign at `percent` begins. One that is not carried out ends
// where the reading stopped, so that its remainder prints as ordinary text.
directive read_directive(const char *percent) {
    directive d = {};
    const char *at = percent + 1;
    read_flags(&at, &d);
    d.width = read_number(&at);
    if (*at == '.') {
        ++at;
        d.has_precision = true;
        d.precision = read_number(&at);
    }
    const bool is_long = *at == 'l' && at[1] == 'd';
    d.end = at;
    if (d.width >= format_width_limit || d.precision >= format_width_limit)
        return d;
    if (is_long || (*at != '\0' && strchr("sduxc", *at) != nullptr)) {
        d.conversion = is_long ? 'd' : *at;
        d.end = at + (is_long ? 2 : 1);
    }
    return d;
}

// A prefix (sign or "0x") and a body; padding goes before, between or after them.
void put_padded(sink &out, const directive &d, const char *prefix, size_t zeros, const char *body,
                size_t length) {
    const size_t taken = strlen(prefix) + zeros + length;
    const size_t padding = d.width > taken ? d.width - taken : 0;
    const bool zero = d.zero && !d.left && !d.has_precision && d.conversion != 's';
    if (!d.left && !zero)
        out.pad(' ', padding);
    out.put(prefix, strlen(prefix));
    out.pad('0', zeros + (zero ? padding : 0));
    out.put(body, length);
    if (d.left)
        out.pad(' ', padding);
}

void put_text(sink &out, const directive &d, const char *text) {
    if (text == nullptr)
        text = "";
    const size_t length = d.has_precision ? strnlen(text, d.precision) : strlen(text);
    put_padded(out, d, "", 0, text, length);
}

// The bits that a negative number shows under %u and %x: those of an int where they hold it.
uint64_t unsigned_bits(int64_t number) {
    if (number >= INT32_MIN && number < 0)
        return static_cast<uint32_t>(number);
    return static_cast<uint64_t>(number);
}

const char *number_prefix(const directive &d, int64_t number) {
    if (d.conversion == 'x')
        return d.alternate && number != 0 ? "0x" : "";
    if (d.conversion == 'u')
        return "";
    if (number < 0)
        return "-";
    return d.plus ? "+" : d.blank ? " " : "";
}

void put_number(sink &out, const directive &d, int64_t number) {
    uint64_t magnitude = unsigned_bits(number);
    if (d.conversion == 'd' && number < 0)
        magnitude = 0 - static_cast<uint64_t>(number);
    char digits[24];
    const char *end =
        std::to_chars(digits, digits + sizeof digits, magnitude, d.conversion == 'x' ? 16 : 10).ptr;
    size_t length = static_cast<size_t>(end - digits);
    if (magnitude == 0 && d.has_precision && d.precision == 0)
        length = 0;
    const size_t zeros = d.precision > length ? d.precision - length : 0;
    put_padded(out, d, number_prefix(d, number), zeros, digits, length);
}

void put_character(sink &out, const directive &d, int64_t number) {
    const char byte = static_cast<char>(static_cast<unsigned char>(number));
    directive plain = d;
    plain.zero = false;
    // A text has no room for a zero byte.
    put_padded(out, plain, "", 0, &byte, byte == '\0' ? 0 : 1);
}

void put_number_as_text(sink &out, const directive &d, int64_t number) {
    char digits[24];
    *std::to_chars(digits, digits + sizeof digits - 1, number).ptr = '\0';
    put_text(out, d, digits);
}

void put_argument(sink &out, const directive &d, const format_arg &arg) {
    if (arg.kind == FORMAT_TEXT)
        put_text(out, d, arg.text);
    else if (d.conversion == 's')
        put_number_as_text(out, d, arg.number);
    else if (d.conversion == 'c')
        put_character(out, d, arg.number);
    else
        put_number(out, d, arg.number);
}

bool suits(const directive &d, const format_arg &arg) {
    return arg.kind == FORMAT_NUMBER || d.conversion == 's';
}

void expand(sink &out, const char *format, const format_arg *args, size_t count) {
    if (format == nullptr)
        return;
    size_t next = 0;
    while (const char *percent = strchr(format, '%')) {
        out.put(format, percent);
        if (percent[1] == '%') {
            out.put("%", 1);
            format = percent + 2;
            continue;
        }
        const directive d = read_directive(percent);
        if (d.conversion != 0 && next < count && suits(d, args[next]))
            put_argument(out, d, args[next++]);
        else
            out.put(percent, d.end);
        format = d.end;
    }
    out.put(format, strlen(format));
}

} // namespace

void print_as_format(FILE *stream, const char *format, const format_arg *args, size_t count) {
    char block[1024];
    sink out = {.stream = stream, .buffer = block, .size = sizeof block};
    expand(out, format, args, count);
    out.flush();
}

size_t print_as_format_into(char *buffer, size_t size, const char *format, const format_arg *args,
                            size_t count) {
    sink out = {.stream = nullptr, .buffer = buffer, .size = size > 0 ? size - 1 : 0};
    expand(out, format, args, count);
    if (size > 0)
        buffer[out.used] = '\0';
    return out.written;
}

void print_as_own_format(FILE *stream, const char *text) {
    const format_arg self = text_arg(text);
    print_as_format(stream, text, &self, 1);
}

} // namespace kestrion
