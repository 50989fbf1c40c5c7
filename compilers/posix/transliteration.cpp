#include "compilers/posix/transliteration.h"

namespace kestrion {
namespace {

constexpr size_t most_substitutes = 100; // of a character; each is tried wherever it occurs

// The characters of a token; false when one of them is not a code point.
bool code_points(const locale_source &source, const source_token &token, std::u32string &found) {
    found.clear();
    if (token.code_point != no_code_point) {
        found.push_back(token.code_point);
        return true;
    }
    for (const text_element &element : source.elements(token)) {
        if (element.is != text_element::kind::code_point)
            return false;
        found.push_back(element.value);
    }
    return true;
}

} // namespace

transliteration::transliteration(source_library &library, const locale_source &source) {
    read(library, source);
}

void transliteration::read(source_library &library, const locale_source &source) {
    if (!read_.insert(&source).second)
        return;
    bool inside = false;
    std::vector<std::pair<std::string, source_place>> included;
    library.for_each_statement(source, "LC_CTYPE", [&](const source_statement &statement) {
        std::string_view keyword = statement.keyword();
        if (keyword == "translit_start" || keyword == "translit_end")
            inside = keyword == "translit_start";
        else if (inside && keyword == "include" && statement.tokens.size() > 1)
            included.emplace_back(statement.tokens[1].text, statement.place(1));
        else if (inside && keyword != "default_missing" && keyword != "translit_ignore")
            add(statement, statement.source == &source);
    });
    for (const auto &[name, place] : included)
        read(library, library.open_from(place, name));
}

void transliteration::add(const source_statement &statement, bool own) {
    std::u32string text;
    if (!code_points(*statement.source, statement.tokens[0], text) || text.size() != 1)
        return;
    uint32_t code_point = text[0];
    std::vector<std::u32string> found;
    for (size_t i = 1; i < statement.tokens.size(); ++i)
        if (statement.tokens[i].kind != token_kind::semicolon &&
            code_points(*statement.source, statement.tokens[i], text))
            found.push_back(text);
    if (found.size() > most_substitutes)
        throw source_error(statement.place(),
                           "more than " + std::to_string(most_substitutes) + " substitutes",
                           "give the best");
    if (own && read_.size() == 1)
        substitutes_.insert_or_assign(code_point, std::move(found));
    else
        substitutes_.try_emplace(code_point, std::move(found));
}

const std::vector<std::u32string> *transliteration::find(uint32_t code_point) const {
    auto found = substitutes_.find(code_point);
    return found == substitutes_.end() ? nullptr : &found->second;
}

} // namespace kestrion
