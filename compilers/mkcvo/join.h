// Joins two code sets through their characters' Unicode names into a conversion object.
#pragma once

#include "compilers/mkcvo/code_set.h"
#include "compilers/mkcvo/conversion.h"
#include "compilers/posix/transliteration.h"

#include <map>
#include <optional>

namespace kestrion {

// What to write for a character that the target lacks; all make the mapping inexact.
struct substitutes {
    std::map<char32_t, code_sequence> near_bytes; // tried first
    const transliteration *translit = nullptr;    // then this
    std::optional<char32_t> character;
};

// Characters without any counterpart stay valid in the source and are losses; substitutes that the
// target cannot write are errors, and the object is then empty. Throws compiler_failure when the two have no character in common, or when the runtime would take
// one of them for a fixed-width Unicode form.
conversion_object join(const code_set_side &source, const code_set_side &target,
                       const substitutes &instead, diagnostics &said);

} // namespace kestrion
