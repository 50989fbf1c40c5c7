#include "gls/naming/specifier_text.h"

#include "base/ascii_class.h"
#include "gls/naming/category_words.h"

#include <string.h>

using namespace kestrion;

namespace {

using text_view = std::string_view;

bool is_simple(text_view body, gl_spec_pieces &pieces) {
    const int32_t length = static_cast<int32_t>(body.size());
    return length != 0 && _gl_is_xopen_spec(body.data(), length, &pieces) == length;
}

} // namespace

namespace kestrion {

size_t language_and_territory(text_view text) {
    size_t language = 0;
    while (language < text.size() && language < 4 && is_ascii_letter(text[language]))
        ++language;
    if (language < 2 || language > 3 || text.size() < language + 3 || text[language] != '_')
        return 0;
    return is_ascii_letter(text[language + 1]) && is_ascii_letter(text[language + 2]) ? language + 3
                                                                                      : 0;
}

int keyword_slot(text_view text) {
    for (int slot = 0; slot < gl_category_count; ++slot) {
        if (text.starts_with(category_words[slot].text))
            return slot;
    }
    return -1;
}

bool cut_spec(text_view text, spec_items &found) {
    found = {};
    found.composite = keyword_slot(text) >= 0;
    if (!found.composite) {
        found.count = 1;
        found.of[0] = {.keyword = {}, .slot = 0, .body = text};
        return true;
    }
    unsigned seen = 0;
    while (!text.empty()) {
        const int slot = keyword_slot(text);
        if (slot < 0 || (seen & 1u << slot) != 0)
            return false;
        seen |= 1u << slot;
        const text_view keyword = category_words[slot].text;
        text.remove_prefix(keyword.size());
        if (!text.starts_with(spec_equals))
            return false;
        text.remove_prefix(spec_equals.size());
        const text_view body = text.substr(0, text.find(' '));
        text.remove_prefix(body.size());
        if (!text.empty() && !text.starts_with(spec_separator))
            return false;
        text.remove_prefix(text.empty() ? 0 : spec_separator.size());
        found.of[found.count++] = {
            .keyword = keyword, .slot = static_cast<size_t>(slot), .body = body};
    }
    return true;
}

void start_item(out_text &out, const spec_item &category, bool first) {
    if (category.keyword.empty())
        return;
    out.add(first ? text_view() : spec_separator).add(category.keyword).add(spec_equals);
}

size_t room_for(const spec_items &found, text_view dir) {
    const size_t directory = dir.empty() ? 0 : dir.size() + 1;
    return found.composite ? gl_composite_spec_size + gl_category_count * directory
                           : gl_simple_spec_size + directory;
}

int parsed_spec::parse(void *ctx, text_view spec, const char *regfile) {
    if (!cut_spec(spec, found))
        return fail(ctx, GLS_ERR_SPECIFIER);
    for (int32_t i = 0; i < found.count; ++i) {
        const text_view body = found.of[i].body;
        if (!is_simple(body, pieces[i]))
            return fail(ctx, GLS_ERR_SPECIFIER);
        char name[gl_max_code_set_length + 1] = {};
        body.copy(name, static_cast<size_t>(pieces[i].code_set_length),
                  static_cast<size_t>(pieces[i].code_set));
        int32_t &word = *_gl_ext_errno(ctx);
        const int32_t word_before = word;
        word = GLS_OK;
        const int its_number = gl_cs_name2cs_num(ctx, name, regfile);
        // A name may also spell the unknown number, with which the registry did not fail.
        if (its_number == gl_unknown_code_set)
            return word == GLS_OK ? fail(ctx, GLS_ERR_SPECIFIER) : -1;
        word = word_before;
        if (i != 0 && its_number != number)
            return fail(ctx, GLS_ERR_SPECIFIER);
        number = its_number;
    }
    return 0;
}

void parsed_spec::add_file_name(out_text &out, int32_t i) const {
    const text_view body = found.of[i].body;
    for (const char c : body.substr(0, static_cast<size_t>(pieces[i].language_length) + 3))
        out.add(ascii_lower(c));
    out.add('/').add_hex(number);
    out.add(body.substr(static_cast<size_t>(pieces[i].modifier),
                        static_cast<size_t>(pieces[i].modifier_length)));
    out.add(".lco");
}

} // namespace kestrion

int _gl_is_category(const char *text, int32_t *length) {
    const int slot = keyword_slot(text);
    if (length != nullptr)
        *length = slot < 0 ? 0 : static_cast<int32_t>(strlen(category_words[slot].text));
    return slot < 0 ? GL_KEYWORD_NONE : category_words[slot].keyword;
}

int32_t _gl_is_xopen_spec(const char *text, int32_t length, gl_spec_pieces *pieces) {
    const text_view whole(text, length < 0 ? 0 : static_cast<size_t>(length));
    const size_t lang = language_and_territory(whole);
    if (lang == 0 || lang == whole.size() || whole[lang] != '.')
        return 0;
    const size_t code_set = lang + 1;
    size_t at = code_set;
    while (at < whole.size() && is_ascii_graphic(whole[at]) && whole[at] != '@')
        ++at;
    const size_t code_set_length = at - code_set;
    if (code_set_length == 0 || code_set_length > gl_max_code_set_length || whole[code_set] == '#')
        return 0;
    size_t modifier = at;
    if (at < whole.size() && whole[at] == '@') {
        modifier = ++at;
        while (at < whole.size() && is_ascii_alnum(whole[at]))
            ++at;
        if (at - modifier > gl_max_modifier_length)
            return 0;
    }
    if (at < whole.size() && whole[at] != ' ')
        return 0;
    if (pieces != nullptr)
        *pieces = {.language_length = static_cast<int32_t>(lang) - 3,
                   .code_set = static_cast<int32_t>(code_set),
                   .code_set_length = static_cast<int32_t>(code_set_length),
                   .modifier = static_cast<int32_t>(modifier),
                   .modifier_length = static_cast<int32_t>(at - modifier)};
    return static_cast<int32_t>(at);
}
