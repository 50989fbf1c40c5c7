#include "gls/conversion_fast.h"

#include "gls/ext_funcs.h"
#include "gls/multi.h"

#include <limits.h>
#include <string.h>

namespace {

constexpr uint32_t state_unit = 64;                // entries
constexpr uint32_t state_quarter = 1u << 8;        // the state has one quarter of the bytes
constexpr uint32_t state_first_shift = 9;          // which quarter
constexpr uint32_t state_base_shift = 11;          // base of the state
constexpr uint32_t largest_base = (1u << 21) - 1;  // units that a 32-bit entry can name
constexpr size_t largest_table = size_t{16} << 20; // bytes: beyond it the tree is the smaller evil
constexpr int32_t widest_character = 4;
constexpr int32_t block = 8; // bytes of a run
constexpr uint64_t high_bits = 0x8080808080808080u;

struct fast_tables {
    bool wide;           // 64-bit entries
    bool ascii_identity; // bytes 01 to 7F stay as they are and end characters
    unsigned char *entries;
};

struct quarter_range {
    uint32_t first; // of the quarters in use
    uint32_t count; // 1 or 4
};

// The bytes that a node goes on with, as one quarter of all bytes where that is enough.
quarter_range range_of(const multi_node *node, bool root) {
    if (root)
        return {0, 4};
    uint32_t used = 0;
    for (uint32_t b = 0; node->flag_bytes != nullptr && b < gl_bytes; ++b)
        if (node->flag_bytes[b] != MULTI_NONE)
            used |= 1u << (b / state_unit);
    for (uint32_t quarter = 0; quarter < 4; ++quarter)
        if (used == 1u << quarter)
            return {quarter, 1};
    return {0, 4};
}

size_t count_units(const multi_node *node, bool root) {
    size_t units = range_of(node, root).count;
    for (int b = 0; node->flag_bytes != nullptr && b < gl_bytes; ++b)
        if (node->flag_bytes[b] == MULTI_CHILD)
            units += count_units(node->children[node->child_slot[b]], false);
    return units;
}

// Lays the states out, a node in front of its children.
template <typename Entry> struct layout {
    const multi_arr *table;
    Entry *entries;
    uint32_t used_units = 0;

    Entry finished(const multi_node *node, uint32_t byte) const {
        const unsigned char *datum = node->data == nullptr
                                         ? table->default_datum
                                         : node->data + (static_cast<size_t>(byte) << table->shift);
        if (datum[0] < CV_FIRST_MAPPED)
            return 0;
        Entry entry = datum[0];
        for (unsigned i = 1; i <= (datum[0] & CV_LENGTH); ++i)
            entry |= static_cast<Entry>(datum[i]) << (8 * i);
        return entry;
    }

    // Returns the entry that leads to the node.
    Entry place(const multi_node *node, bool root) {
        const quarter_range range = range_of(node, root);
        const uint32_t base = used_units;
        used_units += range.count;
        Entry *own = entries + static_cast<size_t>(base) * state_unit;
        const uint32_t first_byte = range.first * state_unit;
        for (uint32_t i = 0; i < range.count * state_unit; ++i) {
            const uint32_t b = first_byte + i;
            const unsigned char flag = node->flag_bytes == nullptr ? 0 : node->flag_bytes[b];
            own[i] = flag == MULTI_END     ? finished(node, b)
                     : flag == MULTI_CHILD ? place(node->children[node->child_slot[b]], false)
                                           : 0;
        }
        return static_cast<Entry>(base) << state_base_shift |
               (range.count == 1 ? state_quarter | range.first << state_first_shift : 0u);
    }
};

template <typename Entry> bool keeps_ascii(const Entry *root) {
    for (Entry b = 1; b < 0x80; ++b)
        if ((root[b] & ~Entry{CV_MAPPED}) != (Entry{1} | b << 8) || (root[b] & CV_MAPPED) == 0)
            return false;
    return true;
}

// Where the walk stands. The pointers are the loop's own, so that stores cannot be taken for
// changes of them.
struct cursor {
    const unsigned char *source;
    const unsigned char *source_end; // no character begins here or behind it
    unsigned char *target;
    int64_t room;  // bytes that may still be written without a test, less the slack of one block
    uint32_t stop; // control bits at which the walk ends
};

bool eight_ascii(const unsigned char *text) {
    uint64_t bytes;
    memcpy(&bytes, text, sizeof bytes);
    return (bytes & high_bits) == 0 &&
           ((bytes - 0x0101010101010101u) & ~bytes & high_bits) == 0; // no terminator among them
}

// The entry of the character at `text`, with its length; 0 when there is none.
template <typename Entry>
inline Entry character(const Entry *__restrict entries, const unsigned char *text, int32_t &used) {
    Entry entry = entries[text[0]];
    used = 1;
    while ((entry & 0xff) == 0 && entry != 0 && used < widest_character) {
        const uint32_t byte = text[used++];
        const auto base = static_cast<size_t>(entry >> state_base_shift) * state_unit;
        if ((entry & state_quarter) != 0) {
            if (byte / state_unit != (entry >> state_first_shift & 3))
                return 0;
            entry = entries[base + byte % state_unit];
        } else {
            entry = entries[base + byte];
        }
    }
    return (entry & 0xff) == 0 ? 0 : entry;
}

template <typename Entry, bool Storing>
uint32_t run(const fast_tables &fast, const Entry *__restrict entries, cursor &at) {
    uint32_t controls = 0;
    const unsigned char *source = at.source;
    unsigned char *__restrict target = at.target;
    int64_t room = at.room;
    while (source < at.source_end && room >= 0) {
        if (fast.ascii_identity && source[0] < 0x80 && eight_ascii(source)) {
            if (Storing) {
                memcpy(target, source, block);
                target += block;
            }
            source += block;
            room -= block;
            continue;
        }
        int32_t used;
        const Entry entry = character(entries, source, used);
        if (entry == 0 || (entry & at.stop) != 0)
            break;
        const uint32_t count = static_cast<uint32_t>(entry) & CV_LENGTH;
        if (Storing) {
            const auto bytes = static_cast<uint32_t>(entry >> 8);
            memcpy(target, &bytes, sizeof bytes); // the slack takes what is too many
            target += count;
        }
        controls |= static_cast<uint32_t>(entry);
        source += used;
        room -= count;
    }
    at.source = source;
    at.target = target;
    at.room = room;
    return controls;
}

template <typename Entry> uint32_t run(const fast_tables &fast, cursor &at) {
    const auto *entries = reinterpret_cast<const Entry *>(fast.entries);
    return at.target != nullptr ? run<Entry, true>(fast, entries, at)
                                : run<Entry, false>(fast, entries, at);
}

template <typename Entry> void lay_out(const multi_arr *table, fast_tables *fast) {
    auto *entries = reinterpret_cast<Entry *>(fast->entries);
    layout<Entry>{table, entries}.place(table->root, true);
    fast->ascii_identity = keeps_ascii(entries);
}

} // namespace

namespace kestrion {

void make_fast_tables(cv_rec *cv) {
    const multi_arr *table = cv->table_normal;
    if (table->max_len > widest_character || table->min_len != 1)
        return;
    const bool wide = cv->target_max_len > 3;
    const size_t units = count_units(table->root, true);
    const size_t bytes = units * state_unit * (wide ? sizeof(uint64_t) : sizeof(uint32_t));
    if (units > largest_base || bytes > largest_table)
        return;
    auto *fast = static_cast<fast_tables *>(_gl_ext_malloc(sizeof(fast_tables)));
    if (fast == nullptr)
        return;
    *fast = {wide, false, static_cast<unsigned char *>(_gl_ext_malloc(bytes))};
    if (fast->entries == nullptr) {
        _gl_ext_free(fast);
        return;
    }
    wide ? lay_out<uint64_t>(table, fast) : lay_out<uint32_t>(table, fast);
    cv->fast = fast;
}

void free_fast_tables(cv_rec *cv) {
    auto *fast = static_cast<fast_tables *>(cv->fast);
    if (fast == nullptr)
        return;
    _gl_ext_free(fast->entries);
    _gl_ext_free(fast);
    cv->fast = nullptr;
}

void convert_fast(const cv_rec *cv, const char **source, int32_t *source_length, char **target,
                  int32_t *room, int32_t *lossy) {
    const auto *fast = static_cast<const fast_tables *>(cv->fast);
    if (fast == nullptr)
        return;
    const size_t length = source_length != nullptr
                              ? static_cast<size_t>(*source_length > 0 ? *source_length : 0)
                              : strnlen(*source, INT32_MAX);
    if (length < 2 * block || *room < 2 * block)
        return;
    const auto *start = reinterpret_cast<const unsigned char *>(*source);
    cursor at{start, start + length - block,
              target != nullptr ? reinterpret_cast<unsigned char *>(*target) : nullptr,
              int64_t{*room} - block, source_length == nullptr ? CV_TERMINATOR : 0u};
    const int64_t room_before = at.room;
    const uint32_t controls = fast->wide ? run<uint64_t>(*fast, at) : run<uint32_t>(*fast, at);
    if ((controls & CV_INEXACT) != 0)
        *lossy = 1;
    const auto used = static_cast<int32_t>(at.source - start);
    *source += used;
    if (source_length != nullptr)
        *source_length -= used;
    const auto written = static_cast<int32_t>(room_before - at.room);
    if (target != nullptr)
        *target += written;
    *room -= written;
}

} // namespace kestrion
