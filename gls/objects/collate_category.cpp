// The COLLATE category: its section and what is derived for single bytes.

#include "gls/objects/category_data.h"

#include "gls/base/engine_error.h"
#include "gls/collation/order_tables.h"
#include "gls/multi/multi_tree.h"
#include "gls/objects/collate_analysis.h"
#include "gls/objects/locale_object.h"
#include <kestrion/locale_file.h>
#include <kestrion/readers.h>

#include <string.h>

using namespace kestrion;

namespace {

constexpr int64_t row_limit = 0xffff; // rows are numbered in 16 bits
constexpr int64_t expansion_limit = coll_value_bits + 1;
constexpr int64_t contraction_limit = 0xffff;

// The method's line; true when rows follow it.
bool read_method(locale_rec *lc, FILE *file, bool &rows_follow) {
    char line[lco_line_limit + 2];
    rows_follow = false;
    if (!read_line(file, line, sizeof line))
        return refuse(lc, GLS_ERR_MALFORMED);
    if (strcmp(line, "thai_smo\n") == 0) {
        lc->collate_cat.coll_method = COLL_THAI_SMO;
        return true;
    }
    if (strcmp(line, "as_specified\n") != 0)
        return refuse(lc, GLS_ERR_MALFORMED);
    lc->collate_cat.coll_method = COLL_AS_SPECIFIED;
    rows_follow = true;
    return true;
}

// The integers may be on lines of their own or not.
bool read_spaced_number(locale_rec *lc, FILE *file, int64_t high, int64_t &out) {
    _gl_skip_whitespace(file);
    return read_number(lc, file, 0, high, out);
}

struct section_counts {
    int64_t code_order_form;
    int64_t max_row;
    int64_t levels;
    int64_t contractions;
    int64_t expansions;
    int64_t max_weight;
};

bool read_counts(locale_rec *lc, FILE *file, section_counts &n) {
    return read_spaced_number(lc, file, INT32_MAX, n.code_order_form) &&
           read_spaced_number(lc, file, row_limit, n.max_row) &&
           read_spaced_number(lc, file, gl_level_limit, n.levels) &&
           read_spaced_number(lc, file, contraction_limit, n.contractions) &&
           read_spaced_number(lc, file, expansion_limit, n.expansions) &&
           read_spaced_number(lc, file, UINT32_MAX, n.max_weight) && read_line_end(lc, file);
}

bool read_directions(locale_rec *lc, FILE *file, collate_rec &r) {
    for (int32_t level = 0; level < r.level_count; ++level) {
        r.level_order[level] = static_cast<int32_t>(_gl_get_hex(file, 4));
        if (r.level_order[level] != coll_forward && r.level_order[level] != coll_backward)
            return refuse(lc, GLS_ERR_MALFORMED);
    }
    return read_line_end(lc, file);
}

// A sequence without characters would never move a walk along; it is refused.
bool read_sequence(locale_rec *lc, FILE *file, int32_t length, gl_wchar *&chars) {
    if (length < 1)
        return refuse(lc, GLS_ERR_MALFORMED);
    if (!make_array(lc, chars, static_cast<size_t>(length)))
        return false;
    for (int32_t i = 0; i < length; ++i)
        chars[i] = _gl_read_gl_wchar(file);
    if (lc->max_expansion < length)
        lc->max_expansion = length;
    return read_line_end(lc, file);
}

bool read_contractions(locale_rec *lc, FILE *file, collate_rec &r, int64_t count) {
    size_t room = 0;
    for (int32_t i = 0; i < count; ++i) {
        if (!make_room(lc, r.contractions, static_cast<size_t>(i), room))
            return false;
        coll_contraction &c = r.contractions[i];
        c = {};
        r.contraction_count = i + 1;
        c.length = static_cast<int32_t>(_gl_get_hex(file, 1));
        c.row = static_cast<uint16_t>(_gl_get_hex(file, 4));
        if (c.row > r.max_row)
            return refuse(lc, GLS_ERR_MALFORMED);
        if (!read_sequence(lc, file, c.length, c.chars))
            return false;
    }
    return true;
}

// In a single-byte code set the bytes of an expansion are walked as a text.
bool all_are_bytes(const coll_expansion &e) {
    for (int32_t i = 0; i < e.length; ++i)
        if (e.chars[i] == 0 || e.chars[i] > 0xff)
            return false;
    return true;
}

bool read_expansions(locale_rec *lc, FILE *file, collate_rec &r, int64_t count) {
    size_t room = 0;
    for (int32_t i = 0; i < count; ++i) {
        if (!make_room(lc, r.expansions, static_cast<size_t>(i), room))
            return false;
        coll_expansion &e = r.expansions[i];
        e = {};
        r.expansion_count = i + 1;
        e.length = static_cast<int32_t>(_gl_get_hex(file, 1));
        if (!read_sequence(lc, file, e.length, e.chars))
            return false;
        if (r.row_table->max_len == 1 && !all_are_bytes(e))
            return refuse(lc, GLS_ERR_MALFORMED);
    }
    return true;
}

// Weights start at 2; what would be 0 or 1 but for the tie bit is none.
bool weight_fits(const collate_rec &r, uint16_t weight) {
    const uint16_t value = weight & coll_value_bits;
    if (weight & coll_expands)
        return value < r.expansion_count;
    return weight == coll_ignored || (value > coll_ignored && value <= r.max_weight);
}

bool read_rows(locale_rec *lc, FILE *file, collate_rec &r) {
    size_t room[gl_level_limit] = {};
    for (int32_t row = 0; row <= r.max_row; ++row) {
        for (int32_t level = 0; level < r.level_count; ++level) {
            uint16_t *&weights = r.level_weights[level];
            if (!make_room(lc, weights, static_cast<size_t>(row), room[level]))
                return false;
            weights[row] = static_cast<uint16_t>(_gl_get_hex(file, 4));
            if (!weight_fits(r, weights[row]))
                return refuse(lc, GLS_ERR_MALFORMED);
        }
        if (!read_line_end(lc, file))
            return false;
    }
    return true;
}

// ---- Checks of the row table

bool rows_fit(const collate_rec &r, const unsigned char *slot, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        uint16_t row;
        memcpy(&row, slot + i * sizeof row, sizeof row);
        if (row > r.max_row)
            return false;
    }
    return true;
}

bool node_rows_fit(const collate_rec &r, const multi_node *node) {
    if (node->data != nullptr && node->data_index < 0 && !rows_fit(r, node->data, gl_bytes))
        return false;
    for (size_t b = 0; b < gl_bytes; ++b) {
        unsigned char byte = static_cast<unsigned char>(b);
        if (multi_flag_at(node, byte) == MULTI_CHILD &&
            !node_rows_fit(r, multi_child_at(node, byte)))
            return false;
    }
    return true;
}

bool table_rows_fit(const collate_rec &r) {
    const multi_arr *table = r.row_table;
    if (!rows_fit(r, table->default_datum, 1))
        return false;
    for (int32_t i = 0; table->shared_data != nullptr && i < table->data_count; ++i)
        if (!rows_fit(r, table->shared_data[i], gl_bytes))
            return false;
    return node_rows_fit(r, table->root);
}

// ---- What is derived for single bytes

// Row of a single byte; false when the byte is no character.
bool row_of_byte(const collate_rec &r, unsigned char byte, uint16_t &row) {
    const multi_node *root = r.row_table->root;
    if (multi_flag_at(root, byte) != MULTI_END)
        return false;
    memcpy(&row,
           root->data != nullptr ? multi_slot(r.row_table, root->data, byte)
                                 : r.row_table->default_datum,
           sizeof row);
    return true;
}

bool derive_byte_expansions(locale_rec *lc, collate_rec &r) {
    for (int32_t level = 0; level < r.level_count; ++level) {
        if (!make_array(lc, r.sb_expansions[level], 256))
            return false;
        for (size_t b = 0; b < 256; ++b) {
            uint16_t row;
            if (!row_of_byte(r, static_cast<unsigned char>(b), row))
                continue;
            uint16_t weight = r.level_weights[level][row];
            if (weight & coll_expands)
                r.sb_expansions[level][b] = &r.expansions[weight & coll_value_bits];
        }
    }
    return true;
}

bool derive_contraction_starts(locale_rec *lc, collate_rec &r) {
    if (r.contraction_count == 0)
        return true;
    if (!make_array(lc, r.contraction_start, 256))
        return false;
    for (int32_t i = 0; i < r.contraction_count; ++i)
        if (r.contractions[i].chars[0] <= 0xff)
            r.contraction_start[r.contractions[i].chars[0]] = 1;
    return true;
}

bool read_collation(locale_rec *lc, FILE *file) {
    collate_rec &r = lc->collate_cat;
    bool rows_follow;
    section_counts n;
    if (!read_method(lc, file, rows_follow))
        return false;
    if (!rows_follow)
        return true;
    if (!read_table(lc, file, r.row_table) || !read_counts(lc, file, n))
        return false;
    r.code_order_form = static_cast<int32_t>(n.code_order_form);
    r.max_row = static_cast<int32_t>(n.max_row);
    r.level_count = static_cast<int32_t>(n.levels);
    r.max_weight = static_cast<uint32_t>(n.max_weight);
    if (!read_directions(lc, file, r) || !read_contractions(lc, file, r, n.contractions) ||
        !read_expansions(lc, file, r, n.expansions) || !read_rows(lc, file, r))
        return false;
    if (!table_rows_fit(r))
        return refuse(lc, GLS_ERR_MALFORMED);
    if (!make_order_tables(lc))
        return false;
    if (r.code_order_form != 1 && !analyse_rows(lc))
        return false;
    if (!derive_byte_expansions(lc, r) || !derive_contraction_starts(lc, r))
        return false;
    set_engine_error(lc, GLS_OK); // the word says how this went, whatever stood there before
    return true;
}

} // namespace

int32_t read_collate(locale_rec *lc, FILE *file) {
    if (read_collation(lc, file))
        return 0;
    lc->collate_cat.coll_method = COLL_NONE;
    return -1;
}

namespace kestrion {

bool empty_collate(locale_rec *lc) {
    lc->collate_cat = {};
    lc->max_expansion = 1.0;
    return make_empty_table(lc, lc->collate_cat.row_table);
}

void free_collate(locale_rec *lc) {
    collate_rec &r = lc->collate_cat;
    free_analysis(r);
    free_order_tables(r);
    for (int32_t i = 0; i < r.expansion_count; ++i)
        _gl_free_ptr(r.expansions[i].chars);
    for (int32_t i = 0; i < r.contraction_count; ++i)
        _gl_free_ptr(r.contractions[i].chars);
    for (int32_t level = 0; level < gl_level_limit; ++level) {
        _gl_free_ptr(r.level_weights[level]);
        _gl_free_ptr(r.sb_expansions[level]);
    }
    _gl_free_ptr(r.expansions);
    _gl_free_ptr(r.contractions);
    _gl_free_ptr(r.contraction_start);
    _gl_free_multi(r.row_table);
    r = {};
}

} // namespace kestrion
