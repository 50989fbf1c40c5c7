#include <kestrion/conversion_file.h>

#include "base/ascii_class.h"
#include "gls/base/engine_error.h"
#include "gls/conversion/conversion_object.h"
#include <kestrion/conversion_routines.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/gls_log.h>
#include <kestrion/multi.h>
#include <kestrion/multi_file.h>
#include <kestrion/readers.h>

#include <float.h>
#include <initializer_list>
#include <limits.h>
#include <math.h>
#include <stdlib.h>
#include <string.h>

using namespace kestrion;

namespace {

constexpr int head_line_size = cvo_line_limit + 2; // the line feed and the terminator

// A head line with its line end; false for none, or a line that has no end within the limit.
bool read_head_line(FILE *file, char (&line)[head_line_size]) {
    return _gl_ext_fgets(line, sizeof line, file) != nullptr && strchr(line, '\n') != nullptr;
}

int32_t read_head(cv_rec *cv, FILE *file) {
    char line[head_line_size];
    if (!read_head_line(file, line))
        return fail(cv, GLS_ERR_FILE);
    if (strcmp(line, cvo_file_type) != 0) {
        gl_message("Invalid CVO file. Wrong FILE_TYPE.");
        return fail(cv, GLS_ERR_FILE);
    }
    if (!read_head_line(file, line))
        return fail(cv, GLS_ERR_FILE);
    if (strcmp(line, cvo_version) != 0) {
        gl_message("Invalid CVO file. Wrong Version.");
        return fail(cv, GLS_ERR_FILE);
    }
    if (!read_head_line(file, line))
        return fail(cv, GLS_ERR_FILE);
    const char *equals = strchr(line, '=');
    if (equals == nullptr)
        return fail(cv, GLS_ERR_FILE);
    for (long count = strtol(equals + 1, nullptr, 10); count > cvo_head_lines; --count)
        if (!read_head_line(file, line))
            return fail(cv, GLS_ERR_FILE);
    return 0;
}

// A field of 32 bits; what lies outside is pulled to the nearest end and fails the field's own
// test.
int32_t read_number(FILE *file) {
    const int64_t number = _gl_get_int(file);
    return static_cast<int32_t>(number < INT32_MIN   ? INT32_MIN
                                : number > INT32_MAX ? INT32_MAX
                                                     : number);
}

bool read_sequence(FILE *file, int32_t &length, unsigned char (&bytes)[cv_sequence_size]) {
    length = static_cast<int32_t>(_gl_get_hex_digit(file));
    if (length > cv_sequence_size)
        return false;
    for (int32_t i = 0; i < length; ++i)
        bytes[i] = static_cast<unsigned char>(_gl_get_hex_byte(file));
    return true;
}

int32_t read_sequences(cv_rec *cv, FILE *file) {
    if (read_sequence(file, cv->shift_in_len, cv->shift_in) &&
        read_sequence(file, cv->shift_out_len, cv->shift_out) &&
        read_sequence(file, cv->source_shift_in_len, cv->source_shift_in) &&
        read_sequence(file, cv->source_shift_out_len, cv->source_shift_out))
        return 0;
    return fail(cv, GLS_ERR_FILE);
}

// The lines of numbers between the head and the tables. A missing line end leaves the error word
// alone.
int32_t read_parameters(cv_rec *cv, FILE *file) {
    cv->source_stateful = read_number(file);
    cv->target_stateful = read_number(file);
    if (!_gl_skip_nl(file))
        return -1;
    if (read_sequences(cv, file) != 0 || !_gl_skip_nl(file))
        return -1;
    for (int32_t *field : {&cv->target_min_len, &cv->target_max_len, &cv->unused1, &cv->unused2,
                           &cv->source_min_len, &cv->source_max_len})
        *field = read_number(file);
    if (!_gl_skip_nl(file))
        return -1;
    cv->no_sb_table = read_number(file);
    if (!_gl_skip_nl(file))
        return -1;
    const double expansion = _gl_get_dbl(file);
    if (!_gl_skip_nl(file))
        return -1;
    if (!(fabs(expansion) <= FLT_MAX))
        return fail(cv, GLS_ERR_FILE);
    cv->expansion = static_cast<float>(expansion);
    if (cv->target_max_len < 1 || cv->target_max_len > gl_char_bytes) {
        gl_message("cv->target_max_len should be in range 1..4"); // the error word stays as it is
        return -1;
    }
    return 0;
}

int32_t read_table(cv_rec *cv, multi_arr *&table, FILE *file) {
    const unsigned char unmapped[1 + gl_char_bytes] = {};
    table = _gl_create_multi(static_cast<uint32_t>(cv->target_max_len) + 1, 0, unmapped);
    if (table == nullptr)
        return fail(cv, GLS_ERR_NO_MEMORY);
    if (_gl_fscanf_multi(file, table, gl_char_bytes, conv_reader) != 0)
        return fail(cv, _gl_multi_err(table));
    return 0;
}

// One digit of a datum: a decimal digit as such, anything else taken as a letter.
int datum_digit(int c) { return is_ascii_digit(c) ? c - '0' : ascii_lower(c) - 'a' + 10; }

// A pair of digits modulo 256, or -1 at the end of the file.
int datum_byte(FILE *stream) {
    const int first = _gl_ext_getc(stream);
    const int second = first == EOF ? EOF : _gl_ext_getc(stream);
    if (second == EOF)
        return -1;
    return (16 * datum_digit(first) + datum_digit(second)) & 0xff;
}

} // namespace

int32_t read_cv_file(cv_rec *cv, FILE *file) {
    if (file == nullptr)
        return fail(cv, GLS_ERR_FILE);
    if (read_head(cv, file) != 0 || read_parameters(cv, file) != 0 ||
        read_table(cv, cv->table_normal, file) != 0)
        return -1;
    if (cv->source_stateful != 0 && read_table(cv, cv->table_shifted, file) != 0)
        return -1;
    cv->reserved = 0;
    _gl_ext_fclose(file);
    set_iconv_fps(cv);
    gl_message("CVO file loaded successfully.");
    return 0;
}

int conv_reader(FILE *stream, void *datum, uint32_t data_size) {
    auto *bytes = static_cast<unsigned char *>(datum);
    memset(bytes, 0, data_size);
    const int control = datum_byte(stream);
    if (control < 0)
        return -1;
    const auto length = static_cast<uint32_t>(control & CV_LENGTH);
    if (length >= data_size)
        return -1;
    bytes[0] = static_cast<unsigned char>(control);
    for (uint32_t i = 1; i <= length; ++i) {
        const int byte = datum_byte(stream);
        if (byte < 0)
            return -1;
        bytes[i] = static_cast<unsigned char>(byte);
    }
    return 0;
}

void conv_writer(FILE *stream, const void *datum) {
    constexpr char digits[] = "0123456789abcdef";
    const auto *bytes = static_cast<const unsigned char *>(datum);
    const int length = bytes[0] & CV_LENGTH;
    for (int i = 0; i <= length; ++i) {
        putc(digits[bytes[i] >> 4], stream);
        putc(digits[bytes[i] & 15], stream);
    }
}
