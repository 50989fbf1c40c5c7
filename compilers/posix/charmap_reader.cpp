#include "compilers/posix/charmap_reader.h"

#include "base/ascii_class.h"

#include <algorithm>
#include <charconv>
#include <numeric>
#include <optional>
#include <span>

namespace kestrion {
namespace {

constexpr size_t most_rows = 2 * size_t{code_point_limit};
constexpr size_t most_names = size_t{1} << 18;
constexpr std::string_view one_way_mark = "%IRREVERSIBLE%";
constexpr int greatest_width = 8;        // columns
constexpr int greatest_head_length = 16; // what a head may say of its longest character

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

// Moves to the next byte sequence: the last byte counts up and carries into those before it. Trail
// bytes have the values that the code set gives them. False when the sequence runs over.
bool step(code_sequence &sequence, unsigned first_trail, unsigned last_trail) {
    for (int i = sequence.length - 1; i > 0; --i) {
        if (sequence.bytes[i] != last_trail) {
            ++sequence.bytes[i];
            return true;
        }
        sequence.bytes[i] = static_cast<unsigned char>(first_trail);
    }
    return sequence.bytes[0]++ != 0xFF;
}

} // namespace

void charmap_reader::read() {
    for (size_t next = 0; next < text_.size(); next = line_end_ + 1) {
        at_ = next;
        line_end_ = std::min(text_.find('\n', next), text_.size());
        line();
    }
    for (charmap_row &row : map_.rows)
        if (row.width < 0)
            row.width = static_cast<int8_t>(default_width_);
    if (map_.rows.empty())
        fail(text_.size(), "the charmap has no characters",
             "give it a section CHARMAP with a row for each character");
    if (part_ == part::characters || part_ == part::widths)
        fail(text_.size(), "the last section has no end", "close it with END CHARMAP or END WIDTH");
}

void charmap_reader::line() {
    skip_blanks();
    if (part_ == part::characters && take(one_way_mark)) {
        character_line(true);
        return;
    }
    if (at_end())
        return;
    if (here() == comment_) {
        alias_comment();
        return;
    }
    switch (part_) {
    case part::head:
    case part::between:
        head_line();
        break;
    case part::characters:
        if (take("END"))
            section_end(part::between);
        else
            character_line(false);
        break;
    case part::widths:
        if (take("END"))
            section_end(part::between);
        else
            width_line();
        break;
    }
}

// "% alias NAME" is how charmaps give their other names.
void charmap_reader::alias_comment() {
    ++at_;
    skip_blanks();
    if (part_ == part::head && take("alias")) {
        skip_blanks();
        std::string_view name = plain_word();
        if (!name.empty())
            map_.aliases.emplace_back(name);
    }
}

void charmap_reader::head_line() {
    if (take("CHARMAP")) {
        if (!map_.rows.empty())
            fail(at_, "a second section CHARMAP", "make one of the two");
        part_ = part::characters;
        return;
    }
    if (take("WIDTH_DEFAULT")) {
        skip_blanks();
        default_width_ = decimal(greatest_width);
        map_.has_widths = true;
        return;
    }
    if (take("WIDTH")) {
        if (widths_read_)
            fail(at_, "a second section WIDTH", "make one of the two");
        widths_read_ = map_.has_widths = true;
        part_ = part::widths;
        return;
    }
    if (here() != '<')
        fail(at_, "expected a <name> with its value, or a section",
             "write <code_set_name> NAME, CHARMAP or WIDTH");
    size_t name_at = at_;
    std::string_view name = bracketed_name();
    skip_blanks();
    if (name == "code_set_name") {
        map_.code_set_name = plain_word();
    } else if (name == "mb_cur_min") {
        map_.mb_cur_min = decimal(gl_char_bytes);
    } else if (name == "mb_cur_max") {
        decimal(greatest_head_length); // the rows decide; some heads count bytes that no row has
    } else if (name == "comment_char" || name == "comment") {
        comment_ = here();
    } else if (name == "escape_char") {
        escape_ = here();
    } else {
        fail(
            name_at, "unknown name " + std::string(name) + " in the head",
            "the head holds <code_set_name>, <mb_cur_min>, <mb_cur_max>, <comment_char> and <escape_char>");
    }
}

void charmap_reader::section_end(part next) {
    skip_blanks();
    std::string_view wanted = part_ == part::characters ? "CHARMAP" : "WIDTH";
    if (!take(wanted))
        fail(at_, "this END closes another section", "write END " + std::string(wanted));
    if (part_ == part::characters)
        map_.index_rows();
    else
        apply_widths();
    part_ = next;
}

void charmap_reader::character_line(bool one_way) {
    name_range range = names();
    skip_blanks();
    code_sequence first = sequence();
    if (range.last.empty())
        add_row(code_point_of_name(range.first), range.first, first, one_way, range.offset);
    else
        add_range(range, first, one_way);
}

void charmap_reader::width_line() {
    name_range range = names();
    skip_blanks();
    note_width(range, decimal(greatest_width));
}

void charmap_reader::skip_blanks() {
    while (at_ < line_end_ && is_blank(text_[at_]))
        ++at_;
}

// Moves over `word` where it is next.
bool charmap_reader::take(std::string_view word) {
    if (!text_.substr(at_, line_end_ - at_).starts_with(word))
        return false;
    at_ += word.size();
    return true;
}

std::string_view charmap_reader::plain_word() {
    size_t begin = at_;
    while (!at_end() && !is_blank(here()))
        ++at_;
    std::string_view word = text_.substr(begin, at_ - begin);
    if (word.size() >= 2 && word.front() == '"' && word.back() == '"')
        word = word.substr(1, word.size() - 2);
    return word;
}

std::string_view charmap_reader::bracketed_name() {
    if (here() != '<')
        fail(at_, "expected a symbolic name", "write it in angle brackets, as <U0041>");
    size_t begin = ++at_;
    while (here() != '>') {
        if (here() == escape_)
            ++at_;
        if (at_end())
            fail(begin - 1, "this symbolic name does not end", "close it with >");
        ++at_;
    }
    return text_.substr(begin, at_++ - begin);
}

charmap_reader::name_range charmap_reader::names() {
    name_range range;
    range.offset = static_cast<uint32_t>(at_);
    range.first = bracketed_name();
    while (here() == '<') { // one sequence for several characters together, named by all of them
        std::string_view next = bracketed_name();
        range.first = {range.first.data(),
                       static_cast<size_t>(next.data() + next.size() - range.first.data())};
    }
    size_t dots_at = at_;
    while (here() == '.')
        ++at_;
    size_t dots = at_ - dots_at;
    if (dots == 0)
        return range;
    if (dots == 1 || dots > 4)
        fail(dots_at, "expected two to four points",
             "two count in hexadecimal, three and four in decimal");
    range.hexadecimal = dots == 2;
    range.last = bracketed_name();
    return range;
}

code_sequence charmap_reader::sequence() {
    code_sequence result;
    size_t begin = at_;
    while (here() == escape_) {
        if (result.length == gl_char_bytes)
            fail(begin, "a character of more than 4 bytes", "give it at most 4");
        result.bytes[result.length++] = byte_constant();
    }
    if (result.length == 0)
        fail(begin, "expected the bytes of the character",
             std::string("write them as ") + escape_ + "x41, " + escape_ + "d065 or " + escape_ +
                 "101");
    return result;
}

unsigned char charmap_reader::byte_constant() {
    const size_t begin = at_++;
    unsigned char byte = 0;
    const size_t length = read_byte_form(text_.substr(at_, line_end_ - at_), byte);
    if (length == 0)
        fail(begin, "expected the number of a byte",
             "write x and two hexadecimal digits, d and two or three decimal ones, or octal ones");
    at_ += length;
    return byte;
}

int charmap_reader::decimal(int greatest) {
    int value = 0;
    const char *begin = text_.data() + at_;
    auto [end, error] = std::from_chars(begin, text_.data() + line_end_, value);
    if (error != std::errc() || value < 0 || value > greatest)
        fail(at_, "expected a number from 0 to " + std::to_string(greatest), "write it in decimal");
    at_ += static_cast<size_t>(end - begin);
    return value;
}

void charmap_reader::add_row(uint32_t code_point, std::string_view name,
                             const code_sequence &sequence, bool one_way, uint32_t offset) {
    if (map_.rows.size() == most_rows)
        fail(offset, "more than " + std::to_string(most_rows) + " characters",
             "no code set has so many; look for a range that is too long");
    if (code_point == no_code_point && map_.named_rows_.size() == most_names)
        fail(offset, "more than " + std::to_string(most_names) + " names without a code point",
             "no code set has so many; look for a range that is too long");
    if (code_point == no_code_point && !one_way)
        map_.named_rows_.try_emplace(std::string(name), static_cast<uint32_t>(map_.rows.size()));
    map_.mb_cur_max = std::max<int>(map_.mb_cur_max, sequence.length);
    map_.rows.push_back({code_point, offset, 0, sequence, -1, one_way});
}

void charmap_reader::add_range(const name_range &range, code_sequence first, bool one_way) {
    uint32_t from = code_point_of_name(range.first), to = code_point_of_name(range.last);
    std::optional<counted_names> names;
    const bool by_code_point = from != no_code_point && to != no_code_point;
    if (!by_code_point) {
        names = counted_names::between(range.first, range.last, range.hexadecimal ? 16 : 10);
        if (!names)
            fail(range.offset, not_a_name_range, name_range_remedy);
        from = 0;
        to = names->size() - 1;
    }
    if (from > to || to - from >= code_point_limit)
        fail(range.offset, "the range ends before it begins, or is too long",
             "give its lower end first");
    // The installed UTF-8 charmap has ranges that go on after a last byte BF.
    bool utf8 = map_.code_set_name == "UTF-8";
    for (uint32_t value = from;; ++value) {
        if (by_code_point)
            add_row(value, {}, first, one_way, range.offset);
        else
            add_row(no_code_point, names->name(value), first, one_way, range.offset);
        if (value == to)
            return;
        if (!step(first, utf8 ? 0x80 : 0x00, utf8 ? 0xBF : 0xFF))
            fail(range.offset, "the range goes on after the last byte sequence",
                 "give fewer characters or a lower start");
    }
}

// Widths are given to all rows whose sequences lie between those of the two ends. Some charmaps
// give widths to characters that they do not have, which are ignored.
void charmap_reader::note_width(const name_range &range, int width) {
    const charmap_row *first = map_.find_name(range.first);
    const charmap_row *last = range.last.empty() ? first : map_.find_name(range.last);
    if (first == nullptr || last == nullptr)
        return;
    const std::span<const uint32_t> rows = map_.between(first->sequence, last->sequence);
    const size_t from = static_cast<size_t>(rows.data() - map_.by_bytes_.data());
    widths_.push_back({from, from + rows.size(), static_cast<int8_t>(width), range.offset});
}

// The last line that names a row counts. So the lines are walked from the last, and each row that
// has its width is stepped over from then on.
void charmap_reader::apply_widths() {
    std::vector<size_t> next(map_.rows.size() +
                             1); // the next place without a width, or a way to it
    std::iota(next.begin(), next.end(), 0);
    const auto next_free = [&](size_t at) {
        while (next[at] != at)
            at = next[at] = next[next[at]];
        return at;
    };
    for (auto line = widths_.rbegin(); line != widths_.rend(); ++line)
        for (size_t at = next_free(line->from); at < line->to; at = next_free(at)) {
            charmap_row &row = map_.rows[map_.by_bytes_[at]];
            row.width = line->width;
            row.width_offset = line->offset;
            next[at] = at + 1;
        }
}

} // namespace kestrion
