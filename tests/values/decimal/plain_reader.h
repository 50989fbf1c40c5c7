// A second reader of decimal texts, on copies of text and with loops over digits, for neutral and
// other conventions of one-byte signs.

#pragma once

#include <kestrion/decimal.h>

#include <string>
#include <vector>

#include "values/decimal/loops.h"

namespace plain {

struct conventions {
    std::string radix, separator, plus, minus;
    std::vector<int> groups; // 0 repeats the one before it, -1 ends
};

struct read {
    int answer;
    dec_value value;
};

// By the reversed integer part: a separator is one character of it.
inline bool groups_hold(const conventions &in, const std::string &number) {
    std::string part = number.substr(0, number.find(in.radix)), reversed;
    for (size_t at = 0; at < part.size();) {
        const bool separator = part.compare(at, in.separator.size(), in.separator) == 0;
        reversed.insert(reversed.begin(), separator ? ',' : 'd');
        at += separator ? in.separator.size() : 1;
    }
    const bool any = reversed.find(',') != std::string::npos;
    size_t last = 0;
    for (size_t i = 0; i < 3; ++i) {
        const int size = i < in.groups.size() ? in.groups[i] : -1;
        if (size == -1)
            return i > 0 && reversed.find(',') == std::string::npos;
        if (size == 0) {
            while (last > 0 && reversed.size() > last) {
                if (reversed[last] != ',')
                    return false;
                reversed.erase(0, last + 1);
            }
            return last > 0;
        }
        last = static_cast<size_t>(size);
        if (reversed.size() <= last)
            return !any;
        if (reversed[last] != ',')
            return false;
        reversed.erase(0, last + 1);
    }
    return true;
}

inline bool is_digit(char c) { return c >= '0' && c <= '9'; }

inline bool only_the_end(std::string rest) {
    rest.erase(0, rest.find_first_not_of(' '));
    return rest.empty() || rest[0] == '\n';
}

inline read refuse(int answer) { return {answer, loops::zero()}; }

inline read hexadecimal(const std::string &digits, bool negative) {
    const size_t length =
        std::min(digits.find_first_not_of("0123456789abcdefABCDEF"), digits.size());
    if (!only_the_end(digits.substr(length)))
        return refuse(-1213);
    uint32_t value = 0;
    for (char c : digits.substr(0, length))
        value = value * 16 + static_cast<uint32_t>(std::stoul(std::string(1, c), nullptr, 16));
    int64_t number = static_cast<int32_t>(negative ? 0 - value : value);
    read result = {0, loops::null()};
    if (number == INT32_MIN)
        return result;
    unsigned char bytes[6] = {};
    int64_t rest = number < 0 ? -number : number;
    for (int i = 5; i > 0; --i, rest /= 100)
        bytes[i] = static_cast<unsigned char>(rest % 100);
    result.answer = loops::load(result.value, number >= 0, 5, bytes + 1, 5);
    return result;
}

inline read decimal(const conventions &in, std::string text) {
    text = text.substr(0, text.find('\0'));
    text.erase(0, text.find_first_not_of(' '));
    if (text.empty())
        return {0, loops::null()};
    text.erase(text.find_last_not_of(' ') + 1);

    bool negative = false;
    if (!in.minus.empty() && text[0] == in.minus[0])
        negative = true, text.erase(0, 1);
    else if (!in.plus.empty() && text[0] == in.plus[0])
        text.erase(0, 1);
    else if (in.plus.empty() && text[0] == '+')
        text.erase(0, 1);
    else if (text[0] == '-')
        negative = true, text.erase(0, 1);

    const auto starts = [&](const std::string &with) {
        return !with.empty() && text.compare(0, with.size(), with) == 0;
    };
    if (text.empty() || (!is_digit(text[0]) && !starts(in.radix)))
        return refuse(-1213);
    if (starts("0x") || starts("0X"))
        return hexadecimal(text.substr(2), negative);

    const std::string whole = text;
    std::string digits;
    long point = 0;
    bool fraction = false, separated = false;
    for (;;) {
        if (!text.empty() && is_digit(text[0])) {
            if (text[0] != '0' || !digits.empty()) {
                digits += text[0];
                point += !fraction;
            } else if (fraction) {
                --point;
            }
            text.erase(0, 1);
        } else if (starts(in.radix)) {
            if (fraction)
                return refuse(-1213);
            fraction = true;
            text.erase(0, in.radix.size());
        } else if (starts(in.separator)) {
            if ((fraction && in.separator != " ") || (!separated && !groups_hold(in, whole)))
                return refuse(-1213);
            separated = true;
            text.erase(0, in.separator.size());
        } else {
            break;
        }
    }
    if (!text.empty() && (text[0] == 'e' || text[0] == 'E')) {
        size_t at = 1;
        const bool minus = at < text.size() && text[at] == '-';
        if (at < text.size() && (text[at] == '-' || text[at] == '+'))
            ++at;
        long exponent = 0;
        for (; at < text.size() && is_digit(text[at]); ++at)
            exponent = std::min(exponent * 10 + (text[at] - '0'), 1000000L);
        point += minus ? -exponent : exponent;
        text.erase(0, at);
        if (point < -130 || point > 126)
            return refuse(point < 0 ? -1201 : -1200);
    }
    if (!only_the_end(text))
        return refuse(-1213);

    if (point % 2 != 0)
        digits.insert(digits.begin(), '0');
    digits.resize(32, '0');
    unsigned char bytes[17] = {};
    for (size_t i = 0; i < 16; ++i)
        bytes[i + 1] =
            static_cast<unsigned char>((digits[2 * i] - '0') * 10 + digits[2 * i + 1] - '0');
    read result;
    const long exponent = (point + (point % 2 != 0)) / 2;
    result.answer =
        loops::load(result.value, !negative, static_cast<int>(std::clamp(exponent, -9999L, 9999L)),
                    bytes + 1, 16);
    return result.answer == 0 ? result : refuse(result.answer);
}

} // namespace plain
