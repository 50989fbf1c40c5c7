#include "platform/character_tables.h"

#include <ctype.h>
#include <locale.h>
#include <string.h>

#include "env/registry.h"
#include "general/error_numbers.h"
#include "platform/os_control.h"

namespace {

constexpr int first_high_byte = 128;
constexpr int last_high_lower = 173; // 46 high bytes count as lower case; stays as it is

constinit bool set_up = false; // rldctype has run

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

extern "C" {

int ldctypearr(void) {
    if (CheckOsInit() == nullptr)
        return -1;
    _ixctype[0] = 0;
    for (int c = 0; c < 256; c++) {
        _ixctype[c + 1] = classes_of(c);
        _ix2lowmap[c] = static_cast<unsigned char>(tolower(c));
        _ix2upmap[c] = static_cast<unsigned char>(toupper(c));
    }
    return 0;
}

int rldnlsctype(const char *locale_name) {
    if (setlocale(LC_CTYPE, locale_name) == nullptr)
        return err_process_locale;
    return ldctypearr() == 0 ? 0 : err_no_block;
}

int rld8bitarr(void) {
    for (int c = first_high_byte; c < 256; c++)
        _ixctype[c + 1] = c <= last_high_lower ? CHARACTER_LOWER : CHARACTER_PUNCT;
    return 0;
}

int rldctype(void) {
    if (set_up)
        return 0;
    set_up = true;
    const char *dbnls = ggetenv("DBNLS");
    if (dbnls == nullptr || (strcmp(dbnls, "1") != 0 && strcmp(dbnls, "2") != 0))
        return rld8bitarr();
    return rldnlsctype("") == 0 ? 0 : -1;
}
}
