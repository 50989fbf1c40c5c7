#include <kestrion/conversion.h>

#include "gls/conversion/conversion_object.h"
#include "gls/conversion/conversion_tables.h"
#include <kestrion/categories.h>
#include <kestrion/code_set_registry.h>
#include <kestrion/conversion_file.h>
#include <kestrion/conversion_routines.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/gls_errors.h>
#include <kestrion/multi.h>
#include <kestrion/path_search.h>
#include <kestrion/plug_in.h>
#include <kestrion/specifiers.h>

#include <limits.h>
#include <stdio.h>
#include <string.h>

using namespace kestrion;

namespace {

constexpr size_t cs_name_size = 1024; // a code-set name in a specifier, terminator included
constexpr size_t names_limit = 1019;  // two names are shorter than this together

// Hands out a stand-in for the record that could not be made.
int32_t no_record(cv_rec **out, cv_rec *stand_in) {
    *out = stand_in;
    return -1;
}

bool is_stand_in(const cv_rec *cv) {
    return cv == &cd_enomem || cv == &cd_fileerr || cv == &cd_einval;
}

cv_rec *new_record() { return static_cast<cv_rec *>(_gl_ext_calloc(1, sizeof(cv_rec))); }

// The text between the first "." of a specifier and the next blank or "@"; empty when too long.
void lc_spec2cs_name(const char *spec, char (&name)[cs_name_size]) {
    name[0] = '\0';
    const char *point = strchr(spec, '.');
    if (point == nullptr)
        return;
    const size_t length = strcspn(point + 1, " @");
    if (length >= cs_name_size)
        return;
    memcpy(name, point + 1, length);
    name[length] = '\0';
}

FILE *open_object(cv_rec *cv, const char *name, const char *dir) {
    return dir != nullptr ? gl_open_file(cv, name)
                          : gl_path_search(cv, name, cvo_directory, cvo_directory_version);
}

// Reads an object into a cleared record. The reader closes only what it takes.
int32_t load_object(cv_rec *cv, FILE *file) {
    const int32_t result = read_cv_file(cv, file);
    if (result != 0 && file != nullptr)
        _gl_ext_fclose(file);
    return result;
}

} // namespace

constinit cv_rec cd_enomem = {.cv_err = GLS_ERR_NO_MEMORY};
constinit cv_rec cd_fileerr = {.cv_err = GLS_ERR_FILE};
constinit cv_rec cd_einval = {.cv_err = GLS_ERR_SPECIFIER};

int32_t gl_cv_load(cv_rec **out, const char *to, const char *from, const char *regfile,
                   const char *dir) {
    if (gl_init_glu(nullptr) != 0)
        return no_record(out, &cd_fileerr);
    const int to_number = gl_lc_spec2cs_num(nullptr, to, regfile);
    const int from_number = gl_lc_spec2cs_num(nullptr, from, regfile);
    if (to_number == gl_unknown_code_set || from_number == gl_unknown_code_set)
        return no_record(out, &cd_einval);
    *out = nullptr;
    if (to_number == from_number)
        return 0;
    auto *name = static_cast<char *>(
        _gl_ext_malloc((dir != nullptr ? strlen(dir) : 0) + gl_cv_fname_size + 1));
    if (name == nullptr)
        return no_record(out, &cd_enomem);
    gl_cs_nums2cv_fname(nullptr, from_number, to_number, name, dir);
    cv_rec *cv = new_record();
    *out = cv != nullptr ? cv : &cd_enomem;
    const int32_t result = cv != nullptr ? load_object(cv, open_object(cv, name, dir)) : -1;
    _gl_ext_free(name);
    return result == 0 ? 1 : -1;
}

int32_t gl_cv_open(cv_rec **out, const char *to, const char *from) {
    char to_name[cs_name_size];
    char from_name[cs_name_size];
    lc_spec2cs_name(to, to_name);
    lc_spec2cs_name(from, from_name);
    if (to_name[0] == '\0' || from_name[0] == '\0')
        return no_record(out, &cd_fileerr);
    *out = nullptr;
    if (strcmp(to_name, from_name) == 0)
        return 0;
    return gl_iconv_open(out, to_name, from_name) == 0 ? 1 : -1;
}

int32_t gl_iconv_open(cv_rec **out, const char *to, const char *from) {
    char name[names_limit + sizeof "_.cvo" - 1];
    const int length = snprintf(name, sizeof name, "%s_%s.cvo", from, to);
    if (length < 0 || static_cast<size_t>(length) >= sizeof name || strcmp(to, from) == 0)
        return no_record(out, &cd_fileerr);
    return gl_iconv_open1(out, name);
}

int32_t gl_iconv_open1(cv_rec **out, const char *file_name) {
    cv_rec *cv = new_record();
    if (cv == nullptr)
        return no_record(out, &cd_enomem);
    *out = cv;
    return load_object(cv, file_name != nullptr ? open_object(cv, file_name, nullptr) : nullptr);
}

int32_t gl_cv_unload(cv_rec *cv) {
    if (cv == nullptr)
        return -1;
    if (is_stand_in(cv))
        return 0;
    _gl_free_multi(cv->table_normal);
    _gl_free_multi(cv->table_shifted);
    free_fast_tables(cv);
    _gl_ext_free(cv);
    return 0;
}

int32_t gl_cv_mconv(cv_rec *cv, cv_state *state, const char **source, int32_t *source_length,
                    char **target, int32_t *room, int32_t *lossy) {
    if (cv->convert == nullptr) // a stand-in or a failed record: its word says why already
        return -1;
    if (cv->source_stateful == 0)
        return cv->convert(cv, source, source_length, target, room, lossy);
    cv_state whole = {.reset = 1, .flush = 1};
    return mb_smiconv(cv, state != nullptr ? state : &whole, source, source_length, target, room,
                      lossy);
}

int32_t gl_miconv(cv_rec *cv, const char **source, int32_t *source_length, char **target,
                  int32_t *room, int32_t *lossy) {
    return gl_cv_mconv(cv, nullptr, source, source_length, target, room, lossy);
}

int32_t gl_mconvlen(cv_rec *cv, cv_state *state, const char **source, int32_t *source_length,
                    int32_t *room, int32_t *lossy) {
    return gl_cv_mconv(cv, state, source, source_length, nullptr, room, lossy);
}

double gl_iconv_expansion(const cv_rec *cv, int32_t) { return double{cv->expansion}; }

int32_t gl_cv_outbuflen(const cv_rec *cv, int32_t length) {
    if (length <= 0 || cv->expansion <= 0)
        return 0;
    const double expansion = double{cv->expansion};
    if (expansion >= INT32_MAX)
        return INT32_MAX;
    int64_t whole = static_cast<int64_t>(expansion);
    if (static_cast<double>(whole) < expansion)
        ++whole;
    const int64_t bytes = whole * length;
    return bytes > INT32_MAX ? INT32_MAX : static_cast<int32_t>(bytes);
}

const unsigned char *qvt_gl_cv_sb2sb_table(const cv_rec *cv) {
    return cv != nullptr ? cv->sb_table : nullptr;
}
