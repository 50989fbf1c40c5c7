// The CTYPE category: its section, its lookups and its byte tables.

#include <kestrion/categories.h>

#include "base/ascii_class.h"
#include "gls/base/c_locale_number.h"
#include "gls/collation/comparers.h"
#include "gls/multi/multi_tree.h"
#include "gls/objects/category_data.h"
#include "gls/objects/locale_object.h"
#include "gls/text/char_walk.h"
#include <kestrion/char_case.h>
#include <kestrion/char_convert.h>
#include <kestrion/locale_file.h>
#include <kestrion/readers.h>

#include <string.h>

using namespace kestrion;

namespace {

// ---- The section

bool read_class_row(locale_rec *lc, FILE *file, class_row &row) {
    char name[lco_line_limit + 1];
    int64_t bit;
    if (!read_number(lc, file, INT32_MIN, INT32_MAX, bit))
        return false;
    _gl_skip_space_if_needed(file);
    if (_gl_get_str(name, sizeof name, file) != 0 || name[0] == 0)
        return refuse(lc, GLS_ERR_MALFORMED);
    size_t size = strlen(name) + 1;
    row = {.bit = static_cast<int32_t>(bit), .name = static_cast<char *>(_gl_ext_malloc(size))};
    if (row.name == nullptr)
        return refuse(lc, GLS_ERR_NO_MEMORY);
    memcpy(row.name, name, size);
    return read_line_end(lc, file);
}

bool read_class_names(locale_rec *lc, FILE *file, ctype_rec &ct) {
    int32_t count;
    size_t room = 0;
    if (!read_number_line(lc, file, INT32_MIN, INT32_MAX, count))
        return false;
    for (int32_t i = 0; i < count; ++i) {
        if (!make_room(lc, ct.class_names, static_cast<size_t>(i), room))
            return false;
        ct.class_names[i] = {};
        ct.class_name_count = i + 1;
        if (!read_class_row(lc, file, ct.class_names[i]))
            return false;
    }
    return true;
}

bool read_case_pairs(locale_rec *lc, FILE *file, ctype_rec &ct) {
    int64_t count;
    size_t room = 0;
    if (!read_number(lc, file, 0, lco_pair_limit, count) || !make_room(lc, ct.case_pairs, 0, room))
        return false;
    ct.case_pairs[0] = {};
    for (int32_t i = 1; i <= count; ++i) {
        if (!read_line_end(lc, file) || !make_room(lc, ct.case_pairs, static_cast<size_t>(i), room))
            return false;
        ct.case_pairs[i].upper = _gl_read_gl_wchar(file);
        ct.case_pairs[i].lower = _gl_read_gl_wchar(file);
    }
    ct.case_pair_count = static_cast<int32_t>(count);
    return read_line_end(lc, file);
}

bool read_growth(locale_rec *lc, FILE *file) {
    char line[lco_line_limit + 2];
    if (!read_line(file, line, sizeof line))
        return refuse(lc, GLS_ERR_MALFORMED);
    const char *end = line;
    const double growth = line[0] == '\n' ? lco_growth_default : c_locale_number(line, &end);
    const bool is_decimal = line[strspn(line, "0123456789.eE+-")] == '\n'; // not "inf", not " 2"
    if (*end != '\n' || !is_decimal || growth < 0 || growth > lco_growth_limit)
        return refuse(lc, GLS_ERR_MALFORMED);
    lc->case_expansion = growth;
    return true;
}

// ---- What the lookups rely on

// Checks the indexes of the case table and finds the greatest growth that its pairs can cause.
struct case_check {
    const multi_arr *table;
    const ctype_rec *ct;
    double growth = 1.0;
    const unsigned char *checked = nullptr; // the data array seen last, and at which depth: most of
    int32_t checked_depth = 0;              // the nodes of a large table share one

    int32_t partner_length(uint32_t index) const {
        int32_t upper = ct->case_texts[2 * index].length;
        int32_t lower = ct->case_texts[2 * index + 1].length;
        return upper > lower ? upper : lower;
    }

    bool index_fits(const unsigned char *datum, int32_t depth) {
        uint16_t index;
        memcpy(&index, datum, sizeof index);
        if (index > ct->case_pair_count)
            return false;
        double ratio = static_cast<double>(partner_length(index)) / depth;
        growth = ratio > growth ? ratio : growth;
        return true;
    }

    bool data_fit(const multi_node *node, int32_t depth) {
        if (node->data == nullptr || (node->data == checked && depth == checked_depth))
            return true;
        for (size_t b = 0; b < gl_bytes; ++b)
            if (!index_fits(multi_slot(table, node->data, b), depth))
                return false;
        checked = node->data;
        checked_depth = depth;
        return true;
    }

    bool node_fits(const multi_node *node, int32_t depth) {
        if (!data_fit(node, depth))
            return false;
        for (size_t b = 0; b < gl_bytes; ++b) {
            unsigned char byte = static_cast<unsigned char>(b);
            if (multi_flag_at(node, byte) == MULTI_CHILD &&
                !node_fits(multi_child_at(node, byte), depth + 1))
                return false;
        }
        return true;
    }
};

// Whether every sequence of the case table is a character.
bool are_characters(const multi_node *cases, const multi_node *classes) {
    for (size_t b = 0; b < gl_bytes; ++b) {
        unsigned char byte = static_cast<unsigned char>(b);
        unsigned char flag = multi_flag_at(cases, byte);
        if (flag != MULTI_NONE && flag != multi_flag_at(classes, byte))
            return false;
        if (flag == MULTI_CHILD &&
            !are_characters(multi_child_at(cases, byte), multi_child_at(classes, byte)))
            return false;
    }
    return true;
}

// Keeps the partners of each pair as bytes. A partner that the code set lacks is left out: the
// character then stays as it is.
bool spell_partners(locale_rec *lc, ctype_rec &ct) {
    size_t pairs = static_cast<size_t>(ct.case_pair_count) + 1;
    if (!make_array(lc, ct.case_texts, 2 * pairs))
        return false;
    for (size_t i = 1; i < pairs; ++i) {
        const gl_wchar members[] = {ct.case_pairs[i].upper, ct.case_pairs[i].lower};
        for (size_t k = 0; k < 2; ++k) {
            case_text &text = ct.case_texts[2 * i + k];
            if (members[k] != 0)
                text.length = encode_wide(ct, text.bytes, members[k]);
        }
    }
    return true;
}

// Whether every sequence is a whole number of units.
bool has_whole_units(const multi_node *node, int32_t depth, int32_t unit) {
    for (size_t b = 0; b < gl_bytes; ++b) {
        unsigned char byte = static_cast<unsigned char>(b);
        unsigned char flag = multi_flag_at(node, byte);
        if (flag == MULTI_END && depth % unit != 0)
            return false;
        if (flag == MULTI_CHILD && !has_whole_units(multi_child_at(node, byte), depth + 1, unit))
            return false;
    }
    return true;
}

bool is_spelled(const case_text &text, int byte) {
    return text.length == 0 || (text.length == 1 && text.bytes[0] == byte);
}

// Whether a byte is a character with the case of ASCII. A partner that is missing, or is the byte,
// means the byte itself.
bool has_ascii_case(const ctype_rec &ct, int byte) {
    multi_step step = ct.case_walk[byte];
    if (ct.class_walk[byte].next != multi_end || step.next != multi_end)
        return false;
    const case_text &upper = ct.case_texts[2 * step.datum];
    const case_text &lower = ct.case_texts[2 * step.datum + 1];
    if ((is_ascii_lower(byte) && upper.length == 0) || (is_ascii_upper(byte) && lower.length == 0))
        return false;
    return is_spelled(upper, ascii_upper(byte)) && is_spelled(lower, ascii_lower(byte));
}

bool all_have_ascii_case(const ctype_rec &ct) {
    for (int byte = 1; byte < 0x80; ++byte)
        if (!has_ascii_case(ct, byte))
            return false;
    return ct.mb_loc_min == 1;
}

bool ascii_are_characters(const ctype_rec &ct) {
    for (int byte = 1; byte < 0x80; ++byte)
        if (ct.class_walk[byte].next != multi_end)
            return false;
    return ct.mb_loc_min == 1;
}

bool flatten(locale_rec *lc, multi_arr *table, const multi_step *&walk) {
    if (multi_flatten(table) != 0)
        return refuse(lc, GLS_ERR_NO_MEMORY);
    walk = table->walk;
    return true;
}

// Wide characters of more bytes than their prefixes are listed for are walked byte by byte.
constexpr uint32_t one_byte_prefixes = 0x100;
constexpr uint32_t two_byte_prefixes = 0x10000;

uint32_t prefixes_for(const ctype_rec &ct) {
    return ct.mb_loc_min != 1 ? 0 : ct.mb_loc_max <= 2 ? one_byte_prefixes : two_byte_prefixes;
}

// The state after `byte`; multi_end, from which nothing goes on, when the byte leads to no state.
uint16_t state_after(const multi_step *walk, size_t state, size_t byte) {
    uint16_t next = walk[state << 8 | byte].next;
    return next >= multi_first_state ? next : uint16_t{multi_end};
}

// Lists the states after all bytes of a wide character but the last.
bool list_prefixes(locale_rec *lc, const multi_step *walk, uint32_t count, uint16_t *&prefixes) {
    if (count == 0)
        return true;
    if (!make_array(lc, prefixes, count))
        return false;
    for (size_t first = 1; first < one_byte_prefixes; ++first) {
        prefixes[first] = state_after(walk, 0, first);
        for (size_t second = 0; count == two_byte_prefixes && second < 0x100; ++second)
            prefixes[first << 8 | second] = state_after(walk, prefixes[first], second);
    }
    return true;
}

uint16_t shift_between(gl_wchar wc, gl_wchar partner) {
    int64_t shift = partner == 0 ? 0 : static_cast<int64_t>(partner) - wc;
    int64_t biased = shift + case_shift_bias;
    return biased > 0 && biased <= UINT16_MAX ? static_cast<uint16_t>(biased) : 0;
}

// Lists the shifts of the wide characters of one and two bytes: Latin text has no others. The
// entries of other values stay untouched memory.
bool list_case_shifts(locale_rec *lc, ctype_rec &ct) {
    uint32_t firsts = ct.prefix_count == 0 ? 0 : ct.mb_loc_max == 1 ? 1 : 0x100;
    if (firsts == 0)
        return true;
    if (!make_array(lc, ct.case_shifts, firsts << 8))
        return false;
    ct.shift_count = firsts << 8;
    for (gl_wchar wc = 0; wc < ct.shift_count; ++wc) {
        multi_step step = step_by_prefix(ct.case_walk, ct.case_prefixes, wc);
        if (step.next != multi_end)
            continue;
        const case_pair &pair = ct.case_pairs[step.datum];
        ct.case_shifts[wc] = {shift_between(wc, pair.upper), shift_between(wc, pair.lower)};
    }
    return true;
}

// Makes what the lookups use, and checks what they take for granted.
bool prepare_lookups(locale_rec *lc, ctype_rec &ct) {
    const multi_arr *classes = ct.class_table;
    const multi_arr *cases = ct.case_index;
    if (cases->max_len != 0 && cases->min_len != classes->min_len)
        return refuse(lc, GLS_ERR_MALFORMED);
    // A terminator of several bytes is only met by a walk that takes whole characters, of whole
    // units.
    if (classes->min_len != 1 && (!has_whole_units(classes->root, 1, classes->min_len) ||
                                  !are_characters(cases->root, classes->root)))
        return refuse(lc, GLS_ERR_MALFORMED);
    if (!flatten(lc, ct.class_table, ct.class_walk) || !flatten(lc, ct.case_index, ct.case_walk))
        return false;
    ct.mb_loc_max = classes->max_len;
    ct.mb_loc_min = classes->min_len;
    ct.byte_walk = ct.mb_loc_min == 1 ? ct.class_walk : no_characters;
    uint32_t prefixes = prefixes_for(ct);
    if (!list_prefixes(lc, ct.class_walk, prefixes, ct.class_prefixes) ||
        !list_prefixes(lc, ct.case_walk, prefixes, ct.case_prefixes))
        return false;
    ct.prefix_count = prefixes;
    if (!spell_partners(lc, ct))
        return false;
    ct.ascii_bytes = ascii_are_characters(ct);
    case_check check = {.table = cases, .ct = &ct};
    // A sequence of a single byte may have the default, whatever min_len says.
    if (!check.index_fits(cases->default_datum, 1) || !check.node_fits(cases->root, 1))
        return refuse(lc, GLS_ERR_MALFORMED);
    // A factor below what the pairs can cause would let callers make their buffers too small.
    if (lc->case_expansion < check.growth)
        lc->case_expansion = check.growth;
    ct.plain_ascii = all_have_ascii_case(ct);
    return list_case_shifts(lc, ct);
}

// ---- The byte tables

// Makes a map unless there is one already. A partner of several bytes does not fit: the byte stays.
bool make_byte_map(locale_rec *lc, uint8_t *&map, gl_wchar (*other_case)(locale_rec *, gl_wchar)) {
    if (map != nullptr)
        return true;
    if (!make_array(lc, map, 256))
        return false;
    int32_t word = lc->err;
    for (gl_wchar byte = 0; byte < 256; ++byte) {
        gl_wchar other = other_case(lc, byte);
        map[byte] = static_cast<uint8_t>(other <= 0xff ? other : byte);
    }
    lc->err = word; // an invalid byte is not a failure here
    return true;
}

uint16_t root_class(const multi_arr *table, size_t byte) {
    uint16_t mask = 0;
    if (table->root->data != nullptr)
        memcpy(&mask, multi_slot(table, table->root->data, byte), sizeof mask);
    else if (table->default_datum != nullptr)
        memcpy(&mask, table->default_datum, sizeof mask);
    return mask;
}

bool make_class_map(locale_rec *lc) {
    if (lc->sb_class == nullptr && !make_array(lc, lc->sb_class, 256))
        return false;
    for (size_t byte = 0; byte < 256; ++byte)
        lc->sb_class[byte] = root_class(lc->ctype_cat.class_table, byte);
    return true;
}

} // namespace

int32_t read_ctype(locale_rec *lc, FILE *file) {
    ctype_rec &ct = lc->ctype_cat;
    bool read = read_table(lc, file, ct.class_table) && read_class_names(lc, file, ct) &&
                read_table(lc, file, ct.case_index) && read_case_pairs(lc, file, ct) &&
                read_growth(lc, file) && prepare_lookups(lc, ct);
    return reader_result(read);
}

int32_t set_function_pointers(locale_rec *lc) {
    choose_comparers(lc);
    if (!lc->is_single_byte) {
        free_byte_tables(lc);
        lc->mbstowcs_fn = _gl_im_mbstowcs;
        lc->mbfstowcfs_fn = _qvt_gl_im_mbfstowcfs;
        return 0;
    }
    if (!make_byte_map(lc, lc->sb_upper, _gl_im_towupper) ||
        !make_byte_map(lc, lc->sb_lower, _gl_im_towlower) || !make_class_map(lc)) {
        free_byte_tables(lc);
        return -1;
    }
    lc->mbstowcs_fn = _gl_is_mbstowcs;
    lc->mbfstowcfs_fn = _qvt_gl_is_mbfstowcfs;
    return 0;
}

namespace kestrion {

bool empty_ctype(locale_rec *lc) {
    lc->ctype_cat = no_ctype;
    lc->case_expansion = 1.0;
    // The texts of the next categories are walked before it is settled again what this one is.
    lc->is_single_byte = 0;
    set_function_pointers(lc);
    return make_empty_table(lc, lc->ctype_cat.class_table) &&
           make_empty_table(lc, lc->ctype_cat.case_index);
}

void free_ctype(locale_rec *lc) {
    ctype_rec &ct = lc->ctype_cat;
    for (int32_t i = 0; i < ct.class_name_count; ++i)
        _gl_free_ptr(ct.class_names[i].name);
    _gl_free_ptr(ct.class_names);
    _gl_free_multi(ct.class_table);
    _gl_free_multi(ct.case_index);
    _gl_free_ptr(ct.case_pairs);
    _gl_free_ptr(ct.case_texts);
    _gl_free_ptr(ct.case_shifts);
    _gl_free_ptr(ct.class_prefixes);
    _gl_free_ptr(ct.case_prefixes);
    ct = no_ctype;
}

void free_byte_tables(locale_rec *lc) {
    free_array(lc->sb_upper);
    free_array(lc->sb_lower);
    free_array(lc->sb_class);
}

} // namespace kestrion
