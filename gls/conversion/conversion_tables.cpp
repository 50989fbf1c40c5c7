#include "gls/conversion/conversion_tables.h"

#include <kestrion/ext_funcs.h>

#include <bit>
#include <initializer_list>

namespace kestrion {

namespace {

constexpr size_t largest_base = 0xffff; // units that a 32-bit entry can name
constexpr uint32_t utf8_first_lead = 0xe0;
constexpr uint32_t utf8_first_trail = 0x80;

const unsigned char *datum_of(const multi_arr *table, const multi_node *node, uint32_t byte) {
    return node->data == nullptr ? table->default_datum
                                 : node->data + (static_cast<size_t>(byte) << table->shift);
}

struct state_range {
    uint32_t first;  // byte value
    uint32_t shared; // the high bits that all bytes share
    uint32_t size() const { return gl_bytes - shared; }
    uint32_t units() const { return size() / state_unit; }
};

// The bytes that a node goes on with. Those of UTF-8 keep their quarter whole, which rows[] needs.
state_range range_of(const multi_node *node, bool root) {
    uint32_t first = gl_bytes, last = 0;
    for (uint32_t b = 0; node->flag_bytes != nullptr && b < gl_bytes; ++b) {
        if (node->flag_bytes[b] != MULTI_NONE) {
            first = first < b ? first : b;
            last = b;
        }
    }
    for (const uint32_t shared : {0xf0u, 0xc0u}) {
        if (!root && first <= last && ((first ^ last) & shared) == 0 &&
            (shared == 0xc0 || (first & 0xc0) != utf8_first_trail))
            return {first & shared, shared};
    }
    return {0, 0};
}

size_t count_units(const multi_node *node, bool root) {
    size_t units = range_of(node, root).units();
    for (int b = 0; node->child_count != 0 && b < gl_bytes; ++b)
        if (node->flag_bytes[b] == MULTI_CHILD)
            units += count_units(node->children[node->child_slot[b]], false);
    return units;
}

// Lays the states out, a node before its children.
template <typename Entry> struct layout {
    const multi_arr *table;
    Entry *entries;
    bool only_zero_ends = true;
    uint32_t used_units = 0;

    Entry finished(const multi_node *node, uint32_t byte) {
        const unsigned char *datum = datum_of(table, node, byte);
        if (datum[0] < CV_FIRST_MAPPED)
            return absent_entry;
        if ((datum[0] & CV_TERMINATOR) != 0 && (node != table->root || byte != 0))
            only_zero_ends = false;
        Entry entry = datum[0];
        for (unsigned i = 1; i <= (datum[0] & CV_LENGTH); ++i)
            entry |= static_cast<Entry>(datum[i]) << (8 * i);
        return entry;
    }

    // Returns the entry that leads to the node.
    Entry place(const multi_node *node, bool root) {
        const state_range range = range_of(node, root);
        const uint32_t base = used_units;
        used_units += range.units() + (root ? empty_units : 0);
        Entry *own = entries + static_cast<size_t>(base) * state_unit;
        for (uint32_t i = 0; i < range.size(); ++i) {
            const uint32_t b = range.first + i;
            const unsigned char flag = node->flag_bytes == nullptr ? 0 : node->flag_bytes[b];
            own[i] = flag == MULTI_END     ? finished(node, b)
                     : flag == MULTI_CHILD ? place(node->children[node->child_slot[b]], false)
                                           : absent_entry;
        }
        return base << state_base_shift | range.shared >> 4 << state_shared_shift |
               range.first >> 4 << state_prefix_shift;
    }
};

template <typename Entry> bool is_state(Entry entry) {
    return (entry & 0xff) == 0 && entry != absent_entry;
}

template <typename Entry> bool is_utf8_trail_state(Entry entry) {
    constexpr uint32_t wanted = 0xcu << state_shared_shift | 0x8u << state_prefix_shift;
    return is_state(entry) && (static_cast<uint32_t>(entry) & 0xff00) == wanted;
}

template <typename Entry> void fill_rows(fast_tables *fast, const Entry *entries) {
    for (uint32_t lead = 0; lead < utf8_leads; ++lead) {
        const Entry second = entries[utf8_first_lead + lead];
        for (uint32_t i = 0; i < utf8_trails; ++i) {
            uint32_t *row = &fast->rows[lead * utf8_trails + i];
            *row = empty_unit * state_unit;
            if (!is_utf8_trail_state(second))
                continue;
            const Entry third = entries[first_entry(second) + i];
            if (is_utf8_trail_state(third)) {
                *row = first_entry(third);
                fast->has_rows = true;
            }
        }
    }
}

template <typename Entry> bool all_ascii_stays(const Entry *root) {
    for (Entry b = 0; b < 0x80; ++b) {
        const Entry expected = (b << 8 | 1 | CV_MAPPED | (b == 0 ? CV_TERMINATOR : 0));
        if (root[b] != expected)
            return false;
    }
    return true;
}

template <typename Entry> void lay_out(const multi_arr *table, fast_tables *fast) {
    auto *entries = entries_of<Entry>(fast);
    layout<Entry> plan{table, entries};
    plan.place(table->root, true);
    for (uint32_t i = 0; i < empty_units * state_unit; ++i)
        entries[empty_unit * state_unit + i] = absent_entry;
    fast->only_zero_ends = plan.only_zero_ends;
    fast->keeps_ascii = all_ascii_stays(entries);
    fill_rows(fast, entries);
}

} // namespace

void make_single_byte_tables(cv_rec *cv) {
    auto *fast = static_cast<single_tables *>(_gl_ext_calloc(1, sizeof(single_tables)));
    if (fast == nullptr)
        return;
    fast->head.kind = table_form::single;
    fast->head.only_zero_ends = true;
    uint32_t first_odd = gl_bytes, last_odd = 0;
    for (uint32_t b = 0; b < gl_bytes; ++b) {
        const unsigned char *datum = datum_of(cv->table_normal, cv->table_normal->root, b);
        const bool mapped = datum[0] >= CV_FIRST_MAPPED;
        fast->target[b] = datum[1];
        fast->control[b] =
            mapped ? static_cast<unsigned char>(datum[0] & CV_INEXACT) : single_unmapped;
        if (mapped && (datum[0] & CV_TERMINATOR) != 0 && b != 0)
            fast->head.only_zero_ends = false;
        if (fast->control[b] != 0 || datum[1] != b) {
            first_odd = first_odd < b ? first_odd : b;
            last_odd = b;
        }
    }
    if (first_odd > last_odd) // none; any byte may do as one, since its entry is right
        first_odd = last_odd = 0;
    fast->first_odd = static_cast<unsigned char>(first_odd);
    fast->odd_span = static_cast<unsigned char>(last_odd - first_odd);
    cv->fast = fast;
}

void make_flat_tables(cv_rec *cv) {
    const multi_arr *table = cv->table_normal;
    if constexpr (std::endian::native != std::endian::little)
        return; // entries hold target bytes, and words of text are taken apart, in this order
    if (table->max_len > gl_char_bytes || table->min_len != 1)
        return;
    const bool wide = cv->target_max_len > 3;
    const size_t units = count_units(table->root, true) + empty_units;
    const size_t bytes = units * state_unit * (wide ? sizeof(uint64_t) : sizeof(uint32_t));
    if (units > largest_base)
        return;
    auto *fast = static_cast<fast_tables *>(_gl_ext_malloc(offset_of_entries() + bytes));
    if (fast == nullptr)
        return;
    fast->kind = wide ? table_form::wide : table_form::narrow;
    fast->has_rows = false;
    wide ? lay_out<uint64_t>(table, fast) : lay_out<uint32_t>(table, fast);
    cv->fast = fast;
}

void free_fast_tables(cv_rec *cv) {
    _gl_ext_free(cv->fast);
    cv->fast = nullptr;
}

} // namespace kestrion
