#include <kestrion/time_expand.h>

#include "gls/base/engine_error.h"
#include "gls/time/era_lookup.h"
#include "gls/time/format_walk.h"

#include <algorithm>
#include <stddef.h>
#include <stdint.h>

using namespace kestrion;

namespace {

constexpr int64_t last_year = 9999; // of those that era conversions write

constexpr int64_t largest_of_digits(int32_t digits) {
    int64_t power = 1;
    for (; digits > 0; --digits)
        power *= 10;
    return power - 1;
}

// The units that a text of ours takes.
int64_t units_of(locale_rec *, const gl_wchar *, int32_t length, const gl_wchar *) {
    return length;
}

int64_t units_of(locale_rec *lc, const gl_wchar *text, int32_t length, const char *) {
    int64_t bytes = 0;
    for (int32_t i = 0; i < length; ++i)
        bytes += wide_length(text[i], ctype_of(lc).mb_loc_min);
    return bytes;
}

template <class unit> class time_measure : public format_visit<unit> {
public:
    explicit time_measure(locale_rec *locale) : format_visit<unit>(locale) {}

    int64_t total() const { return total_; }

    const unit *plain_part(const unit *format) const { return format; }
    int32_t text(const unit *start, const unit *end) { return add(end - start); }
    int32_t character(char c) {
        const auto wide = static_cast<gl_wchar>(static_cast<unsigned char>(c));
        return add(units_of(visit::lc, &wide, 1, visit::form));
    }
    int32_t number(const time_number &number, const directive &d);
    int32_t fraction(const directive &d);
    int32_t name(name_list list);
    int32_t half_day();
    int32_t era_name(const text_field<era_rec> &field);
    int32_t era_year(const directive &d);
    int32_t era_form();

private:
    using visit = format_visit<unit>;

    int32_t add(int64_t units) {
        total_ += units;
        return GLS_OK;
    }
    static int64_t longer(int64_t longest, const unit *text) {
        return text == nullptr ? longest : std::max<int64_t>(longest, length_of(text));
    }
    static int64_t longest_of(const name_table<unit> &names, int64_t count) {
        int64_t longest = 0;
        for (int64_t i = 0; i < count; ++i)
            longest = longer(longest, names.names[i]);
        return longest;
    }
    int64_t units_of_digit() const {
        const gl_wchar digit = '0';
        return units_of(visit::lc, &digit, 1, visit::form);
    }
    template <size_t count>
    int32_t add_number(const int64_t (&numbers)[count], const number_shape &usual,
                       const number_shape &wanted);
    template <size_t count>
    int32_t longest_number(const int64_t (&numbers)[count], const number_shape &usual,
                           const number_shape &wanted, int64_t digit, int64_t &longest) const;
    int32_t own_number(int64_t largest, const number_shape &usual, const number_shape &wanted);

    int64_t total_ = 0;
};

// The longest of some numbers and `longest`; a digit takes `digit` units.
template <class unit>
template <size_t count>
int32_t time_measure<unit>::longest_number(const int64_t (&numbers)[count],
                                           const number_shape &usual, const number_shape &wanted,
                                           int64_t digit, int64_t &longest) const {
    for (const int64_t number : numbers) {
        shaped_number made;
        const int32_t error = shape_number(visit::lc, number, usual, wanted, made);
        if (error != GLS_OK)
            return error;
        const auto digits = std::count_if(made.text, made.text + made.length,
                                          [](gl_wchar c) { return c >= '0' && c <= '9'; });
        const int64_t units = units_of(visit::lc, made.text, made.length, visit::form);
        longest = std::max(longest, units + digits * (digit - units_of_digit()));
    }
    return GLS_OK;
}

template <class unit>
template <size_t count>
int32_t time_measure<unit>::add_number(const int64_t (&numbers)[count], const number_shape &usual,
                                       const number_shape &wanted) {
    int64_t longest = 0;
    const int32_t error = longest_number(numbers, usual, wanted, units_of_digit(), longest);
    return error == GLS_OK ? add(longest) : error;
}

// In the locale's digits, as they are written: by the number's text, else digit by digit.
template <class unit>
int32_t time_measure<unit>::own_number(int64_t largest, const number_shape &usual,
                                       const number_shape &wanted) {
    const auto own = own_digits_in(visit::data, visit::form);
    int64_t longest = longest_of(own, std::min<int64_t>(own.count, largest + 1));
    const int64_t digit = own.count < 10 ? units_of_digit() : longest_of(own, 10);
    const int32_t error = own.count > largest
                              ? GLS_OK
                              : longest_number({own.count, largest}, usual, wanted, digit, longest);
    return error == GLS_OK ? add(longest) : error;
}

// The smallest number counts as well as the largest: padded to the same columns, the one with fewer
// separators may take more units.
template <class unit>
int32_t time_measure<unit>::number(const time_number &number, const directive &d) {
    const int64_t largest = largest_of_digits(number.digits);
    return d.own_digits ? own_number(largest, usual_shape(number), d.shape)
                        : add_number({0, largest}, usual_shape(number), d.shape);
}

template <class unit> int32_t time_measure<unit>::fraction(const directive &d) {
    if (d.fraction_digits == 0)
        return GLS_OK;
    return add_number({0, largest_of_digits(d.fraction_digits)}, usual_shape(d.fraction_digits),
                      fraction_shape(d));
}

template <class unit> int32_t time_measure<unit>::name(name_list list) {
    const auto names = names_in(visit::data, list, visit::form);
    return add(longest_of(names, names.count));
}

template <class unit> int32_t time_measure<unit>::half_day() {
    const int64_t am = longer(0, text_in(visit::data, am_text, visit::form));
    return add(longer(am, text_in(visit::data, pm_text, visit::form)));
}

template <class unit> int32_t time_measure<unit>::era_name(const text_field<era_rec> &field) {
    int64_t longest = 0;
    for (int32_t i = 0; i < visit::data.era_count; ++i)
        longest = longer(longest, text_in(visit::data.eras[i], field, visit::form));
    return add(longest);
}

// The years that an era can have among those that are written, at both ends; a year may begin or
// end within the era's year.
template <class unit> int32_t time_measure<unit>::era_year(const directive &d) {
    int64_t longest = 0;
    int32_t error = GLS_OK;
    for (int32_t i = 0; error == GLS_OK && i < visit::data.era_count; ++i) {
        const era_rec &era = visit::data.eras[i];
        const bool open = int64_t{era.open_end} * era.direction > 0;
        const int64_t other_end = !open ? era.end_year : era.direction > 0 ? last_year : 0;
        const int64_t start = std::clamp<int64_t>(era.start_year, 0, last_year);
        const int64_t end = std::clamp<int64_t>(other_end, 0, last_year);
        const int64_t a = year_in_era(era, start, era.start_month, era.start_day);
        const int64_t b = year_in_era(era, end, era.start_month, era.start_day);
        error = longest_number({a - 1, a, b - 1, b, 0}, usual_shape(era_year_precision), d.shape,
                               units_of_digit(), longest);
    }
    return error == GLS_OK ? add(longest) : error;
}

template <class unit> int32_t time_measure<unit>::era_form() {
    const int64_t before = total_;
    int64_t longest = before;
    int32_t error = GLS_OK;
    for (int32_t i = 0; error == GLS_OK && i < visit::data.era_count; ++i) {
        total_ = before;
        error = put_new_fmt(*this, text_in(visit::data.eras[i], era_format, visit::form));
        longest = std::max(longest, total_);
    }
    total_ = longest;
    return error;
}

template <class unit> int32_t measure(locale_rec *lc, const unit *format, int32_t mode) {
    constexpr int32_t the_only_mode = 1;
    time_measure<unit> visit(lc);
    int32_t error = format == nullptr       ? GLS_ERR_NULL_ARGUMENT
                    : mode != the_only_mode ? GLS_ERR_ARGUMENT
                                            : walk_format(visit, format);
    if (error == GLS_OK && visit.total() > INT32_MAX)
        error = GLS_ERR_NO_ROOM;
    if (error == GLS_OK)
        return static_cast<int32_t>(visit.total());
    return fail(lc, error);
}

} // namespace

int32_t gl_wcsfmtexpand(locale_rec *lc, const gl_wchar *format, int32_t mode) {
    return measure(lc, format, mode);
}

int32_t gl_mbsfmtexpand(locale_rec *lc, const char *format, int32_t mode) {
    return measure(lc, format, mode);
}
