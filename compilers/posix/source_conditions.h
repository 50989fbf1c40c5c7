// Conditional lines of a locale source:
//
//     define DIACRIT_BACKWARD        undef NAME
//     ifdef DIACRIT_BACKWARD         the lines up to the next branch count if NAME is defined
//     elif NAME                      else if this one is
//     else
//     endif
//
// A name stays defined in what the source copies. A condition ends in the source where it begins.
#pragma once

#include "compilers/posix/locale_source.h"

#include <set>
#include <string>
#include <vector>

namespace kestrion {

class source_conditions {
public:
    // Takes a line in if it is a conditional one; false for any other. Throws source_error.
    bool take(const source_statement &line);
    // Whether the lines here count.
    bool hold() const { return open_.empty() || open_.back().holds; }
    // Throws source_error for an ifdef without its endif.
    void check_all_are_closed() const;

private:
    struct condition {
        source_place place;
        bool taken; // a branch has held, or none may
        bool holds; // the present branch does
        bool has_else = false;
    };
    condition &innermost(const source_statement &line);
    bool is_defined(const source_statement &line) const;

    std::set<std::string, std::less<>> defined_;
    std::vector<condition> open_;
};

} // namespace kestrion
