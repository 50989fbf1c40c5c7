#include "gls/collation/order_tables.h"

#include "gls/base/arrays.h"
#include "gls/multi/multi_tree.h"
#include "gls/text/char_walk.h"

#include <string.h>

using namespace kestrion;

namespace {

// ---- Rows of single bytes

void list_byte_rows(const collate_rec &r, order_tables &o) {
    uint16_t default_row;
    memcpy(&default_row, r.row_table->default_datum, sizeof default_row);
    int32_t ascii = 0;
    for (size_t byte = 0; byte < 256; ++byte) {
        const bool known = o.walk[byte].next == multi_end;
        o.byte_rows[byte] = known ? o.walk[byte].datum : default_row;
        ascii += known && byte > 0 && byte < 0x80;
    }
    o.ascii_rows = ascii == 0x7f;
}

// ---- Expansions

bool list_expansions(locale_rec *lc, order_tables &o) {
    const collate_rec &r = lc->collate_cat;
    size_t total = 0;
    if (!make_array(lc, o.expansion_starts, static_cast<size_t>(r.expansion_count) + 1))
        return false;
    for (int32_t i = 0; i < r.expansion_count; ++i) {
        o.expansion_starts[i] = static_cast<uint32_t>(total);
        total += static_cast<size_t>(r.expansions[i].length);
    }
    o.expansion_starts[r.expansion_count] = static_cast<uint32_t>(total);
    if (total == 0)
        return true;
    if (!make_array(lc, o.expansion_units, total))
        return false;
    coll_unit *unit = o.expansion_units;
    for (int32_t i = 0; i < r.expansion_count; ++i)
        for (int32_t k = 0; k < r.expansions[i].length; ++k)
            *unit++ = unit_of(r, r.expansions[i].chars[k]);
    for (size_t k = 0; k < total; ++k)
        o.any_dead_end |= o.expansion_units[k].step == 0;
    return true;
}

// Takes the expansions of a level apart from the outside: one that no other one refers to is taken
// away with its references. What is left in the end lies on a cycle, which no walk would leave.
struct expansion_order {
    const collate_rec &r;
    int32_t *references; // by expansion: how often the others refer to it
    int32_t *free_ones;  // stack of those without references

    // Calls `visit` with each expansion that expansion `i` refers to.
    template <class Visit> void each_reference(int32_t level, int32_t i, Visit visit) const {
        const order_tables &o = *r.order;
        for (uint32_t k = o.expansion_starts[i]; k < o.expansion_starts[i + 1]; ++k) {
            const coll_unit &unit = o.expansion_units[k];
            const uint16_t weight = r.level_weights[level][unit.row];
            if (unit.step != 0 && weight & coll_expands)
                visit(weight & coll_value_bits);
        }
    }

    bool ends(int32_t level) const {
        memset(references, 0, static_cast<size_t>(r.expansion_count) * sizeof *references);
        for (int32_t i = 0; i < r.expansion_count; ++i)
            each_reference(level, i, [&](int32_t other) { ++references[other]; });
        int32_t waiting = 0;
        for (int32_t i = 0; i < r.expansion_count; ++i)
            if (references[i] == 0)
                free_ones[waiting++] = i;
        int32_t taken = 0;
        for (; waiting > 0; ++taken)
            each_reference(level, free_ones[--waiting], [&](int32_t other) {
                if (--references[other] == 0)
                    free_ones[waiting++] = other;
            });
        return taken == r.expansion_count;
    }
};

bool expansions_end(locale_rec *lc) {
    const collate_rec &r = lc->collate_cat;
    int32_t *work;
    if (r.expansion_count == 0)
        return true;
    if (!make_array(lc, work, 2 * static_cast<size_t>(r.expansion_count)))
        return false;
    const expansion_order order = {r, work, work + r.expansion_count};
    bool end = true;
    for (int32_t level = 0; end && level < r.level_count; ++level)
        end = order.ends(level);
    _gl_free_ptr(work);
    return end || refuse(lc, GLS_ERR_MALFORMED);
}

// ---- Contractions

// Merges two sorted runs of contraction numbers; equal first characters keep the table's order.
void merge_by_start(const collate_rec &r, const int32_t *from, int32_t *to, int32_t low,
                    int32_t middle, int32_t high) {
    int32_t left = low;
    int32_t right = middle;
    for (int32_t at = low; at < high; ++at) {
        const bool take_right =
            left == middle || (right < high && r.contractions[from[right]].chars[0] <
                                                   r.contractions[from[left]].chars[0]);
        to[at] = take_right ? from[right++] : from[left++];
    }
}

bool sort_contractions(locale_rec *lc, order_tables &o) {
    const collate_rec &r = lc->collate_cat;
    const int32_t count = r.contraction_count;
    int32_t *spare;
    if (count == 0)
        return true;
    if (!make_array(lc, o.contractions_by_start, static_cast<size_t>(count)) ||
        !make_array(lc, spare, static_cast<size_t>(count)))
        return false;
    for (int32_t i = 0; i < count; ++i)
        o.contractions_by_start[i] = i;
    for (int32_t run = 1; run < count; run *= 2) {
        for (int32_t low = 0; low < count; low += 2 * run) {
            const int32_t middle = low + run < count ? low + run : count;
            const int32_t high = middle + run < count ? middle + run : count;
            merge_by_start(r, o.contractions_by_start, spare, low, middle, high);
        }
        int32_t *const sorted = spare;
        spare = o.contractions_by_start;
        o.contractions_by_start = sorted;
    }
    _gl_free_ptr(spare);
    return true;
}

void mark_contractions(const collate_rec &r, order_tables &o) {
    for (int32_t i = 0; i < r.contraction_count; ++i) {
        const coll_contraction &c = r.contractions[i];
        for (int32_t k = 0; k < c.length; ++k) {
            const coll_unit unit = unit_of(r, c.chars[k]);
            const int facts = (k == 0 ? opens_contraction : inside_contraction) |
                              (k + 1 < c.length ? continues_contraction : 0);
            if (unit.step != 0)
                o.row_facts[unit.row] |= static_cast<uint8_t>(facts);
            if (c.chars[k] <= 0xff)
                o.row_facts[o.byte_rows[c.chars[k]]] |= static_cast<uint8_t>(facts);
        }
    }
}

// ---- First weights

bool list_first_weights(locale_rec *lc, order_tables &o) {
    const collate_rec &r = lc->collate_cat;
    if (!make_array(lc, o.first_weights, static_cast<size_t>(r.max_row) + 1))
        return false;
    if (r.level_count == 0 || r.level_order[0] != coll_forward)
        return true;
    for (int32_t row = 0; row <= r.max_row; ++row) {
        const uint16_t weight = r.level_weights[0][row];
        const bool settles =
            o.row_facts[row] == 0 && weight != coll_ignored && !(weight & coll_expands);
        o.first_weights[row] = settles ? weight : 0;
    }
    return true;
}

bool fill_order_tables(locale_rec *lc, order_tables &o) {
    const collate_rec &r = lc->collate_cat;
    o.walk = r.row_table->walk;
    for (int32_t level = 0; level < r.level_count; ++level)
        o.any_backward |= r.level_order[level] != coll_forward;
    list_byte_rows(r, o);
    if (!make_array(lc, o.row_facts, static_cast<size_t>(r.max_row) + 1))
        return false;
    mark_contractions(r, o);
    return sort_contractions(lc, o) && list_first_weights(lc, o) && list_expansions(lc, o) &&
           expansions_end(lc);
}

// Whether two tables have the same characters below two nodes.
bool same_characters(const multi_node *a, const multi_node *b) {
    if (a->flag_bytes == nullptr || b->flag_bytes == nullptr)
        return a->flag_bytes == b->flag_bytes;
    if (memcmp(a->flag_bytes, b->flag_bytes, gl_bytes) != 0)
        return false;
    for (size_t byte = 0; byte < gl_bytes; ++byte)
        if (a->flag_bytes[byte] == MULTI_CHILD &&
            !same_characters(multi_child_at(a, static_cast<unsigned char>(byte)),
                             multi_child_at(b, static_cast<unsigned char>(byte))))
            return false;
    return true;
}

} // namespace

namespace kestrion {

bool make_order_tables(locale_rec *lc) {
    collate_rec &r = lc->collate_cat;
    if (multi_flatten(r.row_table) != 0)
        return refuse(lc, GLS_ERR_NO_MEMORY);
    return make_array(lc, r.order, 1) && fill_order_tables(lc, *r.order);
}

void free_order_tables(collate_rec &r) {
    if (r.order == nullptr)
        return;
    _gl_free_ptr(r.order->row_facts);
    _gl_free_ptr(r.order->first_weights);
    _gl_free_ptr(r.order->expansion_units);
    _gl_free_ptr(r.order->expansion_starts);
    _gl_free_ptr(r.order->contractions_by_start);
    free_array(r.order);
}

const multi_step *walk_of_both(const locale_rec *lc) {
    const multi_arr *classes = lc->ctype_cat.class_table;
    const collate_rec &r = lc->collate_cat;
    return r.order != nullptr && classes != nullptr &&
                   same_characters(classes->root, r.row_table->root)
               ? r.order->walk
               : nullptr;
}

coll_unit unit_of(const collate_rec &r, gl_wchar wc) {
    const multi_step step = walk_wide(r.order->walk, wc, r.row_table->min_len);
    return {wc, step.datum, static_cast<uint8_t>(step.next == multi_end)};
}

} // namespace kestrion
