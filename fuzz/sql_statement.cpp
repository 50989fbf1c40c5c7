// Statement text of any bytes: tokens, the eraser and the checks stay inside it, the eraser keeps every
// length and everything outside quotes, and erasing twice is erasing once.

#include <kestrion/password_eraser.h>
#include <kestrion/sql_tokens.h>
#include <kestrion/statement_check.h>
#include <kestrion/statement_walk.h>

#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <string>

namespace {

void require(bool held) {
    if (!held)
        abort();
}

void walk(const std::string &text) {
    const char *end = text.c_str();
    const char *start;
    do {
        const char *from = end;
        start = sqltoken(from, &end);
        require(from <= start && start <= end && end <= text.c_str() + text.size());
    } while (start != end);
    for (const char *at = text.c_str(); *at != '\0';) {
        const char *after = skipword(at);
        require(after > at);
        at = skipwhite(after);
        skipcomments(&at);
    }
}

void erase(const std::string &text) {
    std::string once = text;
    erasepassword(once.data());
    require(strlen(once.c_str()) == text.size());
    for (size_t i = 0; i < text.size(); ++i)
        require(once[i] == text[i] || once[i] == 'X');
    std::string twice = once;
    erasepassword(twice.data());
    require(once == twice);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::string text(reinterpret_cast<const char *>(data), size);
    const int32_t answer = chkstmt(text.data(), static_cast<int32_t>(size));
    require(answer == 0 || answer == 1);
    text.resize(strlen(text.c_str()));
    walk(text);
    erase(text);
    const char *found = extpos(text.c_str(), "returning");
    require(found >= text.c_str() && found <= text.c_str() + text.size());
    if (!text.empty())
        collection_literal(text.data(), text.data() + text.size() - 1);
    return 0;
}
