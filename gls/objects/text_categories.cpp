// The categories that are texts and a few numbers: NUMERIC, MONETARY, MESSAGES.

#include <kestrion/categories.h>

#include "gls/objects/category_data.h"
#include <kestrion/locale_file.h>

using namespace kestrion;

namespace {

// In the order of the file; the group sizes follow the first ones.
constexpr text_field<numeric_rec> numeric_separators[] = {
    {&numeric_rec::decimal_point, &numeric_rec::wide_decimal_point},
    {&numeric_rec::thousands_sep, &numeric_rec::wide_thousands_sep},
};
constexpr text_field<numeric_rec> numeric_signs[] = {
    {&numeric_rec::positive_sign, &numeric_rec::wide_positive_sign},
    {&numeric_rec::negative_sign, &numeric_rec::wide_negative_sign},
};

constexpr text_field<monetary_rec> monetary_symbols[] = {
    {&monetary_rec::int_curr_symbol, &monetary_rec::wide_int_curr_symbol},
    {&monetary_rec::currency_symbol, &monetary_rec::wide_currency_symbol},
    {&monetary_rec::mon_decimal_point, &monetary_rec::wide_mon_decimal_point},
    {&monetary_rec::mon_thousands_sep, &monetary_rec::wide_mon_thousands_sep},
};
constexpr text_field<monetary_rec> monetary_signs[] = {
    {&monetary_rec::positive_sign, &monetary_rec::wide_positive_sign},
    {&monetary_rec::negative_sign, &monetary_rec::wide_negative_sign},
};
constexpr int32_t monetary_rec::*monetary_numbers[] = {
    &monetary_rec::int_frac_digits, &monetary_rec::frac_digits,   &monetary_rec::p_cs_precedes,
    &monetary_rec::p_sep_by_space,  &monetary_rec::n_cs_precedes, &monetary_rec::n_sep_by_space,
    &monetary_rec::p_sign_posn,     &monetary_rec::n_sign_posn,
};

constexpr text_field<messages_rec> message_texts[] = {
    {&messages_rec::yesexpr, &messages_rec::wide_yesexpr},
    {&messages_rec::noexpr, &messages_rec::wide_noexpr},
    {&messages_rec::yesstr, &messages_rec::wide_yesstr},
    {&messages_rec::nostr, &messages_rec::wide_nostr},
};

} // namespace

int32_t read_numeric(locale_rec *lc, FILE *file) {
    numeric_rec &r = lc->numeric_cat;
    return reader_result(read_texts(lc, file, r, numeric_separators) &&
                         read_group(lc, file, &r.grouping) == 0 &&
                         read_texts(lc, file, r, numeric_signs));
}

int32_t read_monetary(locale_rec *lc, FILE *file) {
    monetary_rec &r = lc->monetary_cat;
    if (!read_texts(lc, file, r, monetary_symbols) || read_group(lc, file, &r.mon_grouping) != 0 ||
        !read_texts(lc, file, r, monetary_signs))
        return 1;
    for (auto number : monetary_numbers)
        if (!read_number_line(lc, file, INT32_MIN, INT32_MAX, r.*number))
            return 1;
    return 0;
}

int32_t read_messages(locale_rec *lc, FILE *file) {
    return reader_result(read_texts(lc, file, lc->messages_cat, message_texts));
}

int32_t init_numeric_info(locale_rec *lc) {
    numeric_rec &r = lc->numeric_cat;
    return reader_result(set_function_pointers(lc) == 0 && widen_texts(lc, r, numeric_separators) &&
                         widen_texts(lc, r, numeric_signs));
}

int32_t init_monetary_info(locale_rec *lc) {
    monetary_rec &r = lc->monetary_cat;
    return reader_result(set_function_pointers(lc) == 0 && widen_texts(lc, r, monetary_symbols) &&
                         widen_texts(lc, r, monetary_signs));
}

int32_t init_message_info(locale_rec *lc) {
    return reader_result(set_function_pointers(lc) == 0 &&
                         widen_texts(lc, lc->messages_cat, message_texts));
}

namespace kestrion {

bool empty_numeric(locale_rec *lc) {
    lc->numeric_cat = {};
    free_numeric(lc);
    return true;
}

bool empty_monetary(locale_rec *lc) {
    lc->monetary_cat = {};
    free_monetary(lc);
    for (auto number : monetary_numbers)
        lc->monetary_cat.*number = gl_money_unset;
    return true;
}

bool empty_messages(locale_rec *lc) {
    lc->messages_cat = {};
    free_messages(lc);
    return true;
}

void free_numeric(locale_rec *lc) {
    free_texts(lc->numeric_cat, numeric_separators);
    free_texts(lc->numeric_cat, numeric_signs);
}

void free_monetary(locale_rec *lc) {
    free_texts(lc->monetary_cat, monetary_symbols);
    free_texts(lc->monetary_cat, monetary_signs);
}

void free_messages(locale_rec *lc) { free_texts(lc->messages_cat, message_texts); }

} // namespace kestrion
