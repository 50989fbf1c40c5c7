#include <kestrion/strings.h>

#include "base/sign.h"
#include <kestrion/byte_blocks.h>
#include <kestrion/character_tables.h>

#include <algorithm>
#include <string.h>

namespace {

bool ends_word(char c) { return c == ' ' || c == '\0'; }

unsigned char lower(char c) { return _ix2lowmap[static_cast<unsigned char>(c)]; }

} // namespace

char *stcat(const char *source, char *destination) { return strcat(destination, source); }

char *stcopy(const char *source, char *destination) { return strcpy(destination, source); }

void stncopy(const char *source, char *destination, ptrdiff_t size) {
    if (size < 1)
        return;
    const size_t length = strnlen(source, static_cast<size_t>(size) - 1);
    memcpy(destination, source, length);
    destination[length] = '\0';
}

int stcmpr(const char *a, const char *b) { return kestrion::sign(strcmp(a, b)); }

int stcmpri(const char *a, const char *b) {
    while (lower(*a) == lower(*b) && *a != '\0') {
        ++a;
        ++b;
    }
    return kestrion::sign(lower(*a) - lower(*b));
}

ptrdiff_t stleng(const char *text) { return static_cast<ptrdiff_t>(strlen(text)); }

ptrdiff_t stnleng(const char *text, ptrdiff_t limit) {
    return limit < 1 ? 0 : static_cast<ptrdiff_t>(strnlen(text, static_cast<size_t>(limit)));
}

char *stchr(const char *text, int character) {
    for (; *text != '\0'; ++text)
        if (static_cast<signed char>(*text) == character)
            return const_cast<char *>(text);
    return nullptr;
}

int cmprstr(const char *a, const char *b, ptrdiff_t limit) {
    if (a == nullptr || b == nullptr)
        return a == b ? 0 : -1;
    for (ptrdiff_t i = 0; i < limit; ++i) {
        if (ends_word(a[i]) || ends_word(b[i]))
            return ends_word(a[i]) && ends_word(b[i]) ? 0 : -1;
        if (a[i] != b[i])
            return -1;
    }
    return 0;
}

ptrdiff_t _sttrmrt(char *text, ptrdiff_t length) {
    const ptrdiff_t before = length < 0 ? stleng(text) : length;
    const ptrdiff_t after = qvt_byleng(text, before);
    if (after < before)
        text[after] = '\0';
    return after;
}

char *qvt_strtok(char *text, const char *separators, char **save) {
    if (text == nullptr && *save == nullptr)
        return nullptr;
    return strtok_r(text, separators, save);
}
