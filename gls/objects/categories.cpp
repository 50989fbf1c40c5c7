#include <kestrion/categories.h>

#include "gls/base/engine_error.h"
#include "gls/collation/order_tables.h"
#include "gls/naming/category_words.h"
#include "gls/objects/category_data.h"
#include "gls/text/char_walk.h"
#include <kestrion/code_set_registry.h>
#include <kestrion/plug_in.h>

#include <string.h>

using namespace kestrion;

namespace {

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

bool same_code_sets(locale_rec *lc) {
    int number = gl_cs_name2cs_num(lc, lc->cs_names[0], nullptr);
    for (int32_t i = 1; i < gl_category_count; ++i)
        if (strcmp(lc->cs_names[i], lc->cs_names[0]) != 0 &&
            gl_cs_name2cs_num(lc, lc->cs_names[i], nullptr) != number)
            return false;
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
        return fail(lc, GLS_ERR_ARGUMENT);
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
    lc->order_walk = nullptr; // until it is settled again whether rows and characters agree
    if (lc->shared[slot])
        categories[slot].clear(lc); // lent data are only forgotten
    lc->shared[slot] = 0;
    categories[slot].release(lc);
}

int32_t update_locale(locale_rec *lc) {
    lc->is_single_byte = lc->ctype_cat.mb_loc_max == 1;
    lc->code_set_order = lc->collate_cat.code_order_form != 0;
    lc->glu_collate = lc->glu_in_use[GL_CAT_COLLATE - gl_first_category];
    lc->order_walk = walk_of_both(lc);
    if (set_function_pointers(lc) != 0)
        return -1;
    if (same_code_sets(lc))
        return 0;
    return fail(lc, GLS_ERR_MIXED_CODE_SETS);
}

void init_locale_info(locale_rec *lc) {
    widen_names(lc->cs_names, lc->wide_cs_names);
    widen_names(lc->file_names, lc->wide_file_names);
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
        return fail(dest, GLS_ERR_ARGUMENT);
    copy_category(dest, source, category);
    int32_t result = update_locale(dest);
    init_locale_info(dest);
    return result;
}
