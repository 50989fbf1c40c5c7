#include <kestrion/cached_names.h>

#include "base/owned_text.h"
#include <kestrion/char_case.h>
#include <kestrion/char_class.h>
#include <kestrion/char_convert.h>
#include <kestrion/ctype_masks.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/ext_hooks.h>
#include <kestrion/gls_errors.h>
#include <kestrion/locale_rec.h>
#include <kestrion/time_names.h>

#include <iterator>
#include <stdlib.h>
#include <string.h>

namespace {

constexpr size_t stack_wide = 16; // names are short; longer ones take an allocation

const char *const english_abbreviations[] = {"jan", "feb", "mar", "apr", "may", "jun",
                                             "jul", "aug", "sep", "oct", "nov", "dec"};
const char *const english_months[] = {"january",   "february", "march",    "april",
                                      "may",       "june",     "july",     "august",
                                      "september", "october",  "november", "december"};

// Ignores a lower-case form that the code set cannot encode: an object file may list one, and the
// text could not be written back.
void lower_wide(locale_rec *lc, gl_wchar *wide) {
    const bool by_table = lc != nullptr && lc->sb_lower != nullptr;
    for (; *wide != 0; ++wide) {
        if (by_table && *wide > 0xff) {
            *_gl_ext_errno(lc) = GLS_ERR_BAD_CHARACTER;
        } else if (_gl_im_iswctype(lc, *wide, CT_UPPER) != 0) {
            const gl_wchar lower = _gl_im_towlower(lc, *wide);
            if (by_table ? lower <= 0xff : gl_wclen(lc, lower) > 0)
                *wide = lower;
        }
    }
}

int lower_in_place(locale_rec *lc, char *text, gl_wchar *wide, size_t room) {
    const auto elements = static_cast<int32_t>(room);
    const bool single = lc == nullptr || lc->is_single_byte != 0;
    const int32_t stored = single ? _gl_is_mbstowcs(lc, wide, text, elements)
                                  : _gl_im_mbstowcs(lc, wide, text, elements);
    if (stored < 0)
        return -1;
    wide[stored < elements ? stored : elements - 1] = 0;
    lower_wide(lc, wide);
    const auto bytes = static_cast<int32_t>(4 * (room - 1) + 1);
    return single ? _gl_is_wcstombs(lc, text, wide, bytes)
                  : gl_full_wcstombs(lc, text, wide, bytes);
}

// Caches what the engine handed out in lower case, and releases it. A locale without such names is
// as good as any.
void cache_names(gls_name_list **list, char **names, int32_t count) {
    auto **lower = static_cast<char **>(calloc(static_cast<size_t>(count) + 1, sizeof(char *)));
    int32_t made = 0;
    while (lower != nullptr && made < count &&
           (lower[made] = kestrion::copied_text(names[made], cl_ext_malloc)) != nullptr)
        downcase_gls_string(&lower[made++]);
    if (made == count)
        cache_locale_string(list, lower, count);
    while (made > 0)
        cl_ext_free(lower[--made]);
    free(lower);
    cl_ext_free(names);
}

int cache_months(gls_name_list **list, int32_t kind, const char *const (&english)[12]) {
    const GlsEnv *env = CheckGlsEnv();
    free_locale_string(list);
    char **names = nullptr;
    int32_t count = 0;
    if (gl_mbstimeinfo_ext(env->cur_lc, kind, cl_ext_malloc, &names, &count) != 0)
        return -1;
    cache_names(list, names, count);
    if (env->state->gregorian == 1)
        cache_locale_string(list, const_cast<char *const *>(english),
                            static_cast<int32_t>(std::size(english)));
    return 0;
}

int cache_eras(gls_name_list **list, int32_t kind) {
    free_locale_string(list);
    char **names = nullptr;
    int32_t count = 0;
    if (gl_mbstimeinfo(CheckGlsEnv()->cur_lc, kind, cl_ext_malloc, &names, &count) != 0)
        return -1;
    cache_names(list, names, count);
    return 0;
}

} // namespace

int tolower_string(char *text) {
    if (*text == '\0')
        return 0;
    locale_rec *lc = CheckGlsEnv()->cur_lc;
    const size_t room = strlen(text) + 1;
    if (room <= stack_wide) {
        gl_wchar wide[stack_wide];
        return lower_in_place(lc, text, wide, room);
    }
    auto *wide = static_cast<gl_wchar *>(malloc(room * sizeof(gl_wchar)));
    if (wide == nullptr)
        return -1;
    const int result = lower_in_place(lc, text, wide, room);
    free(wide);
    return result;
}

int downcase_gls_string(char **slot) {
    const size_t length = strlen(*slot);
    auto *room = static_cast<char *>(cl_ext_malloc(4 * length + 1));
    if (room == nullptr)
        return -1;
    memcpy(room, *slot, length + 1);
    cl_ext_free(*slot);
    *slot = room;
    return tolower_string(room);
}

int cache_locale_string(gls_name_list **list, char *const *texts, int32_t count) {
    if (texts == nullptr || count <= 0)
        return -1;
    const auto names = static_cast<size_t>(count);
    size_t size = offsetof(gls_name_list, names) + names * sizeof(char *);
    for (size_t i = 0; i < names; ++i)
        size += strlen(texts[i]) + 1;
    auto *block = static_cast<gls_name_list *>(malloc(size));
    if (block == nullptr)
        return -1;
    char *at = reinterpret_cast<char *>(block->names + names);
    for (size_t i = 0; i < names; ++i) {
        const size_t bytes = strlen(texts[i]) + 1;
        memcpy(at, texts[i], bytes);
        block->names[i] = at;
        at += bytes;
    }
    block->count = count;
    block->next = *list;
    *list = block;
    return 0;
}

void free_locale_string(gls_name_list **list) {
    while (*list != nullptr) {
        gls_name_list *next = (*list)->next;
        free(*list);
        *list = next;
    }
}

int cache_month_strings(void) {
    new_gls_env_rec &state = *CheckGlsEnv()->state;
    if (cache_months(&state.abmon_names, GL_NAMES_ABMON, english_abbreviations) != 0)
        return -1;
    return cache_months(&state.mon_names, GL_NAMES_MON, english_months);
}

int cache_era_strings(void) {
    new_gls_env_rec &state = *CheckGlsEnv()->state;
    if (cache_eras(&state.era_names_a, GL_NAMES_ERA_SECOND) != 0)
        return -1;
    return cache_eras(&state.era_names_b, GL_NAMES_ERA_FIRST);
}
