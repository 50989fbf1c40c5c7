#include <kestrion/character_tables.h>

#include <kestrion/os_control.h>

#include <ctype.h>

namespace {

constexpr int first_high_byte = 128;
constexpr int last_high_lower = 173; // 46 high bytes count as lower case; stays as it is

unsigned char classes_of(int c) {
    const struct {
        int belongs;
        unsigned char bit;
    } answers[] = {
        {isupper(c), CHARACTER_UPPER}, {islower(c), CHARACTER_LOWER},
        {isdigit(c), CHARACTER_DIGIT}, {isspace(c), CHARACTER_SPACE},
        {ispunct(c), CHARACTER_PUNCT}, {iscntrl(c), CHARACTER_CONTROL},
        {isxdigit(c), CHARACTER_HEX},  {isprint(c), CHARACTER_PRINT},
    };
    int classes = 0;
    for (const auto &answer : answers)
        classes |= answer.belongs != 0 ? answer.bit : 0;
    return static_cast<unsigned char>(classes);
}

} // namespace

int ldctypearr(void) {
    if (CheckOsInit() == nullptr)
        return -1;
    _ixctype[0] = 0;
    for (int c = 0; c < 256; ++c) {
        _ixctype[c + 1] = classes_of(c);
        _ix2lowmap[c] = static_cast<unsigned char>(tolower(c));
        _ix2upmap[c] = static_cast<unsigned char>(toupper(c));
    }
    return 0;
}

int rld8bitarr(void) {
    for (int c = first_high_byte; c < 256; ++c)
        _ixctype[c + 1] = c <= last_high_lower ? CHARACTER_LOWER : CHARACTER_PUNCT;
    return 0;
}
