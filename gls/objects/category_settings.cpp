#include <kestrion/categories.h>

#include "gls/base/engine_error.h"
#include "gls/base/name_separators.h"
#include "gls/naming/category_words.h"
#include "gls/objects/category_data.h"
#include "gls/objects/locale_object.h"
#include "gls/text/char_walk.h"
#include <kestrion/locale_file.h>
#include <kestrion/path_search.h>
#include <kestrion/plug_in.h>

#include <stdio.h>
#include <string.h>

using namespace kestrion;

namespace {

constexpr size_t result_size = 320; // six keywords, names and separators
constexpr char native_name[] = "native";

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

// What a setting says of one category: what follows its keyword and "=", else the whole.
bool name_of_category(const char *text, const char *keyword, char *out) {
    const char *found = strstr(text, keyword);
    const char *value = found != nullptr ? strchr(found, '=') : nullptr;
    if (value == nullptr)
        return copy_name(text, text + strlen(text), out);
    value += 1 + strspn(value + 1, " ");
    return copy_name(value, value + strcspn(value, " "), out);
}

// What the environment says.
bool name_of_environment(const char *keyword, char *out) {
    const char *value = _gl_get_env_var("GL_ALL");
    if (value == nullptr)
        value = _gl_get_env_var(keyword);
    if (value == nullptr)
        value = _gl_get_env_var("GL_LANG");
    value = value != nullptr ? value : "";
    return copy_name(value, value + strlen(value), out);
}

// A name must stay below the directory where it is looked for. Its separators are slashes, and the
// mark that becomes one when the file is opened.
bool climbs(const char *name) {
    while (*name != 0) {
        size_t length = strcspn(name, gl_name_separators);
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
    if (path == nullptr)
        return fail_with_null(lc, GLS_ERR_NO_MEMORY);
    snprintf(path, size, "%s/%s", dir, name);
    FILE *file = gl_open_file(lc, path);
    _gl_free_ptr(path);
    return file;
}

FILE *open_object(locale_rec *lc, const char *name, const char *dir) {
    if (strcmp(name, native_name) == 0)
        name = lco_default_name;
    return dir != nullptr ? open_below(lc, dir, name)
                          : gl_path_search(lc, name, lco_directory, lco_directory_version);
}

// ---- Setting

bool set_one(locale_rec *lc, int32_t category, const char *text, const char *dir) {
    char name[gl_file_name_size] = "";
    if (load_category(lc, category, text, name, dir) != 0)
        return false;
    memcpy(row(lc->file_names, category), name, sizeof name);
    return true;
}

bool set_all(locale_rec *lc, const char *text, const char *dir) {
    for (int32_t i = 0; i < gl_category_count; ++i)
        if (!set_one(lc, gl_first_category + i, text, dir))
            return *_gl_ext_errno(lc) == GLS_OK ? refuse(lc, GLS_ERR_CATEGORY) : false;
    return true;
}

// Loads what a setting names and settles the record. Categories of different code sets are a
// warning: GLS_ERR_MIXED_CODE_SETS and a good result.
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

} // namespace

void query_locname(const locale_rec *lc, int32_t category, char *out) {
    out[0] = 0;
    if (is_single_category(category))
        strcpy(out, lc->file_names[category - gl_first_category]);
    if (category != GL_CAT_ALL)
        return;
    for (int32_t i = 0; i < gl_category_count; ++i)
        out += sprintf(out, "%s = %s ; ", category_words[i].text, lc->file_names[i]);
}

int32_t load_category(locale_rec *lc, int32_t category, const char *text, char *out,
                      const char *dir) {
    if (!is_single_category(category))
        return fail(lc, GLS_ERR_ARGUMENT);
    const char *keyword = category_words[category - gl_first_category].text;
    bool named =
        *text != 0 ? name_of_category(text, keyword, out) : name_of_environment(keyword, out);
    if (!named || climbs(out))
        return fail(lc, GLS_ERR_FILE);
    if (out[0] == 0)
        strcpy(out, native_name);
    FILE *file = open_object(lc, out, dir);
    if (file == nullptr)
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
    if (result == nullptr)
        return fail_with_null(lc, GLS_ERR_NO_MEMORY);
    bool known = category == GL_CAT_ALL || is_single_category(category);
    bool done = known ? text == nullptr || apply_setting(lc, category, text, dir)
                      : refuse(lc, GLS_ERR_ARGUMENT);
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
