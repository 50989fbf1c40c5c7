#include "compilers/posix/symbolic_name.h"

#include "base/ascii_class.h"

#include <algorithm>
#include <charconv>
#include <stdio.h>

namespace kestrion {
namespace {

constexpr size_t longest_counted_name = 64;
constexpr uint32_t greatest_code_point = 0x7FFFFFFF; // charmaps may name more than Unicode has

// The digits that end a name: where they begin, and their value in base 10 or 16.
bool split_number(std::string_view name, int base, size_t &digits_at, uint32_t &value) {
    digits_at = name.size();
    while (digits_at > 0) {
        const int digit = ascii_hex_value(name[digits_at - 1]);
        if (digit < 0 || digit >= base)
            break;
        --digits_at;
    }
    const auto result =
        std::from_chars(name.data() + digits_at, name.data() + name.size(), value, base);
    return digits_at < name.size() && result.ec == std::errc();
}

} // namespace

uint32_t code_point_of_name(std::string_view name) {
    if ((name.size() != 5 && name.size() != 9) || name[0] != 'U')
        return no_code_point;
    uint32_t value = 0;
    for (const char c : name.substr(1)) {
        const int digit = ascii_hex_value(c);
        if (digit < 0)
            return no_code_point;
        value = value << 4 | static_cast<uint32_t>(digit);
    }
    return value <= greatest_code_point ? value : no_code_point;
}

std::string code_point_text(uint32_t code_point) {
    char text[16];
    snprintf(text, sizeof text, "U+%04X", code_point);
    return text;
}

std::optional<counted_names> counted_names::between(std::string_view first, std::string_view last,
                                                    int base) {
    uint32_t from = 0, to = 0;
    size_t first_at = 0, last_at = 0;
    if (first.size() > longest_counted_name || last.size() > longest_counted_name ||
        !split_number(first, base, first_at, from) || !split_number(last, base, last_at, to) ||
        first.substr(0, first_at) != last.substr(0, last_at) || from > to ||
        to - from >= code_point_limit)
        return {};
    counted_names names;
    names.prefix_ = first.substr(0, first_at);
    names.digits_ = first.size() - first_at;
    names.from_ = from;
    names.size_ = to - from + 1;
    names.base_ = base;
    return names;
}

std::string counted_names::name(uint32_t index) const {
    char buffer[16];
    char *const end = std::to_chars(buffer, buffer + sizeof buffer, from_ + index, base_).ptr;
    std::string number(buffer, end);
    std::transform(number.begin(), number.end(), number.begin(),
                   [](char c) { return ascii_upper(c); });
    const size_t zeros = digits_ > number.size() ? digits_ - number.size() : 0;
    return std::string(prefix_) + std::string(zeros, '0') + number;
}

} // namespace kestrion
