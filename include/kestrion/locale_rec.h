// One loaded locale: six categories of data, each read from a locale object file, and the choice of
// routines that suits them.
//
// A wide character holds the packed bytes of the multibyte character, first byte highest: the two
// bytes A1 B2 are the value 0xA1B2, the byte 41 is 0x41. It is not a code point of any universal
// set and means nothing outside the locale that made it. A character has at most four bytes; a
// string ends with as many zero bytes as the code set's shortest character has.
//
// A record is read-only once its categories are set, but for its error word, which an operation
// that fails writes: threads may share one where none depends on that word. The texts and tables of
// a category belong to the record, unless `shared` says that another record lent them; the other
// record must then live longer. Every operation on characters takes a null record for single-byte
// ASCII.

#pragma once

#include <kestrion/category.h>
#include <kestrion/char_desc.h>

#include <stdint.h>

typedef struct multi_arr multi_arr;       // <kestrion/multi.h>
typedef struct multi_step multi_step;     // <kestrion/multi.h>
typedef struct locale_rec locale_rec;     // below
typedef struct order_tables order_tables; // private to the engine

enum {
    gl_cs_name_size = 21,   // code-set name: 19 characters in a file, and room
    gl_file_name_size = 34, // file name: 33 characters and the terminator
    gl_group_limit = 15,    // group sizes in one list
    gl_level_limit = 8,     // collation levels
    gl_week_days = 7
};

// A member of a null monetary category: not available.
enum { gl_money_unset = 0x7fffffff };
// A group size that ends grouping; 0 as the last size repeats the size before it.
#define gl_group_end UINT32_C(0xffffffff)

// Collation weights.
enum {
    coll_ignored = 1,          // no weight at this level
    coll_expands = 0x4000,     // the low bits index the expansions
    coll_tie_on_char = 0x8000, // equal weights: compare the characters
    coll_value_bits = 0x3fff
};

// Directions of collation levels.
enum { coll_forward = 1, coll_backward = 2 };

typedef int32_t (*gl_mbscoll_fn)(locale_rec *, const char *, const char *);
typedef int32_t (*gl_mbfscoll_fn)(locale_rec *, const char *, int32_t, const char *, int32_t);
// Destination and source, but for the Thai method: source and destination.
typedef int32_t (*gl_mbsxfrm_fn)(locale_rec *, char *first, const char *second, int32_t size);
typedef int32_t (*gl_mbstowcs_fn)(locale_rec *, gl_wchar *, const char *, int32_t);
typedef int32_t (*gl_mbfstowcfs_fn)(locale_rec *, gl_wchar *, const char *, int32_t, int32_t);

// A class beyond the standard ones; the first row of a name counts.
typedef struct class_row {
    int32_t bit; // 0..4 give a mask that a character can have; anything else names an empty class
    char *name;  // owned
} class_row;

// Partners in case; 0 for "no mapping in this direction".
typedef struct case_pair {
    gl_wchar upper;
    gl_wchar lower;
} case_pair;

// A partner's bytes in the code set.
typedef struct case_text {
    unsigned char bytes[gl_char_bytes];
    int32_t length; // 0: no partner in this direction, or not one of the code set's characters
} case_text;

// What to add to a wide character for its partners, plus case_shift_bias; 0: ask the case table.
typedef struct case_shift {
    uint16_t to_upper;
    uint16_t to_lower;
} case_shift;

enum {
    case_shift_bias = 0x8000 // so that untouched memory says "ask"
};

typedef struct ctype_rec {
    multi_arr *class_table;   // uint16_t mask by character; defines which sequences are characters
    int32_t class_name_count; // rows of class_names
    class_row *class_names;   // null without any
    multi_arr *case_index;    // uint16_t index into case_pairs by character; 0 no partner
    case_pair *case_pairs;    // case_pair_count + 1 entries; entry 0 is never used
    // What lookups use instead, made when the category is read.
    int32_t case_pair_count;      //
    int32_t mb_loc_max;           // bytes of the longest character; 0 in an empty category
    int32_t mb_loc_min;           // of the shortest one; 4 in an empty category
    int32_t ascii_bytes;          // 1: the bytes 01-7F are characters
    int32_t plain_ascii;          // 1: they have the case of ASCII, too
    const multi_step *class_walk; // the flat form of class_table, never null
    const multi_step *byte_walk;  // the same; no_characters when every character has several bytes
    const multi_step *case_walk;  // the flat form of case_index, never null
    uint32_t prefix_count;    // entries of the next two: wide characters below this << 8 use them
    uint16_t *class_prefixes; // state of class_walk by all bytes of a wide character but the last
    uint16_t *case_prefixes;  // the same of case_walk
    uint32_t shift_count;     // entries of case_shifts
    case_shift *case_shifts;  // by wide characters of one and two bytes
    case_text *case_texts;    // upper and lower partner of each pair, [2 * index]
} ctype_rec;

// The sequence of characters that a collation row is short for.
typedef struct coll_expansion {
    int32_t length;  // 0..15
    gl_wchar *chars; // owned
} coll_expansion;

// A sequence of characters that collates as one row; tried in the order of the table.
typedef struct coll_contraction {
    int32_t length;  // 0..15
    gl_wchar *chars; // owned
    uint16_t row;    // 0..max_row
} coll_contraction;

// A text of an equivalence class and the last text of that class.
typedef struct coll_equiv {
    char *member;
    char *last; // lent by the pair's class: the same block in every pair of the class
} coll_equiv;

enum coll_method {
    COLL_NONE = 0,
    COLL_AS_SPECIFIED = 1,
    COLL_THAI_SMO = 2,
    COLL_PLUG_IN = 3,
};

typedef struct collate_rec {
    char **ignorable_chars; // null-ended: characters ignored at every level; null when not analysed
    coll_equiv *equiv_pairs;   // ended by a null member; null without any
    multi_arr *row_table;      // uint16_t row by character, 0..max_row
    int32_t level_count;       // 0..8
    int32_t max_row;           // level_weights have max_row + 1 entries
    int32_t expansion_count;   //
    int32_t contraction_count; //
    uint32_t max_weight;       // largest weight; fixes the width of a weight in a sort key
    int32_t level_order[gl_level_limit];     // coll_forward or coll_backward
    uint16_t *level_weights[gl_level_limit]; // weight of each row by level
    coll_expansion *expansions;              //
    coll_contraction *contractions;          //
    int32_t code_order_form;                 // not 0: strings order by code; 1: rows stored unread
    coll_expansion **sb_expansions[gl_level_limit]; // 256 by byte: its expansion or null
    int32_t *contraction_start; // 256 by byte: 1 when a contraction begins with it; or null
    int32_t coll_method;        // enum coll_method
    order_tables *order;        // what lookups use instead; null when there are no rows
} collate_rec;

// Sizes of digit groups, from the right.
typedef struct group_rec {
    int32_t count; // 0..15
    uint32_t sizes[gl_group_limit];
} group_rec;

typedef struct numeric_rec {
    char *decimal_point;
    char *thousands_sep;
    group_rec grouping;
    char *positive_sign;
    char *negative_sign;
    // The same texts as wide characters, made when the category is initialised.
    gl_wchar *wide_decimal_point;
    gl_wchar *wide_thousands_sep;
    gl_wchar *wide_positive_sign;
    gl_wchar *wide_negative_sign;
} numeric_rec;

typedef struct monetary_rec {
    char *int_curr_symbol; // used by %i
    char *currency_symbol; // used by %n
    char *mon_decimal_point;
    char *mon_thousands_sep;
    group_rec mon_grouping;
    char *positive_sign;
    char *negative_sign;
    int32_t int_frac_digits; // this and the next seven: gl_money_unset when unknown
    int32_t frac_digits;
    int32_t p_cs_precedes;
    int32_t p_sep_by_space;
    int32_t n_cs_precedes;
    int32_t n_sep_by_space;
    int32_t p_sign_posn;
    int32_t n_sign_posn;
    // The same texts as wide characters.
    gl_wchar *wide_int_curr_symbol;
    gl_wchar *wide_currency_symbol;
    gl_wchar *wide_mon_decimal_point;
    gl_wchar *wide_mon_thousands_sep;
    gl_wchar *wide_positive_sign;
    gl_wchar *wide_negative_sign;
} monetary_rec;

typedef struct messages_rec {
    char *yesexpr;
    char *noexpr;
    char *yesstr;
    char *nostr;
    // The same texts as wide characters.
    gl_wchar *wide_yesexpr;
    gl_wchar *wide_noexpr;
    gl_wchar *wide_yesstr;
    gl_wchar *wide_nostr;
} messages_rec;

typedef struct era_rec {
    int32_t direction;   // +1 or -1
    int32_t offset;      // year number of the era's first year
    int32_t start_day;   // 1..31
    int32_t start_month; // 1..12
    int32_t start_year;  // Gregorian, may be negative
    int32_t end_day;     // this and the next two: 0 when the era has no end
    int32_t end_month;
    int32_t end_year;
    int32_t open_end;  // times direction above 0: no end ("+*" is 1, "-*" is -1)
    char *name;        // %EC
    char *second_name; // %Eg
    char *format;      // %EY
    gl_wchar *wide_name;
    gl_wchar *wide_second_name;
    gl_wchar *wide_format;
} era_rec;

enum calendar_number {
    CALENDAR_GREGORIAN = 1,
    CALENDAR_HEBREW = 2,
    CALENDAR_ISLAMIC = 3,
    CALENDAR_ARABIC = 4,
};

typedef struct time_rec {
    int32_t calendar;          // enum calendar_number; 0 in an empty category
    char *day[gl_week_days];   // full names, Sunday first
    char *abday[gl_week_days]; //
    char **mon;                // full names; month_count texts, null without any
    char **abmon;              // month_count texts
    int32_t month_count;       //
    char *am;                  //
    char *pm;                  //
    int32_t alt_digit_count;   //
    char **alt_digits;         // null without any
    char *d_fmt;               // date
    char *d_t_fmt;             // date and time
    char *t_fmt;               // time
    char *t_fmt_ampm;          // 12-hour time
    char *era_d_fmt;           // era date
    char *era_t_fmt;           // era time
    char *era_d_t_fmt;         // era date and time
    era_rec *eras;             // in the order of the file; the first that fits counts
    int32_t era_count;         //
    char **era_texts;          // era_count texts as the file has them
    // The same texts as wide characters.
    gl_wchar *wide_day[gl_week_days];
    gl_wchar *wide_abday[gl_week_days];
    gl_wchar **wide_mon;
    gl_wchar **wide_abmon;
    gl_wchar *wide_am;
    gl_wchar *wide_pm;
    gl_wchar **wide_alt_digits;
    gl_wchar *wide_d_fmt;
    gl_wchar *wide_d_t_fmt;
    gl_wchar *wide_t_fmt;
    gl_wchar *wide_t_fmt_ampm;
    gl_wchar *wide_era_d_fmt;
    gl_wchar *wide_era_t_fmt;
    gl_wchar *wide_era_d_t_fmt;
} time_rec;

struct locale_rec {
    int32_t err; // error word (<kestrion/gls_errors.h>); must stay the first field
    // Routines chosen for the code set and the order.
    gl_mbscoll_fn mbscoll_fn;
    gl_mbfscoll_fn mbfscoll_fn;
    gl_mbsxfrm_fn mbsxfrm_fn;
    gl_mbstowcs_fn mbstowcs_fn;
    gl_mbfstowcfs_fn mbfstowcfs_fn;
    double case_expansion; // greatest growth of a text by case conversion; 1.0 at first
    double max_expansion;  // longest expansion or contraction; 1.0 at first
    uint8_t *sb_upper;  // 256 by byte; this and the next two exist in a single-byte code set only
    uint8_t *sb_lower;  // 256 by byte
    uint16_t *sb_class; // 256 masks by byte
    int32_t is_single_byte; // 1: no character is longer than one byte
    int32_t code_set_order; // 1: strings order by their code values
    ctype_rec ctype_cat;
    collate_rec collate_cat;
    numeric_rec numeric_cat;
    monetary_rec monetary_cat;
    messages_rec messages_cat;
    time_rec time_cat;
    char cs_names[gl_category_count][gl_cs_name_size];     // code set of each category, CTYPE first
    char file_names[gl_category_count][gl_file_name_size]; // object file of each category
    gl_wchar wide_cs_names[gl_category_count][gl_cs_name_size];
    gl_wchar wide_file_names[gl_category_count][gl_file_name_size];
    int32_t shared[gl_category_count];     // 1: the category's data belong to another record
    int32_t glu_collate;                   // copy of the collation's glu_in_use
    uintptr_t glu_word;                    // the Unicode plug-in's own
    int32_t glu_in_use[gl_category_count]; // 1: the plug-in serves the category
    void *glu_locale[gl_category_count];   // the plug-in's locale object
    const multi_step *order_walk; // finds rows and characters at once; null when they differ
};
