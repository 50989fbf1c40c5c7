// The statements of one category of a locale source.
#pragma once

#include "compilers/posix/locale_source.h"

#include <stdint.h>
#include <string_view>

namespace kestrion {

// Reads them one after the other; copy statements are not followed.
class statement_reader {
public:
    statement_reader(const locale_source &source, const locale_source::category &category)
        : source_(source), text_(source.file().text().substr(0, category.end)),
          at_(category.begin) {}

    // False at the end of the category. Throws source_error.
    bool next(source_statement &statement);

private:
    bool skip_to_token(bool anything_read);
    source_token next_token();
    source_token symbol_token();
    source_token string_token();
    source_token bytes_token();
    source_token escaped_token();
    source_token ellipsis_token();
    source_token word_token();
    bool skip_past(char mark);
    bool at_line_continuation() const;

    const locale_source &source_;
    std::string_view text_; // of the source, up to the end of the category
    uint32_t at_;
};

} // namespace kestrion
