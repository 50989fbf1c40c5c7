#include "compilers/mklco/object.h"

#include "compilers/head_lines.h"
#include "compilers/object_table.h"
#include "gls/objects/locale_object.h"
#include <kestrion/categories.h>
#include <kestrion/gls_errors.h>
#include <kestrion/locale_file.h>

#include <initializer_list>
#include <memory>
#include <new>
#include <stdio.h>
#include <string.h>

namespace kestrion {
namespace {

using loaded_locale = std::unique_ptr<locale_rec, void (*)(locale_rec *)>;

// "LC_CTYPE" of the marker "### LC_CTYPE\n".
std::string section_word(int32_t category) {
    const std::string_view marker = category_markers[category];
    return std::string(marker.substr(4, marker.size() - 5));
}

// What an engine error says of an object.
const char *error_text(int32_t error) {
    switch (error) {
    case GLS_ERR_BAD_CHARACTER:
        return "a text is not made of the characters of its LC_CTYPE";
    case GLS_ERR_NO_MEMORY:
        return "a table is damaged, or there is no memory";
    case GLS_ERR_COUNT:
        return "it has too many group sizes";
    case GLS_ERR_TABLE_LENGTH:
        return "it has a character of more than 4 bytes";
    case GLS_ERR_CALENDAR:
        return "its calendar is unknown";
    case GLS_ERR_OBJECT_VERSION:
        return "it is of another compiler version";
    default:
        return "it is malformed";
    }
}

// The record that the runtime makes of an object's bytes. Throws compiler_failure, which begins
// with the name of their source.
loaded_locale load(std::string bytes, const std::string &source) {
    const std::unique_ptr<FILE, int (*)(FILE *)> file(fmemopen(bytes.data(), bytes.size(), "rb"),
                                                      fclose);
    locale_rec *record = nullptr;
    if (file == nullptr || gl_create_null_locale_4(&record) != 0)
        throw std::bad_alloc();
    loaded_locale owner(record, gl_lc_unload);
    for (int32_t i = 0; i < gl_category_count; ++i) {
        rewind(file.get());
        if (read_one_category(record, gl_first_category + i, file.get()) != 0)
            throw compiler_failure(source + ": " + section_word(i) +
                                   " cannot be loaded: " + error_text(record->err) + " (error " +
                                   std::to_string(record->err) + ")");
    }
    return owner;
}

uint16_t datum_of(const code_sequence &sequence, const multi_arr *table) {
    uint16_t datum = 0;
    gl_char_desc desc{sequence.length, {}};
    memcpy(desc.bytes, sequence.bytes, sizeof desc.bytes);
    if (const void *found = _gl_retrieve_desc_multi(&desc, table))
        memcpy(&datum, found, sizeof datum);
    return datum;
}

void take_ctype(const locale_rec &lc, locale_object &object) {
    const ctype_rec &ct = lc.ctype_cat;
    for_each_entry(ct.class_table, [&](const code_sequence &sequence, const unsigned char *datum) {
        uint16_t classes;
        memcpy(&classes, datum, sizeof classes);
        object.characters.push_back({sequence, classes, datum_of(sequence, ct.case_index),
                                     datum_of(sequence, lc.collate_cat.row_table)});
    });
    if (static_cast<size_t>(ct.class_name_count) > most_class_names)
        throw compiler_failure("more than " + std::to_string(most_class_names) + " class names");
    for (int32_t i = 0; i < ct.class_name_count; ++i)
        object.class_names.emplace_back(ct.class_names[i].bit, ct.class_names[i].name);
    for (int32_t i = 1; i <= ct.case_pair_count; ++i)
        object.pairs.push_back({ct.case_pairs[i].upper, ct.case_pairs[i].lower});
    object.growth = lc.case_expansion;
}

// What has a row and is not a character.
void take_carriers(const locale_rec &lc, std::vector<object_character> &carriers) {
    for_each_entry(lc.collate_cat.row_table,
                   [&](const code_sequence &sequence, const unsigned char *) {
                       gl_char_desc desc{sequence.length, {}};
                       memcpy(desc.bytes, sequence.bytes, sizeof desc.bytes);
                       if (_gl_retrieve_desc_multi(&desc, lc.ctype_cat.class_table) != nullptr)
                           return;
                       object_character &carrier = carriers.emplace_back();
                       carrier.sequence = sequence;
                       carrier.row = datum_of(sequence, lc.collate_cat.row_table);
                   });
}

void take_collation(const collate_rec &r, object_collation &collation) {
    collation.thai = r.coll_method == COLL_THAI_SMO;
    if (collation.thai)
        return;
    collation.code_order_form = r.code_order_form;
    collation.max_weight = r.max_weight;
    for (int32_t i = 0; i < r.level_count; ++i)
        collation.levels.push_back(static_cast<uint16_t>(r.level_order[i]));
    for (int32_t i = 0; i < r.contraction_count; ++i) {
        const coll_contraction &c = r.contractions[i];
        collation.contractions.push_back({c.row, {c.chars, c.chars + c.length}});
    }
    for (int32_t i = 0; i < r.expansion_count; ++i) {
        const coll_expansion &e = r.expansions[i];
        collation.expansions.emplace_back(e.chars, e.chars + e.length);
    }
    collation.rows.resize(static_cast<size_t>(r.max_row) + 1);
    for (size_t row = 0; row < collation.rows.size(); ++row)
        for (int32_t i = 0; i < r.level_count; ++i)
            collation.rows[row].push_back(r.level_weights[i][row]);
}

// Fills the fields one after the other, in the order of object_fields.
class field_filler {
public:
    field_filler(locale_object &object, int32_t unit) : next_(object.fields), unit_(unit) {}

    void line(std::string_view line) { next_++->texts = {std::string(line)}; }
    void texts(char *const *all, int32_t count) {
        for (int32_t i = 0; i < count; ++i)
            next_->texts.push_back(text(all[i]));
        ++next_;
    }
    void texts(std::initializer_list<char *> all) {
        texts(all.begin(), static_cast<int32_t>(all.size()));
    }
    // A field for each text.
    void single_texts(std::initializer_list<char *> all) {
        for (char *one : all)
            texts({one});
    }
    void group(const group_rec &group) {
        for (int32_t i = 0; i < group.count; ++i)
            next_->numbers.push_back(static_cast<int32_t>(group.sizes[i]));
        ++next_;
    }
    void single_numbers(std::initializer_list<int32_t> all) {
        for (const int32_t number : all)
            next_++->numbers = {number};
    }

private:
    // A terminator has as many zero bytes as the shortest character has bytes.
    std::string text(const char *start) const {
        constexpr char zero[gl_char_bytes] = {};
        const char *end = start;
        while (memcmp(end, zero, static_cast<size_t>(unit_)) != 0)
            end += unit_;
        return {start, end};
    }

    object_field_value *next_;
    int32_t unit_;
};

std::string_view calendar_name(int32_t number) {
    for (const canned_calendar &calendar : gls_canned_calendars)
        if (calendar.number == number)
            return {calendar.name, strlen(calendar.name) - 1};
    return "";
}

void take_fields(const locale_rec &lc, locale_object &object) {
    field_filler fields(object, lc.ctype_cat.mb_loc_min);
    const numeric_rec &n = lc.numeric_cat;
    fields.single_texts({n.decimal_point, n.thousands_sep});
    fields.group(n.grouping);
    fields.single_texts({n.positive_sign, n.negative_sign});
    const monetary_rec &m = lc.monetary_cat;
    fields.single_texts(
        {m.int_curr_symbol, m.currency_symbol, m.mon_decimal_point, m.mon_thousands_sep});
    fields.group(m.mon_grouping);
    fields.single_texts({m.positive_sign, m.negative_sign});
    fields.single_numbers({m.int_frac_digits, m.frac_digits, m.p_cs_precedes, m.p_sep_by_space,
                           m.n_cs_precedes, m.n_sep_by_space, m.p_sign_posn, m.n_sign_posn});
    const time_rec &t = lc.time_cat;
    fields.line(calendar_name(t.calendar));
    fields.texts(t.abday, gl_week_days);
    fields.texts(t.day, gl_week_days);
    fields.texts(t.abmon, t.month_count);
    fields.texts(t.mon, t.month_count);
    fields.single_texts({t.d_t_fmt, t.d_fmt, t.t_fmt});
    fields.texts({t.am, t.pm});
    fields.single_texts({t.t_fmt_ampm});
    fields.texts(t.era_texts, t.era_count);
    fields.single_texts({t.era_d_fmt, t.era_t_fmt, t.era_d_t_fmt});
    fields.texts(t.alt_digits, t.alt_digit_count);
    const messages_rec &a = lc.messages_cat;
    fields.single_texts({a.yesexpr, a.noexpr, a.yesstr, a.nostr});
}

} // namespace

void check_by_loading(const std::string &bytes, const std::string &source) { load(bytes, source); }

locale_object read_object(const source_file &file) {
    const loaded_locale lc = load(std::string(file.text()), file.name());
    locale_object object;
    object.head = skipped_head_lines(file);
    object.code_set = lc->cs_names[0];
    take_ctype(*lc, object);
    take_collation(lc->collate_cat, object.collation);
    if (!object.collation.thai)
        take_carriers(*lc, object.collation.carriers);
    take_fields(*lc, object);
    return object;
}

} // namespace kestrion
