#include <kestrion/decimal_format.h>

#include <kestrion/decimal_text.h>
#include <kestrion/gentcb.h>
#include <kestrion/gls_env.h>
#include <kestrion/gls_errors.h>
#include <kestrion/number_format.h>
#include <kestrion/number_scan.h>
#include <kestrion/startup.h>

#include <string.h>

namespace {

constexpr size_t format_size = 256; // of a copy, with a length put in

int refuse(int32_t word) {
    set_glserror(word);
    return -1;
}

// The first "%" that does not stand for itself, or null.
const char *find_directive(const char *format) {
    while ((format = strchr(format, '%')) != nullptr && format[1] == '%')
        format += 2;
    return format;
}

// The conversion character of a directive.
const char *conversion_of(const char *directive) {
    const char *at = directive + 1;
    at += strspn(at, " #'+-");
    at += strspn(at, "0123456789");
    if (*at == '.')
        at += 1 + strspn(at + 1, "0123456789");
    return at;
}

// Scans a double: a float conversion stores one only with the length "l".
bool scan_double(const char *text, const char *format, double *value) {
    const size_t length = strlen(format);
    const auto before = static_cast<size_t>(conversion_of(find_directive(format)) - format);
    char with_length[format_size];
    memcpy(with_length, format, before);
    with_length[before] = 'l';
    memcpy(with_length + before + 1, format + before, length - before + 1);
    return gl_mbspnum(qvt_get_gl_locale_thread(), text, with_length, value) == 1;
}

bool convert_float(dec_value *dec, const char *text, const char *format) {
    double value;
    return scan_double(text, format, &value) && deccvdbl(dec, value) == 0;
}

bool convert_integer(dec_value *dec, const char *text, const char *format) {
    int32_t value;
    return gl_mbspnum(qvt_get_gl_locale_thread(), text, format, &value) == 1 &&
           deccvint(value, dec) == 0;
}

bool format_plainly(char *buffer, int size, const dec_value *dec) {
    int length = size - 1;
    if (dectoasc(dec, buffer, length, -1) < 0)
        return false;
    while (length > 0 && buffer[length - 1] == ' ')
        --length;
    buffer[length] = '\0';
    return true;
}

bool format_float(char *buffer, int size, const dec_value *dec, const char *format) {
    double value;
    return dectodbl(dec, &value) == 0 &&
           gl_mbsfnum(qvt_get_gl_locale_thread(), buffer, size, format, value) >= 1;
}

bool format_integer(char *buffer, int size, const dec_value *dec, const char *format) {
    int32_t value;
    return dectoint(dec, &value) == 0 &&
           gl_mbsfnum(qvt_get_gl_locale_thread(), buffer, size, format, value) >= 1;
}

} // namespace

int get_num_fmt_type(const char *format) {
    const char *directive = find_directive(format);
    if (directive == nullptr)
        return number_format_other;
    const char *conversion = conversion_of(directive);
    if (*conversion == '\0')
        return number_format_other;
    if (find_directive(conversion + 1) != nullptr)
        return number_format_repeated;
    return strchr("EGefg", *conversion) != nullptr      ? number_format_float
           : strchr("Xbdioqux", *conversion) != nullptr ? number_format_integer
                                                        : number_format_other;
}

int qvt_gl_convert_number(dec_value *dec, const char *text, const char *format) {
    if (chkglsinit() != 0)
        return -1;
    bool converted;
    if (format == nullptr) {
        const size_t length = strnlen(text, INT32_MAX);
        converted = deccvasc(text, static_cast<int>(length), dec) == 0;
    } else if (const int kind = get_num_fmt_type(format);
               strnlen(format, format_size) >= format_size - 1 || kind <= number_format_other) {
        return refuse(GLS_ERR_FORMAT);
    } else {
        converted = kind == number_format_float ? convert_float(dec, text, format)
                                                : convert_integer(dec, text, format);
    }
    return converted ? 0 : refuse(GLS_ERR_ARGUMENT);
}

int qvt_gl_format_number(char *buffer, int size, const dec_value *dec, const char *format) {
    if (size < 1)
        return -1;
    bool formatted;
    if (format == nullptr)
        formatted = format_plainly(buffer, size, dec);
    else if (decverify(dec) != 0 || dec->sign == dec_null_sign)
        formatted = false;
    else if (const int kind = get_num_fmt_type(format); kind == number_format_float)
        formatted = format_float(buffer, size, dec, format);
    else
        formatted = kind == number_format_integer && format_integer(buffer, size, dec, format);
    return formatted ? 0 : refuse(GLS_ERR_ARGUMENT);
}
