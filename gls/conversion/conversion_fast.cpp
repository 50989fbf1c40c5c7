#include "gls/conversion/conversion_fast.h"

#include "gls/conversion/conversion_tables.h"

#include <algorithm>
#include <limits.h>
#include <string.h>

namespace kestrion {

namespace {

constexpr int32_t block = 8; // bytes of a run
constexpr uint64_t high_bits = 0x8080808080808080u;
constexpr int32_t single_block = 32; // bytes that a single-byte pair does at once

// The three-byte form of UTF-8, as its bytes lie in a little-endian word.
constexpr uint32_t utf8_three_mask = 0xc0c0f0;
constexpr uint32_t utf8_three = 0x8080e0;

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

// The entry of the character at `text`, with its length; 0 for what is not a character.
template <typename Entry>
inline Entry character(const Entry *__restrict entries, const unsigned char *text, size_t &used) {
    Entry entry = entries[text[0]];
#pragma GCC unroll 4
    for (size_t length = 1; length <= gl_char_bytes; ++length) {
        if ((entry & 0xff) != 0) {
            used = length;
            return entry;
        }
        const auto state = static_cast<uint32_t>(entry);
        const uint32_t in_state = text[length] ^ (state >> (state_prefix_shift - 4) & 0xf0);
        if ((in_state & state >> (state_shared_shift - 4) & 0xf0) != 0)
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
            const size_t run = ascii_run<Storing>(source, Storing ? target + written : nullptr);
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
    case table_form::single:
        return run_single<Storing>(*reinterpret_cast<const single_tables *>(fast), text);
    case table_form::narrow:
        return run_flat<uint32_t, Storing>(*fast, text);
    case table_form::wide:
        return run_flat<uint64_t, Storing>(*fast, text);
    }
    return 0;
}

bool overlap(const piece &text) {
    const auto source = reinterpret_cast<uintptr_t>(text.source);
    const auto target = reinterpret_cast<uintptr_t>(text.target);
    return text.target != nullptr && source < target + text.room && target < source + text.length;
}

// Length of a terminated text, as far as the room can take it: a text converted in small pieces
// must not be looked through whole for each.
int64_t length_ahead(const char *source, int32_t room) {
    const int64_t most = std::min<int64_t>(int64_t{room} * gl_char_bytes, INT32_MAX);
    return static_cast<int64_t>(strnlen(source, static_cast<size_t>(most)));
}

} // namespace

void convert_fast(const cv_rec *cv, const char **source, int32_t *source_length, char **target,
                  int32_t *room, int32_t *lossy) {
    const auto *fast = static_cast<const fast_tables *>(cv->fast);
    if (fast == nullptr || *room < 2 * block || (source_length == nullptr && !fast->only_zero_ends))
        return;
    const int64_t length = source_length != nullptr ? *source_length : length_ahead(*source, *room);
    if (length < 2 * block)
        return;
    piece text = {.source = reinterpret_cast<const unsigned char *>(*source),
                  .length = static_cast<size_t>(length),
                  .target =
                      target != nullptr ? reinterpret_cast<unsigned char *>(*target) : nullptr,
                  .room = static_cast<size_t>(*room)};
    if (overlap(text)) // a block would be read after the last one was written over it
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
