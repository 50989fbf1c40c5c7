// What to write for a character that a code set lacks: the transliterations of a locale source.
//
// LC_CTYPE has them between translit_start and translit_end, a character and its substitutes
// in order of preference, and come from included sources too:
//
//     include "translit_combining";""
//     <U00E4> "<U00E4>";"ae"
//
// A locale's own lines go before those that it copies or includes. Lines for several characters
// together are ignored.
#pragma once

#include "compilers/posix/source_library.h"

#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace kestrion {

class transliteration {
public:
    // Throws source_error.
    transliteration(source_library &library, const locale_source &source);

    // The substitutes of a character, the best first; an empty one drops it. Null: there are none.
    const std::vector<std::u32string> *find(uint32_t code_point) const;

private:
    void read(source_library &library, const locale_source &source);
    void add(const source_statement &statement, bool own);

    std::set<const locale_source *> read_; // includes may meet again
    std::unordered_map<uint32_t, std::vector<std::u32string>> substitutes_;
};

} // namespace kestrion
