#include "compilers/mklco/time_format.h"

#include <string_view>

namespace kestrion {
namespace {

constexpr std::string_view plain_conversions = "%AaBbCcDdehHIjMmnpRrSTtuwXxYy";
constexpr std::string_view era_conversions = "CgyYxXc";
constexpr std::string_view digit_conversions = "CDHIMRSTdejmuwy"; // in alternative digits

struct replacement {
    std::string_view conversion, by;
};
constexpr replacement replacements[] = {
    {"F", "%Y-%m-%d"}, {"k", "%H"},  {"l", "%I"}, {"P", "%p"},
    {"OB", "%B"},      {"Op", "%p"}, {"Z", ""},   {"z", ""},
};

bool is_character(const text_element &element) {
    return element.is == text_element::kind::code_point;
}

bool is_blank(const text_element &element) {
    return is_character(element) &&
           (element.value == ' ' || element.value == 0xA0 || element.value == 0x202F);
}

// The formatter's own text for a conversion without flags; null when it has none.
bool formatter_text(const std::string &conversion, std::string &text) {
    for (const replacement &row : replacements)
        if (row.conversion == conversion) {
            text = row.by;
            return true;
        }
    std::string_view allowed = plain_conversions;
    if (conversion.size() == 2)
        allowed = conversion[0] == 'E' ? era_conversions : digit_conversions;
    text.assign("%").append(conversion);
    return !conversion.empty() && allowed.find(conversion.back()) != std::string_view::npos;
}

} // namespace

std::vector<text_element> rewrite_format(const locale_source &source,
                                         const std::vector<text_element> &format) {
    std::vector<text_element> out;
    auto letter = [&](size_t i) {
        return i < format.size() && is_character(format[i]) && format[i].value < 0x80
                   ? static_cast<char>(format[i].value)
                   : '\0';
    };
    for (size_t i = 0; i < format.size(); ++i) {
        if (letter(i) != '%') {
            out.push_back(format[i]);
            continue;
        }
        uint32_t offset = format[i].offset;
        std::string conversion, text;
        while (letter(i + 1) == '-')
            ++i;
        if (letter(i + 1) == 'E' || letter(i + 1) == 'O')
            conversion += letter(++i);
        if (char c = letter(i + 1); c != '\0') {
            conversion += c;
            ++i;
        }
        if (!formatter_text(conversion, text)) {
            std::string what("%");
            throw source_error(source.place(offset),
                               what.append(conversion) + " has no counterpart in the formatter",
                               "use a conversion that it has");
        }
        for (char c : text)
            out.push_back(
                {text_element::kind::code_point, static_cast<unsigned char>(c), {}, offset});
        if (!text.empty())
            continue;
        if (!out.empty() && is_blank(out.back()))
            out.pop_back();
        else if (i + 1 < format.size() && is_blank(format[i + 1]))
            ++i;
    }
    return out;
}

} // namespace kestrion
