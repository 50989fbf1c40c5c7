#include "gls/objects/collate_analysis.h"

#include "gls/base/engine_error.h"
#include "gls/multi/multi_tree.h"
#include "gls/objects/category_data.h"
#include "gls/objects/locale_object.h"
#include "gls/text/char_walk.h"
#include <kestrion/locale_file.h>

#include <string.h>

using namespace kestrion;

namespace {

constexpr int32_t no_class = -1;
constexpr int32_t longest_sequence = 15;
constexpr size_t text_room = gl_char_bytes * longest_sequence;
constexpr size_t saved_limit = 1 << 20; // far more than any code set has characters

// A text and the class that it goes to.
struct saved_text {
    char *text;
    int32_t class_number;
};

struct row_analysis {
    locale_rec *lc;
    collate_rec *r;
    bool *ignored = nullptr;          // by row: ignored at every level
    int32_t *class_of = nullptr;      // by row
    int32_t *expansion_row = nullptr; // by expansion: the first row that is nothing but it, or -1
    int32_t *first_alike = nullptr;   // by row: the first row with the same weights
    int32_t *sorted = nullptr;        // rows by their weights, equal ones by their numbers
    int32_t class_count = 0;
    bool any_ignored = false;
    char **ignored_texts = nullptr;
    size_t ignored_count = 0;
    size_t ignored_room = 0;
    saved_text *members = nullptr; // texts of all classes in the order in which they are met
    size_t member_count = 0;
    size_t member_room = 0;

    uint16_t weight(int32_t level, int32_t row) const { return r->level_weights[level][row]; }

    size_t row_count() const { return static_cast<size_t>(r->max_row) + 1; }
    bool alike(int32_t row, int32_t other) const;

    bool make_tables();
    void sort_by_byte(int32_t level, int shift, const int32_t *from, int32_t *to) const;
    void find_alike();
    void classify_rows();
    void classify(int32_t row);
    bool save_texts();
    bool save_sequence(const gl_wchar *chars, int32_t length, uint16_t row);
    bool save_characters(const multi_node *node, char *text, int32_t depth);
    bool save(const char *text, size_t length, uint16_t row);
    char *copy_of(const char *text, size_t length);
    bool publish_ignored();
    bool publish_pairs();
    void release();
};

bool row_analysis::alike(int32_t row, int32_t other) const {
    for (int32_t level = 0; level < r->level_count; ++level)
        if (weight(level, row) != weight(level, other))
            return false;
    return true;
}

bool row_analysis::make_tables() {
    size_t rows = row_count();
    if (!make_array(lc, ignored, rows) || !make_array(lc, class_of, rows) ||
        !make_array(lc, first_alike, rows) || !make_array(lc, sorted, rows) ||
        !make_array(lc, expansion_row, static_cast<size_t>(r->expansion_count) + 1))
        return false;
    for (size_t row = 0; row < rows; ++row)
        class_of[row] = no_class;
    for (int32_t i = 0; i < r->expansion_count; ++i)
        expansion_row[i] = -1;
    return true;
}

// Sorts rows by a byte of their weights; rows with the same one keep their order.
void row_analysis::sort_by_byte(int32_t level, int shift, const int32_t *from, int32_t *to) const {
    size_t place[gl_bytes + 1] = {};
    auto byte_of = [&](int32_t row) {
        return static_cast<size_t>(weight(level, row) >> shift & 0xff);
    };
    for (size_t i = 0; i < row_count(); ++i)
        ++place[byte_of(from[i]) + 1];
    for (size_t b = 0; b < gl_bytes; ++b)
        place[b + 1] += place[b];
    for (size_t i = 0; i < row_count(); ++i)
        to[place[byte_of(from[i])]++] = from[i];
}

// Finds the first row alike of each. Sorting takes as long for any file; of a hash, a file could
// choose rows that all share one place.
void row_analysis::find_alike() {
    for (int32_t row = 0; row <= r->max_row; ++row)
        sorted[row] = row;
    for (int32_t level = 0; level < r->level_count; ++level) {
        sort_by_byte(level, 0, sorted, first_alike);
        sort_by_byte(level, 8, first_alike, sorted);
    }
    for (int32_t i = 0; i <= r->max_row; ++i) {
        bool follows = i > 0 && alike(sorted[i], sorted[i - 1]);
        first_alike[sorted[i]] = follows ? first_alike[sorted[i - 1]] : sorted[i];
    }
}

void row_analysis::classify(int32_t row) {
    uint16_t first = weight(0, row);
    bool all_same = true;
    bool ties = false;
    for (int32_t level = 0; level < r->level_count; ++level) {
        all_same = all_same && weight(level, row) == first;
        ties = ties || weight(level, row) & coll_tie_on_char;
    }
    if (all_same && first == coll_ignored) {
        ignored[row] = true;
        any_ignored = true;
    }
    int32_t first_row = ties ? row : first_alike[row];
    if (first_row != row) {
        if (class_of[first_row] == no_class)
            class_of[first_row] = class_count++;
        class_of[row] = class_of[first_row];
    }
    if (all_same && first & coll_expands) {
        int32_t &listed = expansion_row[first & coll_value_bits];
        listed = listed < 0 ? row : listed;
        if (class_of[row] == no_class)
            class_of[row] = class_count++;
    }
}

void row_analysis::classify_rows() {
    find_alike();
    for (int32_t row = 0; row <= r->max_row; ++row)
        classify(row);
}

char *row_analysis::copy_of(const char *text, size_t length) {
    char *copy;
    if (member_count + ignored_count >= saved_limit)
        return fail_with_null(lc, GLS_ERR_MALFORMED);
    if (make_array(lc, copy, length + text_tail))
        memcpy(copy, text, length);
    return copy;
}

// Keeps a text under its row, once if the row is ignored and once if it has a class.
bool row_analysis::save(const char *text, size_t length, uint16_t row) {
    if (ignored[row]) {
        char *copy = nullptr;
        if (!make_room(lc, ignored_texts, ignored_count, ignored_room) ||
            ((copy = copy_of(text, length)) == nullptr))
            return false;
        ignored_texts[ignored_count++] = copy;
    }
    if (class_of[row] != no_class) {
        char *copy = nullptr;
        if (!make_room(lc, members, member_count, member_room) ||
            ((copy = copy_of(text, length)) == nullptr))
            return false;
        members[member_count++] = {copy, class_of[row]};
    }
    return true;
}

// Writes the bytes of a wide character by the row table; 0 when it has no such character.
size_t spell(const multi_arr *table, gl_wchar wc, char *out) {
    int32_t length = wide_length(wc, table->min_len);
    const multi_node *node = table->root;
    for (int32_t i = 0; i < length; ++i) {
        unsigned char byte = static_cast<unsigned char>(wc >> (8 * (length - 1 - i)));
        unsigned char flag = multi_flag_at(node, byte);
        out[i] = static_cast<char>(byte);
        if (i == length - 1)
            return flag == MULTI_END ? static_cast<size_t>(length) : 0;
        if (flag != MULTI_CHILD)
            return 0;
        node = multi_child_at(node, byte);
    }
    return 0;
}

bool row_analysis::save_sequence(const gl_wchar *chars, int32_t length, uint16_t row) {
    char text[text_room];
    size_t bytes = 0;
    for (int32_t i = 0; i < length; ++i) {
        size_t spelled = spell(r->row_table, chars[i], text + bytes);
        if (spelled == 0)
            return true;
        bytes += spelled;
    }
    return save(text, bytes, row);
}

// The characters below a node in the order of their bytes; text[0..depth) leads to it.
bool row_analysis::save_characters(const multi_node *node, char *text, int32_t depth) {
    for (size_t b = 0; b < gl_bytes; ++b) {
        unsigned char byte = static_cast<unsigned char>(b);
        unsigned char flag = multi_flag_at(node, byte);
        text[depth] = static_cast<char>(byte);
        if (flag == MULTI_END) {
            uint16_t row;
            memcpy(&row,
                   node->data != nullptr ? multi_slot(r->row_table, node->data, b)
                                         : r->row_table->default_datum,
                   sizeof row);
            if (!save(text, static_cast<size_t>(depth) + 1, row))
                return false;
        } else if (flag == MULTI_CHILD && depth + 1 < gl_char_bytes &&
                   !save_characters(multi_child_at(node, byte), text, depth + 1)) {
            return false;
        }
    }
    return true;
}

bool row_analysis::save_texts() {
    for (int32_t i = 0; i < r->contraction_count; ++i) {
        const coll_contraction &c = r->contractions[i];
        if (!save_sequence(c.chars, c.length, c.row))
            return false;
    }
    for (int32_t i = 0; i < r->expansion_count; ++i)
        if (expansion_row[i] >= 0 && !save_sequence(r->expansions[i].chars, r->expansions[i].length,
                                                    static_cast<uint16_t>(expansion_row[i])))
            return false;
    char text[gl_char_bytes];
    return save_characters(r->row_table->root, text, 0);
}

bool row_analysis::publish_ignored() {
    if (ignored_count == 0)
        return true;
    if (!make_room(lc, ignored_texts, ignored_count, ignored_room))
        return false;
    ignored_texts[ignored_count] = nullptr;
    r->ignorable_chars = ignored_texts;
    ignored_texts = nullptr;
    ignored_count = 0;
    return true;
}

// Pairs every text of a class with the last one of it, class by class.
bool row_analysis::publish_pairs() {
    if (member_count == 0)
        return true;
    struct class_run {
        size_t next; // where the class's next text goes
        char *last;  // the last text met, once all are counted
    };
    class_run *runs;
    coll_equiv *pairs;
    if (!make_array(lc, runs, static_cast<size_t>(class_count)))
        return false;
    if (!make_array(lc, pairs, member_count + 1)) {
        _gl_free_ptr(runs);
        return false;
    }
    for (size_t i = 0; i < member_count; ++i) {
        class_run &run = runs[members[i].class_number];
        ++run.next;
        run.last = members[i].text;
    }
    size_t total = 0;
    for (int32_t c = 0; c < class_count; ++c) {
        size_t texts = runs[c].next;
        runs[c].next = total;
        total += texts > 0 ? texts - 1 : 0;
        if (texts == 1)
            _gl_free_ptr(runs[c].last);
        if (texts == 1)
            runs[c].last = nullptr;
    }
    for (size_t i = 0; i < member_count; ++i) {
        class_run &run = runs[members[i].class_number];
        if (run.last != nullptr && members[i].text != run.last)
            pairs[run.next++] = {members[i].text, run.last};
    }
    member_count = 0;
    _gl_free_ptr(runs);
    if (total == 0)
        _gl_free_ptr(pairs);
    else
        r->equiv_pairs = pairs;
    return true;
}

void row_analysis::release() {
    for (size_t i = 0; i < ignored_count; ++i)
        _gl_free_ptr(ignored_texts[i]);
    for (size_t i = 0; i < member_count; ++i)
        _gl_free_ptr(members[i].text);
    _gl_free_ptr(ignored_texts);
    _gl_free_ptr(members);
    _gl_free_ptr(ignored);
    _gl_free_ptr(class_of);
    _gl_free_ptr(expansion_row);
    _gl_free_ptr(first_alike);
    _gl_free_ptr(sorted);
}

bool analyse(row_analysis &a) {
    if (!a.make_tables())
        return false;
    a.classify_rows();
    if (!a.any_ignored && a.class_count == 0)
        return true;
    return a.save_texts() && a.publish_ignored() && a.publish_pairs();
}

} // namespace

namespace kestrion {

bool analyse_rows(locale_rec *lc) {
    if (lc->collate_cat.level_count == 0)
        return true;
    row_analysis analysis = {.lc = lc, .r = &lc->collate_cat};
    bool done = analyse(analysis);
    analysis.release();
    return done;
}

void free_analysis(collate_rec &r) {
    for (size_t i = 0; r.ignorable_chars != nullptr && (r.ignorable_chars[i] != nullptr); ++i)
        _gl_free_ptr(r.ignorable_chars[i]);
    free_array(r.ignorable_chars);
    for (size_t i = 0; r.equiv_pairs != nullptr && (r.equiv_pairs[i].member != nullptr); ++i) {
        const coll_equiv &pair = r.equiv_pairs[i];
        if (pair.last != r.equiv_pairs[i + 1].last)
            _gl_free_ptr(pair.last);
        _gl_free_ptr(pair.member);
    }
    free_array(r.equiv_pairs);
}

} // namespace kestrion
