#include "compilers/mklco/object.h"

#include "compilers/object_table.h"
#include "gls/objects/locale_object.h"
#include <kestrion/char_desc.h>
#include <kestrion/locale_file.h>

#include <ctype.h>
#include <errno.h>
#include <memory>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

namespace kestrion {
namespace {

constexpr int64_t largest_count = 65535;

struct file_closer {
    void operator()(FILE *file) const { fclose(file); }
};

// Reads the sections in the order in which the compiler writes them.
class object_reader {
public:
    explicit object_reader(const std::string &path)
        : path_(path), file_(fopen(path.c_str(), "rb")) {
        if (!file_)
            throw compiler_failure(path + ": " + strerror(errno));
    }

    locale_object read();

private:
    [[noreturn]] void fail(const std::string &what) const {
        throw compiler_failure(path_ + ": " + what + " near byte " +
                               std::to_string(ftell(file_.get())));
    }

    int get() { return fgetc(file_.get()); }
    std::string line();
    void expect(std::string_view line_wanted);
    void line_end();
    int64_t number(int64_t least, int64_t greatest);
    uint32_t hex(int digits);
    std::string text();
    double growth();
    multi_table table();

    void read_head();
    void read_ctype();
    void read_collation();
    void read_field(const object_field &field, object_field_value &value);
    void collect(const multi_arr *table, const multi_node *node, code_sequence prefix);
    void look_up(const multi_arr *table, uint16_t object_character::*datum);

    std::string path_;
    std::unique_ptr<FILE, file_closer> file_;
    locale_object object_;
};

std::string object_reader::line() {
    std::string text;
    for (int c; (c = get()) != '\n'; text += static_cast<char>(c))
        if (c == EOF)
            fail("the file ends inside a line");
    return text;
}

void object_reader::expect(std::string_view line_wanted) {
    std::string found = line();
    if (found + "\n" != line_wanted)
        fail("\"" + found + "\" stands where \"" +
             std::string(line_wanted.substr(0, line_wanted.size() - 1)) + "\" must stand");
}

void object_reader::line_end() {
    if (get() != '\n')
        fail("a line does not end where it must");
}

// A decimal number, behind a blank or not.
int64_t object_reader::number(int64_t least, int64_t greatest) {
    std::string digits;
    int c = get();
    if (c == ' ')
        c = get();
    for (; c != EOF && (isdigit(c) || c == '-') && digits.size() < 20; c = get())
        digits += static_cast<char>(c);
    ungetc(c, file_.get());
    int64_t value = strtoll(digits.c_str(), nullptr, 10);
    if (digits.empty() || value < least || value > greatest)
        fail("a number from " + std::to_string(least) + " to " + std::to_string(greatest) +
             " must stand here");
    return value;
}

uint32_t object_reader::hex(int digits) {
    uint32_t value = 0;
    for (int i = 0; i < digits; ++i) {
        int c = get();
        if (c == EOF || !isxdigit(c))
            fail("a hexadecimal digit must stand here");
        value = value << 4 | static_cast<uint32_t>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
    }
    return value;
}

std::string object_reader::text() {
    auto length = static_cast<size_t>(number(0, lco_text_limit));
    if (length != 0 && get() != ' ')
        fail("a blank must stand between the length of a text and its bytes");
    std::string bytes(length, '\0');
    for (char &byte : bytes)
        byte = static_cast<char>(hex(2));
    line_end();
    return bytes;
}

double object_reader::growth() {
    std::string text = line();
    char *end = nullptr;
    double value = strtod(text.c_str(), &end);
    if (!text.empty() && (*end != '\0' || !(value >= 0 && value <= lco_growth_limit)))
        fail("\"" + text + "\" is no growth factor");
    return text.empty() ? lco_growth_default : value;
}

multi_table object_reader::table() {
    multi_table result = make_table(sizeof(uint16_t));
    if (_gl_fscanf_multi(file_.get(), result.get(), gl_char_bytes, ub2_reader) != 0)
        fail("a table is damaged");
    return result;
}

void object_reader::read_head() {
    expect(lco_file_type);
    expect(lco_version);
    std::string count = line();
    size_t equals = count.find('=');
    long lines = equals == std::string::npos ? -1 : strtol(count.c_str() + equals + 1, nullptr, 10);
    if (lines < 0 || lines > 1000)
        fail("the third line must give the number of head lines");
    for (long i = lco_head_lines; i < lines; ++i)
        object_.head.push_back(line());
    object_.code_set = line();
}

void object_reader::collect(const multi_arr *table, const multi_node *node, code_sequence prefix) {
    if (node->flag_bytes == nullptr)
        return;
    ++prefix.length;
    for (int byte = 0; byte < gl_bytes; ++byte) {
        prefix.bytes[prefix.length - 1] = static_cast<unsigned char>(byte);
        if (node->flag_bytes[byte] == MULTI_CHILD)
            collect(table, node->children[node->child_slot[byte]], prefix);
        else if (node->flag_bytes[byte] == MULTI_END)
            object_.characters.push_back({prefix});
    }
}

void object_reader::look_up(const multi_arr *table, uint16_t object_character::*datum) {
    for (object_character &character : object_.characters) {
        gl_char_desc sequence{character.sequence.length, {}};
        memcpy(sequence.bytes, character.sequence.bytes, sizeof sequence.bytes);
        if (const void *found = _gl_retrieve_desc_multi(&sequence, table))
            memcpy(&(character.*datum), found, sizeof(uint16_t));
    }
}

void object_reader::read_ctype() {
    expect(category_markers[0]);
    multi_table classes = table();
    collect(classes.get(), classes->root, {});
    look_up(classes.get(), &object_character::classes);
    int64_t names = number(0, largest_count);
    line_end();
    for (int64_t i = 0; i < names; ++i) {
        int bit = static_cast<int>(number(INT32_MIN, INT32_MAX));
        if (get() != ' ')
            fail("a blank must stand between a class's number and its name");
        object_.class_names.emplace_back(bit, line());
    }
    look_up(table().get(), &object_character::case_index);
    int64_t pairs = number(0, lco_pair_limit);
    for (int64_t i = 0; i < pairs; ++i) {
        line_end();
        uint32_t upper = hex(8);
        object_.pairs.push_back({upper, hex(8)});
    }
    line_end();
    object_.growth = growth();
}

void object_reader::read_collation() {
    object_collation &collation = object_.collation;
    expect(category_markers[1]);
    std::string method = line();
    collation.thai = method == "thai_smo";
    if (collation.thai)
        return;
    if (method != "as_specified")
        fail("\"" + method + "\" is no method of collation");
    look_up(table().get(), &object_character::row);
    auto count = [this](int64_t greatest) {
        int64_t value = number(0, greatest);
        line_end();
        return static_cast<size_t>(value);
    };
    collation.code_order_form = static_cast<int32_t>(count(INT32_MAX));
    collation.rows.resize(count(largest_count) + 1);
    collation.levels.resize(count(gl_level_limit));
    collation.contractions.resize(count(largest_count));
    collation.expansions.resize(count(largest_count));
    collation.max_weight = static_cast<uint32_t>(count(UINT32_MAX));
    for (uint16_t &level : collation.levels)
        level = static_cast<uint16_t>(hex(4));
    line_end();
    for (auto &contraction : collation.contractions) {
        contraction.characters.resize(hex(1));
        contraction.row = static_cast<uint16_t>(hex(4));
        for (uint32_t &character : contraction.characters)
            character = hex(8);
        line_end();
    }
    for (auto &expansion : collation.expansions) {
        expansion.resize(hex(1));
        for (uint32_t &character : expansion)
            character = hex(8);
        line_end();
    }
    for (auto &row : collation.rows) {
        row.resize(collation.levels.size());
        for (uint16_t &weight : row)
            weight = static_cast<uint16_t>(hex(4));
        line_end();
    }
}

void object_reader::read_field(const object_field &field, object_field_value &value) {
    int64_t count = field.count;
    switch (field.kind) {
    case field_kind::line:
        value.texts.push_back(line());
        break;
    case field_kind::counted:
        count = number(0, lco_list_limit);
        line_end();
        [[fallthrough]];
    case field_kind::texts:
        for (int64_t i = 0; i < count; ++i)
            value.texts.push_back(text());
        break;
    case field_kind::group:
        count = number(0, gl_group_limit);
        for (int64_t i = 0; i < count; ++i)
            value.numbers.push_back(number(INT32_MIN, UINT32_MAX));
        line_end();
        break;
    case field_kind::integer:
        value.numbers.push_back(number(INT32_MIN, UINT32_MAX));
        line_end();
        break;
    }
}

locale_object object_reader::read() {
    read_head();
    read_ctype();
    read_collation();
    for (size_t i = 0; i < object_field_count; ++i) {
        if (i == 0 || object_fields[i].section != object_fields[i - 1].section)
            expect(category_markers[2 + static_cast<int>(object_fields[i].section)]);
        read_field(object_fields[i], object_.fields[i]);
    }
    if (get() != EOF)
        fail("something stands behind the last section");
    return std::move(object_);
}

} // namespace

locale_object read_object(const std::string &path) { return object_reader(path).read(); }

} // namespace kestrion
