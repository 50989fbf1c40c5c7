#include <kestrion/conversion_routines.h>

#include "base/byte_order.h"
#include "gls/base/engine_error.h"
#include "gls/conversion/conversion_fast.h"
#include "gls/conversion/conversion_tables.h"
#include "gls/multi/multi_tree.h"
#include <kestrion/ext_funcs.h>
#include <kestrion/gls_errors.h>
#include <kestrion/gls_log.h>
#include <kestrion/multi.h>

#include <algorithm>
#include <limits.h>
#include <string.h>

using namespace kestrion;

namespace {

constexpr int32_t byte_values = 256;

// One call's position in its text and its output.
struct walk {
    cv_rec *cv;
    const char **source;
    int32_t *length; // null: a terminated text
    char **target;   // null: measuring
    int32_t *room;

    bool done() const { return length != nullptr && *length <= 0; }
    int32_t limit() const { return length != nullptr ? *length : INT32_MAX; }
    bool last(int32_t used) const { return length != nullptr && *length <= used; }

    void advance(int32_t used) {
        *source += used;
        if (length != nullptr)
            *length -= used;
    }

    // Stores what fits of `count` bytes; room may go below 0 only where the caller's test let it.
    void store(const unsigned char *bytes, int32_t count) {
        if (target != nullptr) {
            const int32_t fitting = count < *room ? count : *room;
            if (fitting > 0)
                memcpy(*target, bytes, static_cast<size_t>(fitting));
            *target += count;
        }
        *room -= count;
    }

    // Ways to fail, each with its line in the log. A failed lookup has set its error already.
    int32_t fail_lookup() {
        gl_message("Error in Translation.");
        return -1;
    }
    int32_t fail_unmapped() {
        gl_message("Error in Translation (GL_EILSEQ)");
        return fail(cv, GLS_ERR_BAD_CHARACTER);
    }
    int32_t fail_room() {
        gl_message("Error in Translation (GL_E2BIG)");
        return fail(cv, GLS_ERR_NO_ROOM);
    }
};

walk start_walk(cv_rec *cv, const char **source, int32_t *length, char **target, int32_t *room,
                int32_t *lossy) {
    *lossy = 0;
    const bool measuring = target == nullptr || *target == nullptr;
    return {cv, source, length, measuring ? nullptr : target, room};
}

bool zero_bytes(const char *bytes, int32_t count) {
    for (int32_t i = 0; i < count; ++i)
        if (bytes[i] != '\0')
            return false;
    return true;
}

// A terminated text ends with its terminator. A table that maps the zero character like any other
// must not carry the walk beyond the text.
bool ends_text(const walk &w, unsigned char control, const char *character, int32_t used) {
    if (w.length != nullptr)
        return false;
    return (control & CV_TERMINATOR) != 0 || zero_bytes(character, used);
}

bool unit_of(int32_t min_len, int32_t max_len, int32_t unit) {
    return min_len == unit && max_len == unit;
}
bool fixed_width(int32_t min_len, int32_t max_len) {
    return unit_of(min_len, max_len, 2) || unit_of(min_len, max_len, 4);
}

// Ways to find the next character: its datum and the bytes that it takes, or null with the error
// word set.
const unsigned char *find_byte(const walk &w, int32_t &used) {
    const multi_arr *table = w.cv->table_normal;
    const size_t byte = static_cast<unsigned char>(**w.source);
    used = 1;
    return table->root->data == nullptr ? table->default_datum
                                        : table->root->data + (byte << table->shift);
}

// Tables without single-byte characters can hold ones that go on into a terminator, or bring a walk
// out of step with it.
bool may_pass_terminator(const cv_rec *cv) {
    return cv->table_normal->min_len > 1 ||
           (cv->table_shifted != nullptr && cv->table_shifted->min_len > 1);
}

// The next character of a terminated text: it ends before the terminator, or is the terminator.
// Both are whole units of the source's shortest character.
const unsigned char *find_before_terminator(const multi_arr *table, const walk &w, int32_t &used) {
    const int32_t unit = std::clamp<int32_t>(w.cv->source_min_len, 1, gl_char_bytes);
    const char *const text = *w.source;
    for (int32_t limit = unit;; limit += unit) {
        const void *datum = _gl_retrieve_text_multi_limit(text, table, limit, &used, w.cv);
        if (datum != nullptr && used % unit == 0)
            return static_cast<const unsigned char *>(datum);
        const bool cut_off = datum == nullptr && *_gl_ext_errno(w.cv) == GLS_ERR_SPECIFIER;
        // Only a walk that wants to go on asks what comes next: what follows a terminator is not
        // ours.
        if (!cut_off || zero_bytes(text, unit) || zero_bytes(text + limit, unit))
            return fail_with_null(w.cv, GLS_ERR_BAD_CHARACTER);
    }
}

const unsigned char *find_in(const multi_arr *table, const walk &w, int32_t &used) {
    if (w.length == nullptr && may_pass_terminator(w.cv))
        return find_before_terminator(table, w, used);
    return static_cast<const unsigned char *>(
        _gl_retrieve_text_multi_limit(*w.source, table, w.limit(), &used, w.cv));
}
const unsigned char *find_character(const walk &w, int32_t &used) {
    return find_in(w.cv->table_normal, w, used);
}
const unsigned char *find_unit(const walk &w, int32_t &used) {
    used = unit_of(w.cv->source_min_len, w.cv->source_max_len, 4) ? 4 : 2;
    return static_cast<const unsigned char *>(
        _gl_retrieve_little_endian_unicode_limit(*w.source, w.cv->table_normal, w.limit(), w.cv));
}

// What is written for a character, and the room that is asked for.
struct output {
    const unsigned char *bytes;
    int32_t count;
    int32_t wanted;
};

struct whole_datum {
    output operator()(const unsigned char *datum) const {
        const int32_t count = datum[0] & CV_LENGTH;
        return {datum + 1, count, count};
    }
};

// The bytes of a target unit, turned round; what a datum has no room for counts as zero.
struct reversed_unit {
    int32_t size;
    int32_t wanted;
    int32_t datum_size;
    unsigned char bytes[gl_char_bytes] = {};

    output operator()(const unsigned char *datum) {
        for (int32_t i = 0; i < size; ++i)
            bytes[i] = size - i <= datum_size ? datum[size - i] : 0;
        return {bytes, size, wanted};
    }
};

// Converts character by character without shift states. `write` is called for a mapped character.
template <auto find, typename Write> int32_t convert_each(walk w, int32_t *lossy, Write write) {
    for (bool end = false; !end && !w.done();) {
        int32_t used = 0;
        const unsigned char *datum = find(w, used);
        if (datum == nullptr)
            return w.fail_lookup();
        if (datum[0] < CV_FIRST_MAPPED)
            return w.fail_unmapped();
        const output out = write(datum);
        if (*w.room < out.wanted)
            return w.fail_room();
        if ((datum[0] & CV_INEXACT) != 0)
            *lossy = 1;
        end = ends_text(w, datum[0], *w.source, used);
        w.store(out.bytes, out.count);
        w.advance(used);
    }
    return 0;
}

// A converted character and the shift sequences around it.
struct shifted_output {
    unsigned char bytes[2 * cv_sequence_size + gl_char_bytes];
    int32_t length = 0;

    void add(const unsigned char *from, int32_t count) {
        memcpy(bytes + length, from, static_cast<size_t>(count));
        length += count;
    }
};

void build_sb_table(cv_rec *cv) {
    auto *table = static_cast<unsigned char *>(_gl_ext_malloc(byte_values));
    if (table == nullptr)
        return;
    const int32_t word = cv->cv_err;
    unsigned char values[byte_values];
    for (int32_t i = 0; i < byte_values; ++i)
        values[i] = static_cast<unsigned char>(i);
    const char *source = reinterpret_cast<const char *>(values);
    char *target = reinterpret_cast<char *>(table);
    int32_t length = byte_values;
    int32_t room = byte_values;
    int32_t lossy;
    if (sb_miconv(cv, &source, &length, &target, &room, &lossy) == 0) {
        cv->sb_table = table;
        return;
    }
    // A byte without a mapping: a plain table could not refuse it.
    _gl_ext_free(table);
    cv->cv_err = word;
}

} // namespace

const void *_gl_retrieve_little_endian_unicode_limit(const char *text, const multi_arr *table,
                                                     int32_t limit, cv_rec *cv) {
    const int32_t unit = cv->source_min_len == 4 && cv->source_max_len == 4 ? 4 : 2;
    if (limit < unit)
        return fail_with_null(cv, GLS_ERR_SPECIFIER);
    const auto *bytes = reinterpret_cast<const unsigned char *>(text);
    const auto number = load_little_endian<uint32_t>(bytes, static_cast<size_t>(unit));
    return unit_datum(table, number, unit, cv);
}

void set_iconv_fps(cv_rec *cv) {
    if (cv->source_stateful == 0 && fixed_width(cv->source_min_len, cv->source_max_len)) {
        cv->convert = little_endian_unicode_source_miconv;
    } else if (cv->target_stateful == 0 && fixed_width(cv->target_min_len, cv->target_max_len)) {
        cv->convert = little_endian_unicode_target_miconv;
    } else if (cv->source_stateful == 0 && cv->target_stateful == 0 && cv->source_max_len == 1 &&
               cv->target_max_len == 1) {
        cv->convert = sb_miconv;
        if (cv->no_sb_table == 0)
            build_sb_table(cv);
        make_single_byte_tables(cv);
    } else {
        cv->convert = mb_miconv;
        if (cv->source_stateful == 0)
            make_flat_tables(cv);
    }
}

int32_t sb_miconv(cv_rec *cv, const char **source, int32_t *source_length, char **target,
                  int32_t *room, int32_t *lossy) {
    const walk w = start_walk(cv, source, source_length, target, room, lossy);
    convert_fast(cv, source, source_length, w.target, room, lossy);
    return convert_each<find_byte>(w, lossy, [](const unsigned char *datum) {
        return output{datum + 1, 1, 1};
    });
}

int32_t mb_miconv(cv_rec *cv, const char **source, int32_t *source_length, char **target,
                  int32_t *room, int32_t *lossy) {
    const walk w = start_walk(cv, source, source_length, target, room, lossy);
    convert_fast(cv, source, source_length, w.target, room, lossy);
    return convert_each<find_character>(w, lossy, whole_datum());
}

int32_t little_endian_unicode_target_miconv(cv_rec *cv, const char **source, int32_t *source_length,
                                            char **target, int32_t *room, int32_t *lossy) {
    const int32_t unit = unit_of(cv->target_min_len, cv->target_max_len, 4) ? 4 : 2;
    constexpr int32_t wanted = 2; // for both units: see the header
    return convert_each<find_character>(start_walk(cv, source, source_length, target, room, lossy),
                                        lossy, reversed_unit{unit, wanted, cv->target_max_len});
}

int32_t little_endian_unicode_source_miconv(cv_rec *cv, const char **source, int32_t *source_length,
                                            char **target, int32_t *room, int32_t *lossy) {
    const walk w = start_walk(cv, source, source_length, target, room, lossy);
    const int32_t unit = cv->target_max_len;
    if (cv->target_stateful == 0 && fixed_width(cv->target_min_len, unit))
        return convert_each<find_unit>(w, lossy, reversed_unit{unit, unit, unit});
    return convert_each<find_unit>(w, lossy, whole_datum());
}

int32_t mb_smiconv(cv_rec *cv, cv_state *state, const char **source, int32_t *source_length,
                   char **target, int32_t *room, int32_t *lossy) {
    walk w = start_walk(cv, source, source_length, target, room, lossy);
    if (state->reset != 0)
        state->source_shifted = state->target_shifted = 0;
    while (!w.done()) {
        const multi_arr *table = state->source_shifted != 0 ? cv->table_shifted : cv->table_normal;
        int32_t used = 0;
        const unsigned char *datum =
            table != nullptr ? find_in(table, w, used) : fail_with_null(cv, GLS_ERR_BAD_CHARACTER);
        if (datum == nullptr)
            return w.fail_lookup();
        const unsigned char control = datum[0];
        if (control < CV_FIRST_MAPPED)
            return w.fail_unmapped();
        const int32_t source_shifted =
            (control & CV_SWITCH) != 0 ? !state->source_shifted : state->source_shifted;
        int32_t target_shifted = state->target_shifted;
        shifted_output out;
        if ((control & CV_SHIFTED) != 0 && !target_shifted)
            out.add(cv->shift_in, cv->shift_in_len);
        else if ((control & CV_SHIFTED) == 0 && target_shifted)
            out.add(cv->shift_out, cv->shift_out_len);
        target_shifted = (control & CV_SHIFTED) != 0;
        out.add(datum + 1, control & CV_LENGTH);
        const bool end = ends_text(w, control, *source, used);
        if (state->flush != 0 && target_shifted && (end || w.last(used))) {
            out.add(cv->shift_out, cv->shift_out_len);
            target_shifted = 0;
        }
        if (*room < out.length)
            return w.fail_room();
        if ((control & CV_INEXACT) != 0)
            *lossy = 1;
        state->source_shifted = source_shifted;
        state->target_shifted = target_shifted;
        w.store(out.bytes, out.length);
        w.advance(used);
        if (end)
            break;
    }
    return 0;
}
