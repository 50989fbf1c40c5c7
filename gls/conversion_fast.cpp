#include "gls/conversion_fast.h"

#include "gls/ext_funcs.h"
#include "gls/multi.h"

#include <limits.h>
#include <string.h>

namespace {

constexpr uint32_t state_unit = 64; // entries
constexpr uint32_t root_units = 4;
constexpr uint32_t empty_unit = root_units; // behind the root: leads to itself alone
constexpr uint32_t state_quarter_shift = 8;
constexpr uint32_t state_quarter_mark = 3u << 10;
constexpr uint32_t state_base_shift = 12;
// No such character, or no mapping: a state that never ends one.
constexpr uint32_t absent = empty_unit << state_base_shift | state_quarter_mark;
constexpr uint32_t largest_base = (1u << 20) - 1;  // units that a 32-bit entry can name
constexpr size_t largest_table = size_t{16} << 20; // bytes: beyond it the tree is the smaller evil
constexpr int32_t widest_character = 4;
constexpr uint32_t quarters = 4;
constexpr int32_t block = 8; // bytes of a run
constexpr uint64_t high_bits = 0x8080808080808080u;
constexpr int32_t single_block = 32; // bytes that a single-byte pair does at once

// The three-byte form of UTF-8, as its bytes lie in a little-endian word.
constexpr uint32_t utf8_three_mask = 0xc0c0f0;
constexpr uint32_t utf8_three = 0x8080e0;
constexpr uint32_t utf8_first_lead = 0xe0;
constexpr uint32_t utf8_leads = 16;
constexpr uint32_t utf8_trail_quarter = 2;

enum class form : unsigned char { single, narrow, wide };

struct fast_tables {
    form kind;
    bool only_zero_ends; // no character but a zero byte ends a terminated text
    bool keeps_ascii;    // bytes below 80 stay as they are
    bool has_rows;
    uint32_t rows[utf8_leads * state_unit]; // first entry by the first two bytes
};

// What the record of a single-byte pair has in place of the rows and entries above.
struct single_tables {
    fast_tables head;
    unsigned char first_odd; // the bytes that don't stay as they are lie from here
    unsigned char odd_span;  // to here: last less first
    unsigned char target[gl_bytes];
    unsigned char control[gl_bytes]; // CV_INEXACT, single_unmapped, or 0
};

constexpr unsigned char single_unmapped = 1;

size_t offset_of_entries() { return (sizeof(fast_tables) + 7) / 8 * 8; }

template <typename Entry> Entry *entries_of(fast_tables *fast) {
    return reinterpret_cast<Entry *>(reinterpret_cast<unsigned char *>(fast) + offset_of_entries());
}
template <typename Entry> const Entry *entries_of(const fast_tables *fast) {
    return entries_of<Entry>(const_cast<fast_tables *>(fast));
}

const unsigned char *datum_of(const multi_arr *table, const multi_node *node, uint32_t byte) {
    return node->data == nullptr ? table->default_datum
                                 : node->data + (static_cast<size_t>(byte) << table->shift);
}

struct state_range {
    uint32_t first; // byte value
    uint32_t units; // 1 or 4
};

// The bytes that a node goes on with, as one quarter of all bytes where that is enough.
state_range range_of(const multi_node *node, bool root) {
    uint32_t used = 0;
    for (uint32_t b = 0; node->flag_bytes != nullptr && b < gl_bytes; ++b)
        if (node->flag_bytes[b] != MULTI_NONE)
            used |= 1u << (b / state_unit);
    for (uint32_t quarter = 0; quarter < quarters && !root; ++quarter)
        if (used == 1u << quarter)
            return {quarter * state_unit, 1};
    return {0, quarters};
}

size_t count_units(const multi_node *node, bool root) {
    size_t units = range_of(node, root).units;
    for (int b = 0; node->flag_bytes != nullptr && b < gl_bytes; ++b)
        if (node->flag_bytes[b] == MULTI_CHILD)
            units += count_units(node->children[node->child_slot[b]], false);
    return units;
}

// Lays the states out, a node in front of its children.
template <typename Entry> struct layout {
    const multi_arr *table;
    Entry *entries;
    bool only_zero_ends = true;
    uint32_t used_units = 0;

    Entry finished(const multi_node *node, uint32_t byte) {
        const unsigned char *datum = datum_of(table, node, byte);
        if (datum[0] < CV_FIRST_MAPPED)
            return absent;
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
        used_units += root ? root_units + 1 : range.units; // the empty unit lies behind the root
        Entry *own = entries + static_cast<size_t>(base) * state_unit;
        for (uint32_t i = 0; i < range.units * state_unit; ++i) {
            const uint32_t b = range.first + i;
            const unsigned char flag = node->flag_bytes == nullptr ? 0 : node->flag_bytes[b];
            own[i] = flag == MULTI_END     ? finished(node, b)
                     : flag == MULTI_CHILD ? place(node->children[node->child_slot[b]], false)
                                           : absent;
        }
        const uint32_t quarter = range.first / state_unit << state_quarter_shift;
        return base << state_base_shift | (range.units == 1 ? state_quarter_mark | quarter : 0);
    }
};

template <typename Entry> bool is_state(Entry entry) {
    return (entry & 0xff) == 0 && entry != absent;
}

template <typename Entry> uint32_t first_entry(Entry state) {
    return static_cast<uint32_t>(state) >> state_base_shift << (31 - __builtin_clz(state_unit));
}

template <typename Entry> bool is_utf8_trail_state(Entry entry) {
    constexpr uint32_t wanted = state_quarter_mark | utf8_trail_quarter << state_quarter_shift;
    return is_state(entry) && (static_cast<uint32_t>(entry) & 0xf00) == wanted;
}

template <typename Entry> void fill_rows(fast_tables *fast, const Entry *entries) {
    for (uint32_t lead = 0; lead < utf8_leads; ++lead) {
        const Entry second = entries[utf8_first_lead + lead];
        for (uint32_t i = 0; i < state_unit; ++i) {
            uint32_t *row = &fast->rows[lead * state_unit + i];
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
    for (uint32_t i = 0; i < state_unit; ++i)
        entries[empty_unit * state_unit + i] = absent;
    fast->only_zero_ends = plan.only_zero_ends;
    fast->keeps_ascii = all_ascii_stays(entries);
    fill_rows(fast, entries);
}

// A piece of text and the space for its output. Loops keep copies, so that their stores cannot be
// taken for changes of it.
struct piece {
    const unsigned char *source;
    size_t length;         // of the source
    unsigned char *target; // null: measuring
    size_t room;
    size_t used = 0;    // of the source
    size_t written = 0; // of the target
};

// Each returns the control bits that it met.
template <bool Storing> uint32_t run_single(const single_tables &fast, piece &text) {
    const unsigned char *__restrict source = text.source;
    unsigned char *__restrict target = text.target;
    const size_t end = (text.length < text.room ? text.length : text.room) / single_block;
    uint32_t controls = 0;
    for (size_t blocks = 0; blocks < end; ++blocks, source += single_block) {
        unsigned char odd = 0;
        for (int i = 0; i < single_block; ++i)
            odd |= static_cast<unsigned char>(source[i] - fast.first_odd) <= fast.odd_span;
        if (odd == 0) {
            if (Storing)
                memcpy(target, source, single_block);
        } else {
            unsigned char met = 0;
            for (int i = 0; i < single_block; ++i) {
                if (Storing)
                    target[i] = fast.target[source[i]];
                met |= fast.control[source[i]];
            }
            if ((met & single_unmapped) != 0)
                break;
            controls |= met;
        }
        if (Storing)
            target += single_block;
    }
    text.used = text.written = static_cast<size_t>(source - text.source);
    return controls;
}

// The entry of the character at `text`, with its length; 0 when there is none.
template <typename Entry>
inline Entry character(const Entry *__restrict entries, const unsigned char *text, size_t &used) {
    Entry entry = entries[text[0]];
#pragma GCC unroll 4
    for (size_t length = 1; length <= widest_character; ++length) {
        if ((entry & 0xff) != 0) {
            used = length;
            return entry;
        }
        const auto state = static_cast<uint32_t>(entry);
        const uint32_t in_state = text[length] ^ (state >> 2 & 0xc0);
        if ((in_state & state >> 4 & 0xc0) != 0)
            return 0;
        entry = entries[first_entry(state) + in_state];
    }
    return 0;
}

// Copies the ASCII at the start of eight bytes and returns how many there are.
template <bool Storing> size_t ascii_run(const unsigned char *source, unsigned char *target) {
    uint64_t bytes;
    memcpy(&bytes, source, sizeof bytes);
    if (Storing)
        memcpy(target, &bytes, sizeof bytes);
    const uint64_t high = bytes & high_bits;
    return high == 0 ? block : static_cast<size_t>(__builtin_ctzll(high)) / 8;
}

template <typename Entry>
inline Entry utf8_three_byte_character(const fast_tables &fast, const Entry *__restrict entries,
                                       const unsigned char *text) {
    uint32_t bytes;
    memcpy(&bytes, text, sizeof bytes);
    if ((bytes & utf8_three_mask) != utf8_three)
        return 0;
    const uint32_t row = (bytes & 0xf) << 6 | (bytes >> 8 & 0x3f);
    return entries[fast.rows[row] + (bytes >> 16 & 0x3f)];
}

template <typename Entry, bool Storing, bool Rows>
uint32_t run_flat(const fast_tables &fast, piece &text) {
    const Entry *__restrict entries = entries_of<Entry>(&fast);
    const unsigned char *source = text.source;
    const unsigned char *const source_end = source + text.length - block;
    unsigned char *__restrict target = text.target;
    const size_t last_written = text.room - block;
    size_t written = 0;
    uint32_t controls = 0;
    while (source < source_end && written <= last_written) {
        if (fast.keeps_ascii && source[0] < 0x80) {
            const size_t run = ascii_run<Storing>(source, target + written);
            source += run;
            written += run;
            continue;
        }
        size_t used = 3;
        Entry entry = Rows ? utf8_three_byte_character(fast, entries, source) : 0;
        if ((entry & 0xff) == 0) {
            entry = character(entries, source, used);
            if (entry == 0)
                break;
        }
        if (Storing) {
            const auto bytes = static_cast<uint32_t>(entry >> 8);
            memcpy(target + written, &bytes, sizeof bytes); // the slack takes what is too many
        }
        controls |= static_cast<uint32_t>(entry);
        source += used;
        written += entry & CV_LENGTH;
    }
    text.used = static_cast<size_t>(source - text.source);
    text.written = written;
    return controls;
}

template <typename Entry, bool Storing> uint32_t run_flat(const fast_tables &fast, piece &text) {
    return fast.has_rows ? run_flat<Entry, Storing, true>(fast, text)
                         : run_flat<Entry, Storing, false>(fast, text);
}

template <bool Storing> uint32_t run(const fast_tables *fast, piece &text) {
    switch (fast->kind) {
    case form::single:
        return run_single<Storing>(*reinterpret_cast<const single_tables *>(fast), text);
    case form::narrow:
        return run_flat<uint32_t, Storing>(*fast, text);
    case form::wide:
        return run_flat<uint64_t, Storing>(*fast, text);
    }
    return 0;
}

bool overlap(const piece &text) {
    const auto source = reinterpret_cast<uintptr_t>(text.source);
    const auto target = reinterpret_cast<uintptr_t>(text.target);
    return text.target != nullptr && source < target + text.room && target < source + text.length;
}

} // namespace

namespace kestrion {

void make_single_byte_tables(cv_rec *cv) {
    auto *fast = static_cast<single_tables *>(_gl_ext_calloc(1, sizeof(single_tables)));
    if (fast == nullptr)
        return;
    fast->head.kind = form::single;
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
    if (table->max_len > widest_character || table->min_len != 1)
        return;
    const bool wide = cv->target_max_len > 3;
    const size_t units = count_units(table->root, true) + 1;
    const size_t bytes = units * state_unit * (wide ? sizeof(uint64_t) : sizeof(uint32_t));
    if (units > largest_base || bytes > largest_table)
        return;
    auto *fast = static_cast<fast_tables *>(_gl_ext_malloc(offset_of_entries() + bytes));
    if (fast == nullptr)
        return;
    fast->kind = wide ? form::wide : form::narrow;
    fast->has_rows = false;
    wide ? lay_out<uint64_t>(table, fast) : lay_out<uint32_t>(table, fast);
    cv->fast = fast;
}

void free_fast_tables(cv_rec *cv) {
    _gl_ext_free(cv->fast);
    cv->fast = nullptr;
}

void convert_fast(const cv_rec *cv, const char **source, int32_t *source_length, char **target,
                  int32_t *room, int32_t *lossy) {
    const auto *fast = static_cast<const fast_tables *>(cv->fast);
    if (fast == nullptr || *room < 2 * block || (source_length == nullptr && !fast->only_zero_ends))
        return;
    const int64_t length = source_length != nullptr
                               ? *source_length
                               : static_cast<int64_t>(strnlen(*source, INT32_MAX));
    if (length < 2 * block)
        return;
    piece text = {.source = reinterpret_cast<const unsigned char *>(*source),
                  .length = static_cast<size_t>(length),
                  .target =
                      target != nullptr ? reinterpret_cast<unsigned char *>(*target) : nullptr,
                  .room = static_cast<size_t>(*room)};
    if (overlap(text)) // blocks would be read behind what was written of the last
        return;
    const uint32_t controls = target != nullptr ? run<true>(fast, text) : run<false>(fast, text);
    if ((controls & CV_INEXACT) != 0)
        *lossy = 1;
    *source += text.used;
    if (source_length != nullptr)
        *source_length -= static_cast<int32_t>(text.used);
    if (target != nullptr)
        *target += text.written;
    *room -= static_cast<int32_t>(text.written);
}

} // namespace kestrion
