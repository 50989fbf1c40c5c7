#include "compilers/posix/source_conditions.h"

namespace kestrion {
namespace {

std::string_view name_in(const source_statement &line) {
    if (line.tokens.size() != 2)
        throw source_error(line.place(), "expected one name after " + std::string(line.keyword()),
                           "name what is defined or not");
    return line.tokens[1].text;
}

} // namespace

bool source_conditions::is_defined(const source_statement &line) const {
    return defined_.contains(name_in(line));
}

source_conditions::condition &source_conditions::innermost(const source_statement &line) {
    if (open_.empty() || open_.back().place.file != line.place().file)
        throw source_error(line.place(), std::string(line.keyword()) + " without an ifdef",
                           "remove the line, or write the ifdef in this source");
    return open_.back();
}

bool source_conditions::take(const source_statement &line) {
    const std::string_view word = line.keyword();
    if (word == "ifdef") {
        const bool defined = is_defined(line);
        open_.push_back({line.place(), defined || !hold(), defined && hold()});
    } else if (word == "elif" || word == "else") {
        condition &c = innermost(line);
        if (c.has_else)
            throw source_error(line.place(), std::string(word) + " after an else",
                               "put the else last");
        c.has_else = word == "else";
        c.holds = !c.taken && (c.has_else || is_defined(line));
        c.taken = c.taken || c.holds;
    } else if (word == "endif") {
        innermost(line);
        open_.pop_back();
    } else if (word == "define" || word == "undef") {
        const std::string name(name_in(line));
        if (hold() && word == "define")
            defined_.insert(name);
        else if (hold())
            defined_.erase(name);
    } else {
        return false;
    }
    return true;
}

void source_conditions::check_all_are_closed() const {
    if (!open_.empty())
        throw source_error(open_.back().place, "this ifdef has no endif",
                           "write endif after the lines that it rules");
}

} // namespace kestrion
