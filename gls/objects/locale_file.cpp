#include <kestrion/locale_file.h>

#include "gls/base/engine_error.h"
#include "gls/naming/category_words.h"
#include "gls/objects/category_data.h"
#include "gls/objects/locale_object.h"
#include <kestrion/categories.h>
#include <kestrion/char_length.h>
#include <kestrion/code_set_registry.h>
#include <kestrion/gls_log.h>
#include <kestrion/multi.h>
#include <kestrion/multi_file.h>
#include <kestrion/readers.h>

#include <stdlib.h>
#include <string.h>

using namespace kestrion;

namespace {

constexpr size_t line_size = lco_line_limit + 2; // the line feed and the terminator

// Finds the number after the "=" of the head's third line.
bool head_line_count(const char *line, int64_t &count) {
    const char *number = strchr(line, '=');
    if (number == nullptr)
        return false;
    char *end;
    count = strtoll(number + 1, &end, 10);
    return end != number + 1 && *end == '\n';
}

bool copy_code_set_line(const char *line, char *cs_name) {
    size_t length = strlen(line) - 1;
    if (length < 1 || length > lco_cs_name_limit)
        return false;
    memcpy(cs_name, line, length);
    cs_name[length] = 0;
    return true;
}

// Reads the lines of the head. Returns 0, or the error.
int32_t read_head_lines(FILE *file, char *cs_name) {
    char line[line_size];
    if (!read_line(file, line, sizeof line) || strcmp(line, lco_file_type) != 0 ||
        !read_line(file, line, sizeof line))
        return GLS_ERR_MALFORMED;
    if (strcmp(line, lco_version) != 0)
        return GLS_ERR_OBJECT_VERSION;
    int64_t count;
    if (!read_line(file, line, sizeof line) || !head_line_count(line, count))
        return GLS_ERR_MALFORMED;
    for (; count > lco_head_lines; --count)
        if (!read_line(file, line, sizeof line))
            return GLS_ERR_MALFORMED;
    return read_line(file, line, sizeof line) && copy_code_set_line(line, cs_name)
               ? 0
               : GLS_ERR_MALFORMED;
}

// Reads on to the end of the marker. Lines of data may be longer than a piece; a marker only counts
// at the beginning of a line.
bool find_marker(FILE *file, const char *marker) {
    char piece[line_size];
    bool line_begins = true;
    for (;;) {
        memset(piece, 1, sizeof piece);
        if (_gl_ext_fgets(piece, sizeof piece, file) == nullptr)
            return false;
        if (line_begins && strcmp(piece, marker) == 0)
            return true;
        // A line may hold zero bytes: the last one is the terminator.
        const auto *end = static_cast<const char *>(memrchr(piece, 0, sizeof piece));
        line_begins = end > piece && end[-1] == '\n';
    }
}

// Whether two code-set names mean the same; names that are both unknown do.
bool same_code_set(locale_rec *lc, const char *a, const char *b) {
    return strcmp(a, b) == 0 ||
           gl_cs_name2cs_num(lc, a, nullptr) == gl_cs_name2cs_num(lc, b, nullptr);
}

// Compares the code set of a category with that of the first other one that has any.
bool code_set_fits(locale_rec *lc, int32_t slot) {
    for (int32_t other = 0; other < gl_category_count; ++other)
        if (other != slot && lc->cs_names[other][0] != 0)
            return same_code_set(lc, lc->cs_names[other], lc->cs_names[slot]);
    return true;
}

// One row a category: how its section is read and made ready, and what the log calls it. A section
// without a word for the log needs no making ready.
struct section_row {
    int32_t (*read)(locale_rec *, FILE *);
    int32_t (*init)(locale_rec *);
    const char *read_failure;
    const char *init_failure;
};

constexpr section_row sections[gl_category_count] = {
    {read_ctype, nullptr, nullptr, nullptr},
    {read_collate, nullptr, nullptr, nullptr},
    {read_numeric, init_numeric_info, "Failed to read numeric information\n",
     "Failed to initialize numeric information\n"},
    {read_monetary, init_monetary_info, "Failed to read monetary information\n",
     "Failed to initialize monetary information\n"},
    {read_time, init_time_info, "Failed to read time information\n",
     "Failed to initialize time information\n"},
    {read_messages, init_message_info, "Failed to read messages information\n",
     "Failed to initialize messages information\n"},
};

bool log_failure(const char *text) {
    if (text != nullptr)
        gl_message(text);
    return false;
}

bool read_and_init(locale_rec *lc, int32_t slot, FILE *file) {
    int32_t error;
    if (!read_file_header(file, lc->cs_names[slot], &error))
        return refuse(lc, error);
    if (!code_set_fits(lc, slot))
        return refuse(lc, GLS_ERR_OTHER_CODE_SET);
    if (!find_marker(file, category_markers[slot]))
        return refuse(lc, GLS_ERR_MALFORMED);
    const section_row &section = sections[slot];
    if (section.read(lc, file) != 0)
        return log_failure(section.read_failure);
    return !section.init || section.init(lc) == 0 || log_failure(section.init_failure);
}

} // namespace

namespace kestrion {

constinit char no_text[gl_char_bytes] = {};
constinit gl_wchar no_wide_text[1] = {};

bool read_line(FILE *file, char *line, size_t size) {
    if (_gl_ext_fgets(line, static_cast<int>(size), file) == nullptr)
        return false;
    size_t length = strlen(line);
    return length > 0 && line[length - 1] == '\n';
}

bool read_line_end(locale_rec *lc, FILE *file) {
    return _gl_skip_nl(file) == 1 || refuse(lc, GLS_ERR_MALFORMED);
}

bool read_number(locale_rec *lc, FILE *file, int64_t low, int64_t high, int64_t &out) {
    out = _gl_get_int(file);
    return (out >= low && out <= high) || refuse(lc, GLS_ERR_MALFORMED);
}

bool read_number_line(locale_rec *lc, FILE *file, int64_t low, int64_t high, int32_t &out) {
    int64_t number;
    if (!read_number(lc, file, low, high, number) || !read_line_end(lc, file))
        return false;
    out = static_cast<int32_t>(number);
    return true;
}

bool make_empty_table(locale_rec *lc, multi_arr *&table) {
    uint16_t default_datum = 0;
    table = _gl_create_multi(sizeof default_datum, 0, &default_datum);
    return table != nullptr || refuse(lc, GLS_ERR_NO_MEMORY);
}

bool read_table(locale_rec *lc, FILE *file, multi_arr *&table) {
    _gl_free_multi(table);
    if (!make_empty_table(lc, table))
        return false;
    if (_gl_fscanf_multi(file, table, gl_char_bytes, ub2_reader) == 0)
        return true;
    return refuse(lc, _gl_multi_err(table));
}

bool read_text(locale_rec *lc, FILE *file, char *&text) {
    free_text(text);
    char *read = nullptr;
    if (str_readallc(lc, file, &read) != 0)
        return false;
    text = read;
    return true;
}

bool widen_text(locale_rec *lc, const char *text, gl_wchar *&wide) {
    free_wide(wide);
    int32_t bytes = gl_mbsbytes(lc, text);
    gl_wchar *made;
    if (bytes < 1 || !make_array(lc, made, static_cast<size_t>(bytes)))
        return false;
    wide = made;
    return lc->mbfstowcfs_fn(lc, wide, text, -1, bytes) >= 0;
}

void free_text(char *&text) {
    if (text != no_text)
        _gl_free_ptr(text);
    text = no_text;
}

void free_wide(gl_wchar *&wide) {
    if (wide != no_wide_text)
        _gl_free_ptr(wide);
    wide = no_wide_text;
}

} // namespace kestrion

int32_t read_file_header(FILE *file, char *cs_name, int32_t *error) {
    int32_t found = read_head_lines(file, cs_name);
    if (found == 0)
        return 1;
    *error = found;
    return 0;
}

int32_t read_one_category(locale_rec *lc, int32_t category, FILE *file) {
    if (!is_single_category(category))
        return reader_result(refuse(lc, GLS_ERR_ARGUMENT));
    if (read_and_init(lc, category - gl_first_category, file))
        return 0;
    // Nothing half read stays: lookups rely on what the readers have checked.
    int32_t word = *_gl_ext_errno(lc);
    gl_free_category(lc, category);
    gl_make_null_category(lc, category);
    set_engine_error(lc, word);
    return 1;
}

int32_t str_readallc(locale_rec *lc, FILE *file, char **out) {
    int64_t length;
    if (!read_number(lc, file, 0, lco_text_limit, length))
        return 1;
    _gl_skip_space_if_needed(file);
    char *text = nullptr;
    size_t room = 0;
    size_t wanted = static_cast<size_t>(length);
    for (size_t i = 0; i < wanted + text_tail; ++i) {
        if (!make_room(lc, text, i, room)) {
            _gl_free_ptr(text);
            return 1;
        }
        text[i] = i < wanted ? static_cast<char>(_gl_get_hex_byte(file)) : '\0';
    }
    if (_gl_skip_nl(file) != 1) {
        _gl_free_ptr(text);
        return reader_result(refuse(lc, GLS_ERR_FILE));
    }
    *out = text;
    return 0;
}

int32_t read_group(locale_rec *lc, FILE *file, group_rec *out) {
    int64_t count = _gl_get_int(file);
    if (count < 0 || count > gl_group_limit)
        return reader_result(refuse(lc, GLS_ERR_COUNT));
    *out = {.count = static_cast<int32_t>(count)};
    for (int64_t i = 0; i < count; ++i) {
        // A size is unsigned; -1 is another way to write the one that ends grouping.
        int64_t size;
        if (!read_number(lc, file, INT32_MIN, UINT32_MAX, size))
            return 1;
        out->sizes[i] = static_cast<uint32_t>(size);
    }
    return reader_result(read_line_end(lc, file));
}

gl_wchar _gl_read_gl_wchar(FILE *file) { return _gl_get_hex(file, 8); }
