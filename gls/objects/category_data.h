// What the readers of the sections share: fields, texts, and the empty and freed form of each
// category.
//
// Readers return false with the error word set. A text that a category does not have is `no_text`,
// never null, so that nobody needs to ask; it is not freed.

#pragma once

#include "gls/base/arrays.h"
#include "gls/base/engine_error.h"
#include "gls/objects/locale_object.h"
#include <kestrion/ext_funcs.h>
#include <kestrion/locale_rec.h>

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

namespace kestrion {

// Zero bytes after a text. When characters have several bytes, one that begins before the end may
// take three of them, and the terminator after it four.
inline constexpr size_t text_tail = 7;

extern char no_text[gl_char_bytes];
extern gl_wchar no_wide_text[1];

// ---- Fields

// What the public readers return: 0, or 1 with the error word set.
inline int32_t reader_result(bool read) { return read ? 0 : 1; }

// A line feed; GLS_ERR_MALFORMED for anything else.
bool read_line_end(locale_rec *lc, FILE *file);

// A number within [low, high]; GLS_ERR_MALFORMED for any other.
bool read_number(locale_rec *lc, FILE *file, int64_t low, int64_t high, int64_t &out);

// The same with its line feed.
bool read_number_line(locale_rec *lc, FILE *file, int64_t low, int64_t high, int32_t &out);

// One line of at most lco_line_limit characters, its line feed included; false without one.
bool read_line(FILE *file, char *line, size_t size);

// A table of 16-bit data in place of `table`; the table's own error.
bool read_table(locale_rec *lc, FILE *file, multi_arr *&table);

// An empty table of 16-bit data.
bool make_empty_table(locale_rec *lc, multi_arr *&table);

// ---- Texts

// A text and its wide form, as members of a category record.
template <class record> struct text_field {
    char *record::*text;
    gl_wchar *record::*wide;
};

bool read_text(locale_rec *lc, FILE *file, char *&text);
bool widen_text(locale_rec *lc, const char *text, gl_wchar *&wide);
void free_text(char *&text);
void free_wide(gl_wchar *&wide);

template <class record, size_t n>
bool read_texts(locale_rec *lc, FILE *file, record &r, const text_field<record> (&fields)[n]) {
    for (const auto &field : fields)
        if (!read_text(lc, file, r.*field.text))
            return false;
    return true;
}

template <class record, size_t n>
bool widen_texts(locale_rec *lc, record &r, const text_field<record> (&fields)[n]) {
    for (const auto &field : fields)
        if (!widen_text(lc, r.*field.text, r.*field.wide))
            return false;
    return true;
}

template <class record, size_t n>
void free_texts(record &r, const text_field<record> (&fields)[n]) {
    for (const auto &field : fields) {
        free_text(r.*field.text);
        free_wide(r.*field.wide);
    }
}

// ---- Categories: the empty form (false with GLS_ERR_NO_MEMORY), and what frees one

bool empty_ctype(locale_rec *lc);
bool empty_collate(locale_rec *lc);
bool empty_numeric(locale_rec *lc);
bool empty_monetary(locale_rec *lc);
bool empty_time(locale_rec *lc);
bool empty_messages(locale_rec *lc);

void free_ctype(locale_rec *lc);
void free_collate(locale_rec *lc);
void free_numeric(locale_rec *lc);
void free_monetary(locale_rec *lc);
void free_time(locale_rec *lc);
void free_messages(locale_rec *lc);

// Frees the byte tables of a single-byte code set.
void free_byte_tables(locale_rec *lc);

} // namespace kestrion
