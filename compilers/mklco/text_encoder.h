// Texts of locale sources in the bytes of a code set.
//
// A character that the charmap lacks is written by the first of its transliterations whose
// characters it all has. Without one it is lost: "?" in a name, an error in a format, which a "?"
// would spoil. A symbolic name that the charmap does not have is an error.
#pragma once

#include "compilers/posix/charmap.h"
#include "compilers/posix/transliteration.h"

#include <optional>
#include <span>

namespace kestrion {

enum class text_use { name, format };

class text_encoder {
public:
    text_encoder(source_library &library, const locale_source &source, const charmap &map,
                 diagnostics &said)
        : library_(library), source_(source), map_(map), said_(said) {}

    // The bytes of characters of `from`. Throws source_error.
    std::string encode(const locale_source &from, std::span<const text_element> text, text_use use);
    // The bytes of a text of ASCII characters.
    std::string encode_ascii(std::string_view text) const;

private:
    void append(std::string &out, const locale_source &from, const text_element &element,
                text_use use);
    bool is_spelt(std::string_view bytes) const;
    bool append_code_points(std::string &out, const std::u32string &text) const;

    source_library &library_;
    const locale_source &source_;
    const charmap &map_;
    diagnostics &said_;
    std::optional<transliteration> substitutes_; // read when first needed
};

} // namespace kestrion
