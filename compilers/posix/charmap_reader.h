// Reads the text of a charmap into its record, line by line.
#pragma once

#include "compilers/posix/charmap.h"

#include <stddef.h>
#include <stdint.h>
#include <string>
#include <string_view>
#include <vector>

namespace kestrion {

class charmap_reader {
public:
    charmap_reader(charmap &map, const source_file &source)
        : map_(map), text_(source.text()), source_(source) {}

    // Throws source_error.
    void read();

private:
    enum class part { head, characters, between, widths };

    struct name_range {
        std::string_view first, last; // without brackets; last is empty when there is no range
        bool hexadecimal = false;
        uint32_t offset = 0;
    };

    void line();
    void head_line();
    void character_line(bool one_way);
    void width_line();
    void section_end(part next);
    void alias_comment();

    void skip_blanks();
    bool at_end() const { return at_ >= line_end_; }
    char here() const { return at_end() ? '\0' : text_[at_]; }
    bool take(std::string_view word);
    std::string_view bracketed_name();
    std::string_view plain_word();
    name_range names();
    code_sequence sequence();
    unsigned char byte_constant();
    int decimal(int greatest);

    void add_range(const name_range &range, code_sequence first, bool one_way);
    void add_row(uint32_t code_point, std::string_view name, const code_sequence &sequence,
                 bool one_way, uint32_t offset);
    void note_width(const name_range &range, int width);
    void apply_widths();

    [[noreturn]] void fail(size_t offset, const std::string &what,
                           const std::string &remedy) const {
        throw source_error({&source_, offset}, what, remedy);
    }

    charmap &map_;
    std::string_view text_;
    const source_file &source_;
    part part_ = part::head;
    size_t at_ = 0;
    size_t line_end_ = 0;
    char comment_ = '#';
    char escape_ = '\\';
    int default_width_ = -1;
    bool widths_read_ = false;

    struct given_width {
        size_t from, to; // places in the map's order by bytes
        int8_t width;
        uint32_t offset;
    };
    std::vector<given_width> widths_;
};

} // namespace kestrion
