// The classes and letter case of the "C" locale, whatever the host's locale is: names and object
// files are read by these. A byte above 127 is in no class.

#pragma once

namespace kestrion {

constexpr bool is_ascii_white(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool is_ascii_digit(int c) { return c >= '0' && c <= '9'; }
constexpr bool is_ascii_upper(int c) { return c >= 'A' && c <= 'Z'; }
constexpr bool is_ascii_lower(int c) { return c >= 'a' && c <= 'z'; }
constexpr bool is_ascii_letter(int c) { return is_ascii_upper(c) || is_ascii_lower(c); }
constexpr bool is_ascii_alnum(int c) { return is_ascii_letter(c) || is_ascii_digit(c); }
constexpr bool is_ascii_graphic(int c) { return c > ' ' && c < 0x7F; }

constexpr char ascii_lower(int c) { return static_cast<char>(is_ascii_upper(c) ? c + 32 : c); }
constexpr char ascii_upper(int c) { return static_cast<char>(is_ascii_lower(c) ? c - 32 : c); }

// Value of a hexadecimal digit in either case, or -1.
constexpr int ascii_hex_value(int c) {
    if (is_ascii_digit(c))
        return c - '0';
    const int letter = ascii_lower(c);
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

} // namespace kestrion
