// A locale object as the compiler holds it between source, listing and file.
//
// The file is described in docs/formats/locale-object.md. Here a character is one record with what
// the three tables of the file say about it; the tables therefore always hold the same characters.
#pragma once

#include "compilers/posix/charmap.h"
#include "gls/objects/locale_object.h"

#include <stdint.h>
#include <string>
#include <utility>
#include <vector>

namespace kestrion {

struct object_character {
    code_sequence sequence;
    uint16_t classes = 0;    // mask of <kestrion/ctype_masks.h>
    uint16_t case_index = 0; // into the pairs, which count from 1; 0: no partner
    uint16_t row = 0;        // of the collation
};

// The order of the file: by bytes.
inline bool by_bytes(const object_character &a, const object_character &b) {
    return a.sequence.order() < b.sequence.order();
}

struct object_case_pair {
    uint32_t upper = 0; // packed bytes; 0: no mapping in this direction
    uint32_t lower = 0;
    auto operator<=>(const object_case_pair &) const = default;
};

struct object_collation {
    bool thai = false; // the method thai_smo, which has no data
    int32_t code_order_form = 0;
    uint32_t max_weight = 0;
    std::vector<uint16_t> levels; // their directions; 1 forward, 2 backward
    struct contraction {
        uint16_t row = 0;
        std::vector<uint32_t> characters;
    };
    std::vector<contraction> contractions;
    std::vector<std::vector<uint32_t>> expansions;
    std::vector<std::vector<uint16_t>> rows; // weights of each row, one a level
    // Sequences that expansions name and that are no characters: they have a row and nothing else.
    std::vector<object_character> carriers;
};

// How the file holds a field of the sections after the collation.
enum class field_kind : uint8_t {
    line,    // one word on a line
    texts,   // `count` texts
    counted, // a count and so many texts
    group,   // sizes of digit groups
    integer, // a number on a line
};

enum class object_section : uint8_t { numeric, monetary, time, messages };

// The fields of the sections in the order of the file, with the keywords of locale sources.
struct object_field {
    object_section section;
    const char *keyword;
    field_kind kind;
    uint8_t count;
};

inline constexpr object_field object_fields[] = {
    {object_section::numeric, "decimal_point", field_kind::texts, 1},
    {object_section::numeric, "thousands_sep", field_kind::texts, 1},
    {object_section::numeric, "grouping", field_kind::group, 0},
    {object_section::numeric, "positive_sign", field_kind::texts, 1},
    {object_section::numeric, "negative_sign", field_kind::texts, 1},
    {object_section::monetary, "int_curr_symbol", field_kind::texts, 1},
    {object_section::monetary, "currency_symbol", field_kind::texts, 1},
    {object_section::monetary, "mon_decimal_point", field_kind::texts, 1},
    {object_section::monetary, "mon_thousands_sep", field_kind::texts, 1},
    {object_section::monetary, "mon_grouping", field_kind::group, 0},
    {object_section::monetary, "positive_sign", field_kind::texts, 1},
    {object_section::monetary, "negative_sign", field_kind::texts, 1},
    {object_section::monetary, "int_frac_digits", field_kind::integer, 1},
    {object_section::monetary, "frac_digits", field_kind::integer, 1},
    {object_section::monetary, "p_cs_precedes", field_kind::integer, 1},
    {object_section::monetary, "p_sep_by_space", field_kind::integer, 1},
    {object_section::monetary, "n_cs_precedes", field_kind::integer, 1},
    {object_section::monetary, "n_sep_by_space", field_kind::integer, 1},
    {object_section::monetary, "p_sign_posn", field_kind::integer, 1},
    {object_section::monetary, "n_sign_posn", field_kind::integer, 1},
    {object_section::time, "calendar", field_kind::line, 1},
    {object_section::time, "abday", field_kind::texts, 7},
    {object_section::time, "day", field_kind::texts, 7},
    {object_section::time, "abmon", field_kind::counted, 12},
    {object_section::time, "mon", field_kind::counted, 12},
    {object_section::time, "d_t_fmt", field_kind::texts, 1},
    {object_section::time, "d_fmt", field_kind::texts, 1},
    {object_section::time, "t_fmt", field_kind::texts, 1},
    {object_section::time, "am_pm", field_kind::texts, 2},
    {object_section::time, "t_fmt_ampm", field_kind::texts, 1},
    {object_section::time, "era", field_kind::counted, 0},
    {object_section::time, "era_d_fmt", field_kind::texts, 1},
    {object_section::time, "era_t_fmt", field_kind::texts, 1},
    {object_section::time, "era_d_t_fmt", field_kind::texts, 1},
    {object_section::time, "alt_digits", field_kind::counted, 0},
    {object_section::messages, "yesexpr", field_kind::texts, 1},
    {object_section::messages, "noexpr", field_kind::texts, 1},
    {object_section::messages, "yesstr", field_kind::texts, 1},
    {object_section::messages, "nostr", field_kind::texts, 1},
};
inline constexpr size_t object_field_count = std::size(object_fields);

inline constexpr const char *object_section_names[] = {"LC_NUMERIC", "LC_MONETARY", "LC_TIME",
                                                       "LC_MESSAGES"};
inline const char *section_name(object_section section) {
    return object_section_names[static_cast<size_t>(section)];
}

struct object_field_value {
    std::vector<std::string> texts; // bytes in the object's code set; also the word of a line
    std::vector<int64_t> numbers;
};

struct locale_object {
    std::vector<std::string> head; // the lines that readers skip
    std::string code_set;          // its name in the code-set registry, at most 19 characters
    std::vector<object_character> characters;             // in the order of their bytes
    std::vector<std::pair<int, std::string>> class_names; // bit and name
    std::vector<object_case_pair> pairs;                  // index 1 is the first
    double growth = 1.0;                                  // of a text by case conversion
    object_collation collation;
    object_field_value fields[object_field_count];

    object_field_value &field(object_section section, std::string_view keyword);
};

// The longest text of a field, and what to say of a longer one.
inline constexpr size_t max_text_length = lco_text_limit;
std::string too_long_text(std::string_view text);

// Characters of a contraction or expansion.
inline constexpr size_t longest_collating_sequence = 15;

// Class names that a listing may have; the runtime makes use of five.
inline constexpr size_t most_class_names = 1000;

// Whether a word names one of the runtime's calendars.
bool is_calendar(std::string_view name);

// A code set's name as objects hold it: 1 to 19 characters, none of them blank.
bool is_code_set_name(std::string_view name);

// The object as its file. Throws compiler_failure when it cannot be one.
std::string write_object(const locale_object &object);

// Lets the runtime load an object's bytes. Throws compiler_failure, which begins with the name of
// the source, when it refuses them.
void check_by_loading(const std::string &bytes, const std::string &source);

// The object of a file, as the runtime loads it. Throws compiler_failure when it refuses the file.
locale_object read_object(const source_file &file);

} // namespace kestrion
