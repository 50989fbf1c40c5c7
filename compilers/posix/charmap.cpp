#include "compilers/posix/charmap.h"

#include <algorithm>
#include <charconv>
#include <string.h>

namespace kestrion {
namespace {

constexpr uint32_t greatest_code_point = 0x7FFFFFFF;
constexpr uint64_t longest_range = 0x110000;
constexpr size_t most_rows = 2 * longest_range;
constexpr std::string_view one_way_mark = "%IRREVERSIBLE%";

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

int digit_value(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// The byte sequence behind this one: the last byte counts up and carries into those before it.
// Trail bytes have the values that the code set gives them. False when the sequence runs over.
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

// The digits that end a name: where they begin, and their value in base 10 or 16.
bool split_number(std::string_view name, int base, size_t &digits_at, uint32_t &value) {
    digits_at = name.size();
    while (digits_at > 0) {
        int digit = digit_value(name[digits_at - 1]);
        if (digit < 0 || digit >= base)
            break;
        --digits_at;
    }
    auto result = std::from_chars(name.data() + digits_at, name.data() + name.size(), value, base);
    return digits_at < name.size() && result.ec == std::errc();
}

} // namespace

uint32_t code_sequence::packed() const {
    uint32_t value = 0;
    for (int i = 0; i < length; ++i)
        value = value << 8 | bytes[i];
    return value;
}

uint32_t code_point_of_name(std::string_view name) {
    if ((name.size() != 5 && name.size() != 9) || name[0] != 'U')
        return no_code_point;
    uint32_t value = 0;
    for (char c : name.substr(1)) {
        int digit = digit_value(c);
        if (digit < 0)
            return no_code_point;
        value = value << 4 | static_cast<uint32_t>(digit);
    }
    return value <= greatest_code_point ? value : no_code_point;
}

std::vector<std::string> counted_names(std::string_view first, std::string_view last, int base) {
    uint32_t from = 0, to = 0;
    size_t first_at = 0, last_at = 0;
    std::vector<std::string> names;
    if (!split_number(first, base, first_at, from) || !split_number(last, base, last_at, to) ||
        first.substr(0, first_at) != last.substr(0, last_at) || from > to ||
        uint64_t{to} - from >= longest_range)
        return names;
    size_t digits = first.size() - first_at;
    for (uint64_t value = from; value <= to; ++value) {
        char buffer[16];
        char *end = std::to_chars(buffer, buffer + sizeof buffer, value, base).ptr;
        std::transform(buffer, end, buffer,
                       [](char c) { return c >= 'a' ? static_cast<char>(c - 32) : c; });
        std::string number(buffer, end);
        names.push_back(std::string(first.substr(0, first_at)) +
                        std::string(digits > number.size() ? digits - number.size() : 0, '0') +
                        number);
    }
    return names;
}

// Walks the source line by line.
class charmap_reader {
public:
    charmap_reader(charmap &map, const source_file &source)
        : map_(map), text_(source.text()), source_(source) {}

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
    std::string_view rest_of_line() const;
    std::string_view bracketed_name();
    std::string_view plain_word();
    name_range names();
    code_sequence sequence();
    int byte_constant();
    int decimal(int greatest);

    void add_range(const name_range &range, code_sequence first, bool one_way);
    void add_row(uint32_t code_point, std::string_view name, const code_sequence &sequence,
                 bool one_way, uint32_t offset);
    void set_widths(const name_range &range, int width);

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
    std::vector<uint32_t> by_bytes_; // rows in the order of their sequences, made for the widths
};

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

// "% alias NAME" is how charmaps tell their other names.
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
        part_ = part::characters;
        return;
    }
    if (take("WIDTH_DEFAULT")) {
        skip_blanks();
        default_width_ = decimal(8);
        map_.has_widths = true;
        return;
    }
    if (take("WIDTH")) {
        map_.index_code_points();
        map_.has_widths = true;
        part_ = part::widths;
        return;
    }
    if (here() != '<')
        fail(at_, "neither a <name> with its value nor a section",
             "write <code_set_name> NAME, CHARMAP or WIDTH");
    size_t name_at = at_;
    std::string_view name = bracketed_name();
    skip_blanks();
    if (name == "code_set_name") {
        map_.code_set_name = plain_word();
    } else if (name == "mb_cur_min") {
        map_.mb_cur_min = decimal(max_sequence_length);
    } else if (name == "mb_cur_max") {
        decimal(16); // the rows tell the truth; some heads count bytes that no row has
    } else if (name == "comment_char" || name == "comment") {
        comment_ = here();
    } else if (name == "escape_char") {
        escape_ = here();
    } else {
        fail(
            name_at, "the name " + std::string(name) + " is not known here",
            "the head holds <code_set_name>, <mb_cur_min>, <mb_cur_max>, <comment_char> and <escape_char>");
    }
}

void charmap_reader::section_end(part next) {
    skip_blanks();
    std::string_view wanted = part_ == part::characters ? "CHARMAP" : "WIDTH";
    if (!take(wanted))
        fail(at_, "this END closes another section", "write END " + std::string(wanted));
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
    set_widths(range, decimal(8));
}

void charmap_reader::skip_blanks() {
    while (at_ < line_end_ && is_blank(text_[at_]))
        ++at_;
}

// Moves over `word` when it stands here.
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
        fail(at_, "a symbolic name must stand here", "write it in angle brackets, as <U0041>");
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
        fail(dots_at, "this is no ellipsis",
             "two points count in hexadecimal, three and four in decimal");
    range.hexadecimal = dots == 2;
    range.last = bracketed_name();
    return range;
}

code_sequence charmap_reader::sequence() {
    code_sequence result;
    size_t begin = at_;
    while (here() == escape_) {
        if (result.length == max_sequence_length)
            fail(begin, "a character of more than 4 bytes",
                 "no character of a code set may be longer than 4 bytes");
        result.bytes[result.length++] = static_cast<unsigned char>(byte_constant());
    }
    if (result.length == 0)
        fail(begin, "the bytes of the character must stand here",
             std::string("write them as ") + escape_ + "x41, " + escape_ + "d065 or " + escape_ +
                 "101");
    return result;
}

int charmap_reader::byte_constant() {
    size_t begin = at_++;
    int base = 8;
    if (here() == 'x' || here() == 'd')
        base = text_[at_++] == 'x' ? 16 : 10;
    int value = 0, digits = 0;
    int most = base == 16 ? 2 : 3;
    for (; digits < most && !at_end(); ++digits, ++at_) {
        int digit = digit_value(here());
        if (digit < 0 || digit >= base)
            break;
        value = value * base + digit;
    }
    if (digits < 2 || value > 255)
        fail(begin, "this is no byte",
             "give two hexadecimal digits behind x, or two or three decimal behind d, or octal");
    return value;
}

int charmap_reader::decimal(int greatest) {
    int value = 0;
    const char *begin = text_.data() + at_;
    auto [end, error] = std::from_chars(begin, text_.data() + line_end_, value);
    if (error != std::errc() || value < 0 || value > greatest)
        fail(at_, "a number must stand here",
             "give a decimal number from 0 to " + std::to_string(greatest));
    at_ += static_cast<size_t>(end - begin);
    return value;
}

void charmap_reader::add_row(uint32_t code_point, std::string_view name,
                             const code_sequence &sequence, bool one_way, uint32_t offset) {
    if (map_.rows.size() == most_rows)
        fail(offset, "more than " + std::to_string(most_rows) + " characters",
             "no code set has so many; look for a range that is too long");
    if (code_point == no_code_point && !one_way)
        map_.named_rows_.try_emplace(std::string(name), static_cast<uint32_t>(map_.rows.size()));
    map_.mb_cur_max = std::max<int>(map_.mb_cur_max, sequence.length);
    map_.rows.push_back({code_point, offset, 0, sequence, -1, one_way});
}

void charmap_reader::add_range(const name_range &range, code_sequence first, bool one_way) {
    uint32_t from = code_point_of_name(range.first), to = code_point_of_name(range.last);
    std::vector<std::string> names;
    bool by_code_point = from != no_code_point && to != no_code_point;
    if (!by_code_point) {
        names = counted_names(range.first, range.last, range.hexadecimal ? 16 : 10);
        if (names.empty())
            fail(range.offset, "these names make no range",
                 "both must be the same text with a number behind it, the lower first");
        from = 0;
        to = static_cast<uint32_t>(names.size()) - 1;
    }
    if (from > to || uint64_t{to} - from >= longest_range)
        fail(range.offset, "a range that ends before it begins, or is too long",
             "give its lower end first");
    // The installed UTF-8 charmap has ranges that go on behind a last byte BF.
    bool utf8 = map_.code_set_name == "UTF-8";
    for (uint32_t value = from;; ++value) {
        if (by_code_point)
            add_row(value, {}, first, one_way, range.offset);
        else
            add_row(no_code_point, names[value], first, one_way, range.offset);
        if (value == to)
            return;
        if (!step(first, utf8 ? 0x80 : 0x00, utf8 ? 0xBF : 0xFF))
            fail(range.offset, "the range runs over the last byte sequence",
                 "give fewer characters or a lower start");
    }
}

// Widths are given to all rows whose sequences lie between those of the two ends. Some charmaps
// give widths to characters that they do not have; that says nothing.
void charmap_reader::set_widths(const name_range &range, int width) {
    const charmap_row *first = map_.find_name(range.first);
    const charmap_row *last = range.last.empty() ? first : map_.find_name(range.last);
    if (first == nullptr || last == nullptr)
        return;
    auto key = [this](uint32_t row) {
        const code_sequence &s = map_.rows[row].sequence;
        return uint64_t{s.length} << 32 | s.packed();
    };
    if (by_bytes_.empty()) {
        by_bytes_.resize(map_.rows.size());
        for (uint32_t i = 0; i < by_bytes_.size(); ++i)
            by_bytes_[i] = i;
        std::stable_sort(by_bytes_.begin(), by_bytes_.end(),
                         [&](uint32_t a, uint32_t b) { return key(a) < key(b); });
    }
    uint64_t from = key(static_cast<uint32_t>(first - map_.rows.data()));
    uint64_t to = key(static_cast<uint32_t>(last - map_.rows.data()));
    auto at = std::lower_bound(by_bytes_.begin(), by_bytes_.end(), from,
                               [&](uint32_t row, uint64_t wanted) { return key(row) < wanted; });
    for (; at != by_bytes_.end() && key(*at) <= to; ++at) {
        map_.rows[*at].width = static_cast<int8_t>(width);
        map_.rows[*at].width_offset = range.offset;
    }
}

charmap::charmap(const source_file &source) : source_(source) {
    charmap_reader(*this, source).read();
    index_code_points();
    // Another sequence for a character is as wide as the one that it is written by.
    for (charmap_row &row : rows)
        if (const charmap_row *written = row.one_way ? find(row.code_point) : nullptr) {
            row.width = written->width;
            row.width_offset = written->width_offset;
        }
}

void charmap::index_code_points() {
    pages_.clear();
    for (size_t i = 0; i < rows.size(); ++i) {
        uint32_t code_point = rows[i].code_point;
        if (code_point == no_code_point || code_point > 0x1FFFFF || rows[i].one_way)
            continue;
        uint32_t page = code_point >> 8;
        if (page >= pages_.size())
            pages_.resize(page + 1);
        if (pages_[page].empty())
            pages_[page].resize(256);
        uint32_t &slot = pages_[page][code_point & 0xFF];
        if (slot == 0)
            slot = static_cast<uint32_t>(i) + 1;
    }
}

const charmap_row *charmap::find(uint32_t code_point) const {
    uint32_t page = code_point >> 8;
    if (page >= pages_.size() || pages_[page].empty())
        return nullptr;
    uint32_t slot = pages_[page][code_point & 0xFF];
    return slot == 0 ? nullptr : &rows[slot - 1];
}

const charmap_row *charmap::find_bytes(const code_sequence &wanted) const {
    const charmap_row *found = nullptr;
    for (const charmap_row &row : rows)
        if (row.sequence == wanted && (found == nullptr || (found->one_way && !row.one_way)))
            found = &row;
    return found;
}

const charmap_row *charmap::find_name(std::string_view name) const {
    uint32_t code_point = code_point_of_name(name);
    if (code_point != no_code_point)
        return find(code_point);
    auto found = named_rows_.find(std::string(name));
    return found == named_rows_.end() ? nullptr : &rows[found->second];
}

} // namespace kestrion
