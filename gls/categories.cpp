#include "gls/categories.h"

#include "gls/category_data.h"
#include "gls/char_walk.h"
#include "gls/code_set_registry.h"
#include "gls/locale_file.h"
#include "gls/path_search.h"

#include <stdio.h>
#include <string.h>

using namespace kestrion;

namespace {

constexpr size_t result_size = 320; // six keywords, names and separators
constexpr char native_name[] = "native";

// One row a category: its empty form, its release, and what treats its record as a whole.
struct category_row {
    bool (*make_empty)(locale_rec *);
    void (*release)(locale_rec *);
    void (*clear)(locale_rec *);
    void (*copy)(locale_rec *, const locale_rec *);
};

template <auto member> void clear(locale_rec *lc) { lc->*member = {}; }

template <auto member> void copy(locale_rec *dest, const locale_rec *source) {
    dest->*member = source->*member;
}

void copy_ctype(locale_rec *dest, const locale_rec *source) {
    dest->is_single_byte = 0; // until it is settled what the copy is
    set_function_pointers(dest);
    dest->ctype_cat = source->ctype_cat;
    dest->case_expansion = source->case_expansion;
}

void copy_collate(locale_rec *dest, const locale_rec *source) {
    dest->collate_cat = source->collate_cat;
    dest->max_expansion = source->max_expansion;
}

// clang-format off
constexpr category_row categories[gl_category_count] = {
    {empty_ctype,    free_ctype,    clear<&locale_rec::ctype_cat>,    copy_ctype},
    {empty_collate,  free_collate,  clear<&locale_rec::collate_cat>,  copy_collate},
    {empty_numeric,  free_numeric,  clear<&locale_rec::numeric_cat>,  copy<&locale_rec::numeric_cat>},
    {empty_monetary, free_monetary, clear<&locale_rec::monetary_cat>, copy<&locale_rec::monetary_cat>},
    {empty_time,     free_time,     clear<&locale_rec::time_cat>,     copy<&locale_rec::time_cat>},
    {empty_messages, free_messages, clear<&locale_rec::messages_cat>, copy<&locale_rec::messages_cat>},
};
// clang-format on

bool is_single_category(int32_t category) {
    return category >= gl_first_category && category < gl_first_category + gl_category_count;
}

char *row(char (*names)[gl_file_name_size], int32_t category) {
    return names[category - gl_first_category];
}

// ---- From a setting to a file

// Copies a file name of at most 33 characters that ends at `end`.
bool copy_name(const char *name, const char *end, char *out) {
    size_t length = static_cast<size_t>(end - name);
    if (length >= gl_file_name_size)
        return false;
    memcpy(out, name, length);
    out[length] = 0;
    return true;
}

// What a setting says of one category: what stands behind its keyword and "=", else the whole.
bool name_of_category(const char *text, const char *keyword, char *out) {
    const char *found = strstr(text, keyword);
    const char *value = found ? strchr(found, '=') : nullptr;
    if (!value)
        return copy_name(text, text + strlen(text), out);
    value += 1 + strspn(value + 1, " ");
    return copy_name(value, value + strcspn(value, " "), out);
}

// What the environment says.
bool name_of_environment(const char *keyword, char *out) {
    const char *value = _gl_get_env_var("GL_ALL");
    if (!value)
        value = _gl_get_env_var(keyword);
    if (!value)
        value = _gl_get_env_var("GL_LANG");
    value = value ? value : "";
    return copy_name(value, value + strlen(value), out);
}

// A name must stay below the directory where it is looked for. Its separators are slashes, and the
// mark that becomes one when the file is opened.
bool climbs(const char *name) {
    constexpr char separators[] = {'/', '\\', gl_directory_mark, 0};
    while (*name != 0) {
        size_t length = strcspn(name, separators);
        if (length == 2 && name[0] == '.' && name[1] == '.')
            return true;
        name += length;
        name += *name != 0;
    }
    return false;
}

// Opens an object in a given directory.
FILE *open_below(locale_rec *lc, const char *dir, const char *name) {
    size_t size = strlen(dir) + strlen(name) + 2;
    char *path = static_cast<char *>(_gl_ext_malloc(size));
    if (!path) {
        set_engine_error(lc, GLS_ERR_NO_MEMORY);
        return nullptr;
    }
    snprintf(path, size, "%s/%s", dir, name);
    FILE *file = gl_open_file(lc, path);
    _gl_free_ptr(path);
    return file;
}

FILE *open_object(locale_rec *lc, const char *name, const char *dir) {
    if (strcmp(name, native_name) == 0)
        name = lco_default_name;
    return dir ? open_below(lc, dir, name)
               : gl_path_search(lc, name, lco_directory, lco_directory_version);
}

// ---- Setting

bool same_code_sets(locale_rec *lc) {
    int number = gl_cs_name2cs_num(lc, lc->cs_names[0], nullptr);
    for (int32_t i = 1; i < gl_category_count; ++i)
        if (strcmp(lc->cs_names[i], lc->cs_names[0]) != 0 &&
            gl_cs_name2cs_num(lc, lc->cs_names[i], nullptr) != number)
            return false;
    return true;
}

bool set_one(locale_rec *lc, int32_t category, const char *text, const char *dir) {
    char name[gl_file_name_size] = "";
    if (load_category(lc, category, text, name, dir) != 0)
        return false;
    memcpy(row(lc->file_names, category), name, sizeof name);
    return true;
}

bool set_all(locale_rec *lc, const char *text, const char *dir) {
    for (int32_t i = 0; i < gl_category_count; ++i)
        if (!set_one(lc, gl_first_category + i, text, dir)) {
            if (*_gl_ext_errno(lc) == GLS_OK)
                set_engine_error(lc, GLS_ERR_CATEGORY);
            return false;
        }
    return true;
}

// Loads what a setting names and settles the record. Categories of different code sets are a
// warning: the word 12 and a good result.
bool apply_setting(locale_rec *lc, int32_t category, const char *text, const char *dir) {
    if (strlen(text) > gl_setting_limit)
        return refuse(lc, GLS_ERR_ARGUMENT);
    bool loaded =
        category == GL_CAT_ALL ? set_all(lc, text, dir) : set_one(lc, category, text, dir);
    if (!loaded)
        return false;
    if (update_locale(lc) != 0 && *_gl_ext_errno(lc) != GLS_ERR_MIXED_CODE_SETS)
        return false;
    init_locale_info(lc);
    return true;
}

template <size_t size>
void widen_names(const char (&names)[gl_category_count][size],
                 gl_wchar (&wide)[gl_category_count][size]) {
    for (size_t i = 0; i < gl_category_count; ++i)
        for (size_t k = 0; k < size; ++k)
            wide[i][k] = static_cast<unsigned char>(names[i][k]);
}

} // namespace

int32_t gl_make_null_category(locale_rec *lc, int32_t category) {
    if (!is_single_category(category))
        return failed(lc, GLS_ERR_ARGUMENT);
    int32_t slot = category - gl_first_category;
    lc->shared[slot] = 0;
    lc->cs_names[slot][0] = 0;
    lc->file_names[slot][0] = 0;
    set_categories_glu_null(lc, category);
    return categories[slot].make_empty(lc) ? 0 : -1;
}

void gl_free_category(locale_rec *lc, int32_t category) {
    if (!is_single_category(category))
        return;
    int32_t slot = category - gl_first_category;
    if (lc->shared[slot])
        categories[slot].clear(lc); // lent data are only forgotten
    lc->shared[slot] = 0;
    categories[slot].release(lc);
}

int32_t update_locale(locale_rec *lc) {
    lc->is_single_byte = lc->ctype_cat.mb_loc_max == 1;
    lc->code_set_order = lc->collate_cat.code_order_form != 0;
    lc->glu_collate = lc->glu_in_use[GL_CAT_COLLATE - gl_first_category];
    if (set_function_pointers(lc) != 0)
        return -1;
    if (same_code_sets(lc))
        return 0;
    set_engine_error(lc, GLS_ERR_MIXED_CODE_SETS);
    return -1;
}

void query_locname(const locale_rec *lc, int32_t category, char *out) {
    out[0] = 0;
    if (is_single_category(category))
        strcpy(out, lc->file_names[category - gl_first_category]);
    if (category != GL_CAT_ALL)
        return;
    for (int32_t i = 0; i < gl_category_count; ++i)
        out += sprintf(out, "%s = %s ; ", category_params[i], lc->file_names[i]);
}

void init_locale_info(locale_rec *lc) {
    widen_names(lc->cs_names, lc->wide_cs_names);
    widen_names(lc->file_names, lc->wide_file_names);
}

int32_t load_category(locale_rec *lc, int32_t category, const char *text, char *out,
                      const char *dir) {
    if (!is_single_category(category))
        return failed(lc, GLS_ERR_ARGUMENT);
    const char *keyword = category_params[category - gl_first_category];
    bool named =
        *text != 0 ? name_of_category(text, keyword, out) : name_of_environment(keyword, out);
    if (!named || climbs(out))
        return failed(lc, GLS_ERR_FILE);
    if (out[0] == 0)
        strcpy(out, native_name);
    FILE *file = open_object(lc, out, dir);
    if (!file)
        return 1;
    gl_free_category(lc, category);
    bool loaded =
        gl_make_null_category(lc, category) == 0 && read_one_category(lc, category, file) == 0;
    _gl_ext_fclose(file);
    if (!loaded)
        return 1;
    return strcmp(out, native_name) == 0 ? 0 : set_categories_glu(lc, category, out);
}

char *set_categories(locale_rec *lc, int32_t category, const char *text, const char *dir) {
    char *result = static_cast<char *>(_gl_ext_malloc(result_size));
    if (!result) {
        set_engine_error(lc, GLS_ERR_NO_MEMORY);
        return nullptr;
    }
    bool known = category == GL_CAT_ALL || is_single_category(category);
    bool done =
        known ? !text || apply_setting(lc, category, text, dir) : refuse(lc, GLS_ERR_ARGUMENT);
    if (done) {
        query_locname(lc, category, result);
        return result;
    }
    _gl_free_ptr(result);
    return nullptr;
}

char *gl_setlocale_4(locale_rec *lc, int32_t category, const char *text) {
    return gl_init_glu(lc) == 0 ? set_categories(lc, category, text, nullptr) : nullptr;
}

void copy_category(locale_rec *dest, const locale_rec *source, int32_t category) {
    if (!is_single_category(category) || dest == source)
        return;
    int32_t slot = category - gl_first_category;
    gl_free_category(dest, category);
    categories[slot].copy(dest, source);
    dest->shared[slot] = 1;
    memcpy(dest->cs_names[slot], source->cs_names[slot], gl_cs_name_size);
    memcpy(dest->file_names[slot], source->file_names[slot], gl_file_name_size);
    dest->glu_in_use[slot] = source->glu_in_use[slot];
    dest->glu_locale[slot] = source->glu_locale[slot];
}

int32_t gl_copy_cat(locale_rec *dest, const locale_rec *source, int32_t category) {
    if (!is_single_category(category))
        return failed(dest, GLS_ERR_ARGUMENT);
    copy_category(dest, source, category);
    int32_t result = update_locale(dest);
    init_locale_info(dest);
    return result;
}
