#include "compilers/mklco/listing.h"

#include "compilers/mklco/listing_words.h"

#include <algorithm>
#include <charconv>
#include <string.h>

namespace kestrion {
namespace {

struct listing_word {
    std::string text; // without quotes and escapes
    size_t offset = 0;
    bool quoted = false;
};

class listing_reader {
public:
    explicit listing_reader(const source_file &source) : source_(source) {}
    locale_object read();

private:
    // What a line gives to a range of characters: a datum of each.
    struct range_value {
        code_sequence first, last;
        uint16_t value;
        bool up;
        size_t offset;
    };

    [[noreturn]] void fail(size_t offset, const std::string &what,
                           const std::string &remedy) const {
        throw source_error({&source_, offset}, what, remedy);
    }

    void split(size_t begin, size_t end);
    listing_word quoted_word(size_t &at, size_t end) const;
    const listing_word &word(size_t index) const;
    void count(size_t least, size_t most) const;
    int64_t number(size_t index, int64_t least, int64_t greatest, int base = 10) const;
    code_sequence sequence(const listing_word &from, std::string_view text) const;
    void range(size_t index, range_value &value) const;
    range_value numbered_range() const;

    void statement();
    void class_line();
    void collation_line(std::string_view keyword);
    void field_line();
    void apply(const std::vector<range_value> &values, uint16_t object_character::*datum);

    const source_file &source_;
    std::vector<listing_word> words_;
    locale_object object_;
    std::vector<range_value> cases_, rows_;
    bool filled_[object_field_count] = {};
};

void listing_reader::split(size_t begin, size_t end) {
    std::string_view text = source_.text();
    words_.clear();
    for (size_t at = begin; at < end;) {
        if (text[at] == ' ' || text[at] == '\t' || text[at] == '\r') {
            ++at;
        } else if (text[at] == '#') {
            return;
        } else if (text[at] == '"') {
            words_.push_back(quoted_word(at, end));
        } else {
            size_t stop = std::min(text.find_first_of(" \t\r\n", at), end);
            words_.push_back({std::string(text.substr(at, stop - at)), at, false});
            at = stop;
        }
    }
}

listing_word listing_reader::quoted_word(size_t &at, size_t end) const {
    std::string_view text = source_.text();
    listing_word word{"", at, true};
    for (at++; at < end && text[at] != '"'; ++at) {
        if (text[at] != '\\') {
            word.text += text[at];
            continue;
        }
        if (++at < end && text[at] != 'x') {
            word.text += text[at];
            continue;
        }
        unsigned value = 0;
        const char *digits = text.data() + at + 1;
        if (end - at < 3 || std::from_chars(digits, digits + 2, value, 16).ptr != digits + 2)
            fail(at - 1, "\\x needs two hexadecimal digits", "write the byte as \\x0a");
        word.text += static_cast<char>(value);
        at += 2;
    }
    if (at >= end)
        fail(word.offset, "this text does not end on its line", "close it with a quotation mark");
    ++at;
    return word;
}

const listing_word &listing_reader::word(size_t index) const {
    if (index >= words_.size())
        fail(words_.back().offset, "something is missing behind this word",
             "complete the " + words_[0].text + " line");
    return words_[index];
}

void listing_reader::count(size_t least, size_t most) const {
    if (words_.size() < least + 1)
        word(least);
    if (words_.size() > most + 1)
        fail(words_[most + 1].offset, "one word too many", "end the line in front of it");
}

int64_t listing_reader::number(size_t index, int64_t least, int64_t greatest, int base) const {
    const std::string &text = word(index).text;
    int64_t value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc() || end != text.data() + text.size() || value < least ||
        value > greatest)
        fail(word(index).offset, "this is no number that can stand here",
             "give one from " + std::to_string(least) + " to " + std::to_string(greatest));
    return value;
}

code_sequence listing_reader::sequence(const listing_word &from, std::string_view text) const {
    code_sequence result;
    size_t length = text.size() / 2;
    if (text.size() % 2 != 0 || length < 1 || length > max_sequence_length)
        fail(from.offset, "this is no character", "give 1 to 4 bytes of two hexadecimal digits");
    for (size_t i = 0; i < length; ++i) {
        const char *digits = text.data() + 2 * i;
        if (std::from_chars(digits, digits + 2, result.bytes[i], 16).ptr != digits + 2)
            fail(from.offset, "this is no character",
                 "give 1 to 4 bytes of two hexadecimal digits");
    }
    result.length = static_cast<uint8_t>(length);
    return result;
}

// "41" or "e38182..e38185".
void listing_reader::range(size_t index, range_value &value) const {
    const listing_word &from = word(index);
    size_t dots = from.text.find("..");
    value.offset = from.offset;
    value.first = sequence(from, std::string_view(from.text).substr(0, dots));
    value.last = dots == std::string::npos
                     ? value.first
                     : sequence(from, std::string_view(from.text).substr(dots + 2));
    auto stem = static_cast<size_t>(value.first.length - 1);
    if (value.first.length != value.last.length ||
        memcmp(value.first.bytes, value.last.bytes, stem) != 0 ||
        value.first.bytes[stem] > value.last.bytes[stem])
        fail(from.offset, "these two make no range",
             "give two characters that differ in the last byte only, the lower first");
}

// "case 41..5a 1+", "row 00 7".
listing_reader::range_value listing_reader::numbered_range() const {
    count(2, 2);
    range_value value{};
    range(1, value);
    std::string text = word(2).text;
    value.up = text.ends_with('+');
    if (value.up)
        text.pop_back();
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value.value);
    if (error != std::errc() || end != text.data() + text.size())
        fail(word(2).offset, "this is no number from 0 to 65535", "write 7, or 7+ to count up");
    return value;
}

void listing_reader::class_line() {
    range_value value{};
    range(1, value);
    count(2, 64);
    uint32_t mask = 0;
    for (size_t i = 2; i < words_.size(); ++i) {
        const std::string &name = words_[i].text;
        uint32_t found = 0;
        for (const class_word &known : class_words)
            if (name == known.word)
                found = known.mask;
        for (const auto &[bit, own] : object_.class_names)
            if (found == 0 && name == own && bit >= 0 && bit < ct_named_limit)
                found = CT_NAMED << bit;
        if (name.size() == 4 && name.starts_with("bit") && name[3] >= '0' &&
            name[3] < '0' + ct_named_limit)
            found = CT_NAMED << (name[3] - '0');
        if (found == 0 && (name != "-" || words_.size() != 3))
            fail(words_[i].offset, "no class has this name",
                 "name it by a class_name line further up");
        mask |= found;
    }
    unsigned end = value.last.bytes[value.last.length - 1];
    for (code_sequence at = value.first;; at.bytes[at.length - 1]++) {
        object_.characters.push_back({at, static_cast<uint16_t>(mask)});
        if (at.bytes[at.length - 1] == end)
            break;
    }
}

void listing_reader::collation_line(std::string_view keyword) {
    object_collation &collation = object_.collation;
    auto characters = [this](size_t from) {
        std::vector<uint32_t> found;
        for (size_t i = from; i < words_.size(); ++i)
            found.push_back(static_cast<uint32_t>(number(i, 0, UINT32_MAX, 16)));
        return found;
    };
    if (keyword == "collation") {
        collation.thai = word(1).text == "thai_smo";
        if (!collation.thai && word(1).text != "as_specified")
            fail(word(1).offset, "no collation has this name", "write as_specified or thai_smo");
    } else if (keyword == "code_order") {
        collation.code_order_form = static_cast<int32_t>(number(1, 0, INT32_MAX));
    } else if (keyword == "max_weight") {
        collation.max_weight = static_cast<uint32_t>(number(1, 0, UINT32_MAX));
    } else if (keyword == "levels") {
        for (uint32_t level : characters(1))
            collation.levels.push_back(static_cast<uint16_t>(level));
    } else if (keyword == "contraction") {
        collation.contractions.push_back(
            {static_cast<uint16_t>(number(1, 0, UINT16_MAX)), characters(2)});
    } else if (keyword == "expansion") {
        collation.expansions.push_back(characters(1));
    } else {
        if (static_cast<size_t>(number(1, 0, UINT16_MAX)) != collation.rows.size())
            fail(word(1).offset, "the weights of the rows must come in their order",
                 "row " + std::to_string(collation.rows.size()) + " comes next");
        collation.rows.emplace_back();
        for (uint32_t weight : characters(2))
            collation.rows.back().push_back(static_cast<uint16_t>(weight));
        if (collation.rows.back().size() != collation.levels.size())
            fail(word(1).offset, "a row has a weight for each level",
                 "give " + std::to_string(collation.levels.size()));
    }
}

void listing_reader::field_line() {
    const std::string &keyword = word(1).text;
    for (size_t i = 0; i < object_field_count; ++i) {
        const object_field &field = object_fields[i];
        if (words_[0].text != object_section_names[static_cast<int>(field.section)] ||
            keyword != field.keyword)
            continue;
        if (filled_[i])
            fail(word(1).offset, "this field has a line already", "remove one of the two");
        bool texts = field.kind != field_kind::group && field.kind != field_kind::integer;
        bool fixed = field.kind != field_kind::group && field.kind != field_kind::counted;
        if (fixed)
            count(1U + field.count, 1U + field.count);
        for (size_t w = 2; w < words_.size(); ++w)
            if (texts)
                object_.fields[i].texts.push_back(words_[w].text);
            else
                object_.fields[i].numbers.push_back(number(w, INT32_MIN, UINT32_MAX));
        filled_[i] = true;
        return;
    }
    fail(word(1).offset, "this section has no such field", "name one that --list prints");
}

void listing_reader::statement() {
    const std::string &keyword = words_[0].text;
    if (keyword == "head") {
        count(1, 1);
        object_.head.push_back(words_[1].text);
    } else if (keyword == "code_set") {
        count(1, 1);
        object_.code_set = words_[1].text;
    } else if (keyword == "class_name") {
        count(2, 2);
        object_.class_names.emplace_back(static_cast<int>(number(1, INT32_MIN, INT32_MAX)),
                                         word(2).text);
    } else if (keyword == "class") {
        class_line();
    } else if (keyword == "pair") {
        count(2, 2);
        auto partner = [this](size_t i) {
            return word(i).text == "-" ? 0 : static_cast<uint32_t>(number(i, 1, UINT32_MAX, 16));
        };
        object_.pairs.push_back({partner(1), partner(2)});
    } else if (keyword == "growth") {
        count(1, 1);
        const std::string &text = words_[1].text;
        auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), object_.growth);
        if (error != std::errc() || end != text.data() + text.size() ||
            !(object_.growth >= 0 && object_.growth <= 16))
            fail(words_[1].offset, "this is no growth factor", "give a number from 0 to 16");
    } else if (keyword == "case") {
        cases_.push_back(numbered_range());
    } else if (keyword == "row") {
        rows_.push_back(numbered_range());
    } else if (keyword == "collation" || keyword == "code_order" || keyword == "max_weight" ||
               keyword == "levels" || keyword == "contraction" || keyword == "expansion" ||
               keyword == "weights") {
        collation_line(keyword);
    } else if (keyword.starts_with("LC_")) {
        field_line();
    } else {
        fail(words_[0].offset, "no statement of a listing begins so",
             "see the listings that --list prints");
    }
}

// Gives their numbers to the characters of ranges; the characters stand sorted by now.
void listing_reader::apply(const std::vector<range_value> &values,
                           uint16_t object_character::*datum) {
    for (const range_value &value : values) {
        auto at = std::lower_bound(object_.characters.begin(), object_.characters.end(),
                                   object_character{value.first}, by_bytes);
        uint16_t number = value.value;
        for (code_sequence wanted = value.first;; wanted.bytes[wanted.length - 1]++, ++at) {
            if (at == object_.characters.end() || !(at->sequence == wanted))
                fail(value.offset, "a character of this range has no class line",
                     "give it one, with - for no class");
            (*at).*datum = number;
            number = static_cast<uint16_t>(number + (value.up ? 1 : 0));
            if (wanted == value.last)
                break;
        }
    }
}

locale_object listing_reader::read() {
    for (size_t number = 1; number <= source_.line_count(); ++number) {
        std::string_view line = source_.line(number);
        auto begin = static_cast<size_t>(line.data() - source_.text().data());
        split(begin, begin + line.size());
        if (number > 1 && !words_.empty())
            statement();
    }
    size_t end = source_.text().size();
    std::stable_sort(object_.characters.begin(), object_.characters.end(), by_bytes);
    for (size_t i = 1; i < object_.characters.size(); ++i)
        if (object_.characters[i].sequence == object_.characters[i - 1].sequence)
            fail(end, "a character has two class lines", "give all its classes in one");
    apply(cases_, &object_character::case_index);
    apply(rows_, &object_character::row);
    for (size_t i = 0; i < object_field_count; ++i)
        if (!filled_[i])
            fail(end,
                 std::string("there is no ") +
                     object_section_names[static_cast<int>(object_fields[i].section)] + " " +
                     object_fields[i].keyword,
                 "write that line, also when nothing follows");
    if (object_.characters.empty() || object_.code_set.empty() ||
        (!object_.collation.thai && object_.collation.rows.empty()))
        fail(end, "characters, code set or weights are missing",
             "write class, code_set and weights lines");
    return std::move(object_);
}

} // namespace

bool is_listing(const source_file &source) {
    return source.line(1).starts_with("locale_object 11");
}

locale_object read_listing(const source_file &source) { return listing_reader(source).read(); }

} // namespace kestrion
