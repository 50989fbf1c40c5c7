// Locale objects for tests: small code sets described character by character, and the text of an
// object made of them.

#pragma once

#include "gls/engine_test.h"
#include "gls/objects/locale_object.h"
#include "support/guarded_bytes.h"
#include "support/temp_dir.h"
#include <kestrion/categories.h>
#include <kestrion/char_class.h>
#include <kestrion/ctype_masks.h>
#include <kestrion/locale_file.h>
#include <kestrion/multi_file.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

struct character_facts {
    uint16_t mask = 0;
    std::string upper; // partner, empty for none
    std::string lower;
};

// A code set with the classes and the case of its characters, by their bytes. It is also the plain
// second implementation that the engine is held against.
struct code_set {
    std::string name = "8859-1"; // as in the head
    std::map<std::string, character_facts> characters;
    std::vector<std::pair<int, std::string>> classes;
    std::string growth = "1.0";
    bool compressed = false;

    void add(const std::string &bytes, unsigned mask) {
        characters[bytes].mask = static_cast<uint16_t>(mask);
    }
    void add_pair(const std::string &upper, const std::string &lower) {
        characters[upper].lower = lower;
        characters[lower].upper = upper;
    }
    // Bytes of the first character of `text`, 0 when none begins it.
    size_t first_length(std::string_view text) const {
        for (size_t length = 1; length <= 4 && length <= text.size(); ++length)
            if (characters.count(std::string(text.substr(0, length))))
                return length;
        return 0;
    }
    std::string other_case(const std::string &character, bool to_upper) const {
        const character_facts &facts = characters.at(character);
        const std::string &partner = to_upper ? facts.upper : facts.lower;
        return partner.empty() ? character : partner;
    }
};

inline gl_wchar packed(std::string_view bytes) {
    gl_wchar wide = 0;
    for (char byte : bytes)
        wide = wide << 8 | static_cast<unsigned char>(byte);
    return wide;
}

// ---- Code sets

inline void add_ascii(code_set &set, const std::string &lead = "") {
    for (int byte = 0; byte < 0x80; ++byte)
        set.add(lead + static_cast<char>(byte),
                _gl_im_iswctype(nullptr, static_cast<gl_wchar>(byte), 0xffff));
    for (int i = 0; i < 26; ++i)
        set.add_pair(lead + static_cast<char>('A' + i), lead + static_cast<char>('a' + i));
}

constexpr unsigned letter_mask = CT_ALPHA | CT_GRAPH | CT_PRINT;
constexpr unsigned punct_mask = CT_PUNCT | CT_GRAPH | CT_PRINT;

// Single bytes; the letters C0-DE and E0-FE are pairs, but for D7 and F7.
inline code_set latin1() {
    code_set set;
    add_ascii(set);
    for (int byte = 0x80; byte < 0x100; ++byte) {
        bool letter = byte >= 0xc0 && byte != 0xd7 && byte != 0xf7;
        unsigned letter_case = byte < 0xdf ? CT_UPPER : CT_LOWER;
        set.add(std::string(1, static_cast<char>(byte)), byte < 0xa0 ? unsigned{CT_CNTRL}
                                                         : letter    ? letter_mask | letter_case
                                                                     : punct_mask);
    }
    for (int byte = 0xc0; byte < 0xdf; ++byte)
        if (byte != 0xd7)
            set.add_pair(std::string(1, static_cast<char>(byte)),
                         std::string(1, static_cast<char>(byte + 0x20)));
    return set;
}

// ASCII, and lead bytes A1-A3 with the trail bytes A1-FE, two columns wide. A2 holds letters in two
// cases, A3 what can't be printed.
inline code_set two_byte() {
    code_set set;
    set.name = "ksc";
    set.compressed = true;
    set.classes = {{0, "full_width"}, {1, "fancy"}, {25, "beyond"}};
    add_ascii(set);
    for (int trail = 0xa1; trail < 0xff; ++trail) {
        std::string tail(1, static_cast<char>(trail));
        bool upper = trail >= 0xa1 && trail < 0xbb;
        bool lower = trail >= 0xc1 && trail < 0xdb;
        set.add("\xa1" + tail, punct_mask | CT_NAMED);
        set.add("\xa2" + tail, CT_NAMED | letter_mask |
                                   (upper   ? unsigned{CT_UPPER}
                                    : lower ? unsigned{CT_LOWER}
                                            : 0U));
        set.add("\xa3" + tail, CT_CNTRL);
    }
    for (int i = 0; i < 26; ++i)
        set.add_pair(std::string("\xa2") + static_cast<char>(0xa1 + i),
                     std::string("\xa2") + static_cast<char>(0xc1 + i));
    set.add("\xa1\xa1", CT_SPACE | CT_BLANK | CT_PRINT | CT_NAMED);
    return set;
}

// ASCII and sequences of two to four bytes, with partners of another length.
inline code_set four_byte() {
    code_set set;
    set.name = "utf8";
    set.classes = {{0, "full_width"}};
    add_ascii(set);
    for (int i = 0x80; i < 0xc0; ++i)
        set.add(std::string("\xc3") + static_cast<char>(i),
                letter_mask | (i < 0xa0 ? CT_UPPER : CT_LOWER));
    for (int i = 0x80; i < 0x9f; ++i)
        set.add_pair(std::string("\xc3") + static_cast<char>(i),
                     std::string("\xc3") + static_cast<char>(i + 0x20));
    set.add("\xc8\xba", letter_mask | CT_UPPER); // two bytes, small form of three
    set.add("\xe2\xb1\xa5", letter_mask | CT_LOWER);
    set.add_pair("\xc8\xba", "\xe2\xb1\xa5");
    set.add("\xc4\xb1", letter_mask | CT_LOWER); // dotless i: one way only, to one byte
    set.characters["\xc4\xb1"].upper = "I";
    for (int i = 0x80; i < 0xc0; ++i)
        set.add(std::string("\xe4\xb8") + static_cast<char>(i), letter_mask | CT_NAMED);
    for (int i = 0x80; i < 0xc0; ++i)
        set.add(std::string("\xf0\x9f\x98") + static_cast<char>(i), punct_mask | CT_NAMED);
    return set;
}

// Every character has two bytes or four, and so has the terminator two.
inline code_set wide_units() {
    code_set set;
    set.name = "unicode";
    add_ascii(set, std::string(1, '\0'));
    set.add("\x04\x10", letter_mask | CT_UPPER);
    set.add("\x04\x30", letter_mask | CT_LOWER);
    set.add_pair("\x04\x10", "\x04\x30");
    set.add(std::string("\x05\x00", 2), letter_mask);
    set.add("\xd8\x01\xdc\x01", punct_mask);
    return set;
}

// ---- Texts

inline std::string table_text(const std::vector<std::pair<std::string, uint16_t>> &rows,
                              bool compressed = false) {
    uint16_t none = 0;
    multi_arr *table = _gl_create_multi(sizeof none, 0, &none);
    for (const auto &[bytes, datum] : rows) {
        gl_char_desc desc = {.length = static_cast<int32_t>(bytes.size())};
        memcpy(desc.bytes, bytes.data(), std::min<size_t>(bytes.size(), gl_char_bytes));
        EXPECT_EQ(_gl_insert_desc_multi(&desc, &datum, table), 0);
    }
    if (compressed)
        _gl_compress_multi(table);
    std::string text = text_written([&](FILE *f) { _gl_fprintf_multi(f, table, ub2_writer); });
    _gl_free_multi(table);
    return text;
}

inline std::string hex_text(uint64_t value, int digits) {
    char text[20];
    snprintf(text, sizeof text, "%0*llx", digits, static_cast<unsigned long long>(value));
    return text;
}

// A text field.
inline std::string field(std::string_view text) {
    std::string line = std::to_string(text.size());
    line += text.empty() ? "" : " ";
    for (char byte : text)
        line += hex_text(static_cast<unsigned char>(byte), 2);
    return line + "\n";
}

inline std::string fields(const std::vector<std::string> &texts, bool counted = false) {
    std::string lines = counted ? std::to_string(texts.size()) + "\n" : "";
    for (const std::string &text : texts)
        lines += field(text);
    return lines;
}

inline std::string ctype_text(const code_set &set) {
    std::vector<std::pair<std::string, uint16_t>> masks, indexes;
    std::map<std::pair<std::string, std::string>, uint16_t> pairs; // by both partners
    std::string pair_lines;
    for (const auto &[bytes, facts] : set.characters) {
        masks.emplace_back(bytes, facts.mask);
        uint16_t index = 0;
        if (!facts.upper.empty() || !facts.lower.empty()) {
            std::pair<std::string, std::string> key = {facts.upper.empty() ? bytes : facts.upper,
                                                       facts.lower.empty() ? bytes : facts.lower};
            index = pairs.emplace(key, static_cast<uint16_t>(pairs.size() + 1)).first->second;
            if (index == pairs.size() && pair_lines.size() < pairs.size() * 17)
                pair_lines +=
                    "\n" + hex_text(packed(key.first), 8) + hex_text(packed(key.second), 8);
        }
        indexes.emplace_back(bytes, index);
    }
    std::string text =
        table_text(masks, set.compressed) + std::to_string(set.classes.size()) + "\n";
    for (const auto &[bit, name] : set.classes)
        text += std::to_string(bit) + " " + name + "\n";
    return text + table_text(indexes, set.compressed) + std::to_string(pairs.size()) + pair_lines +
           "\n" + set.growth + "\n";
}

// Rows in code order: one level, weights by position.
inline std::string collate_text(const code_set &set) {
    std::vector<std::pair<std::string, uint16_t>> rows;
    std::string weights;
    for (const auto &[bytes, facts] : set.characters) {
        rows.emplace_back(bytes, static_cast<uint16_t>(rows.size()));
        weights += hex_text(rows.size() + 1, 4) + "\n";
    }
    std::string count = std::to_string(rows.size() - 1);
    return "as_specified\n" + table_text(rows, set.compressed) + "1\n" + count + "\n1\n0\n0\n" +
           std::to_string(rows.size() + 1) + "\n0001\n" + weights;
}

// An object by its pieces, so that a test can change one.
struct object_text {
    std::string head;
    std::string sections[gl_category_count];

    std::string all() const {
        std::string text = head;
        for (int i = 0; i < gl_category_count; ++i)
            text += kestrion::category_markers[i] + sections[i];
        return text;
    }
    std::string one(int32_t category) const {
        int i = category - gl_first_category;
        return head + kestrion::category_markers[i] + sections[i];
    }
};

// Values of the United States, spelled for the code set by `spell`.
template <class Spell> object_text object_of(const code_set &set, Spell spell) {
    auto spelled = [&](std::vector<std::string> texts) {
        for (std::string &text : texts)
            text = spell(text);
        return texts;
    };
    const std::vector<std::string> months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::vector<std::string> week = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    object_text object;
    object.head = std::string(kestrion::lco_file_type) + kestrion::lco_version +
                  "HEADER_LINES=4\nSOURCE=test\n" + set.name + "\n";
    object.sections[0] = ctype_text(set);
    object.sections[1] = collate_text(set);
    object.sections[2] = fields(spelled({".", ","})) + "2 3 0\n" + fields(spelled({"+", "-"}));
    object.sections[3] = fields(spelled({"USD ", "$", ".", ","})) + "2 3 0\n" +
                         fields(spelled({"", "-"})) + "2\n2\n1\n0\n1\n0\n1\n1\n";
    object.sections[4] =
        "gregorian\n" + fields(spelled(week)) +
        fields(spelled(
            {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"})) +
        fields(spelled(months), true) + fields(spelled(months), true) +
        fields(spelled({"%a %d %b %Y %r", "%m/%d/%Y", "%r", "AM", "PM", "%I:%M:%S %p"})) +
        fields(spelled({"+:1:2000/01/01:+*:New:N:%EC %Ey", "-:1:1999/12/31:-4/1/1:Old:O:a:b"}),
               true) +
        fields({"", "", ""}) + fields(spelled({"0", "1"}), true);
    object.sections[5] = fields(spelled({"^[+1yY]", "^[-0nN]", "yes", "no"}));
    return object;
}

inline object_text object_of(const code_set &set) {
    return object_of(set, [](const std::string &text) { return text; });
}

inline object_text wide_unit_object() {
    return object_of(wide_units(), [](const std::string &text) {
        std::string spelled;
        for (char c : text)
            spelled += std::string(1, '\0') + c;
        return spelled;
    });
}

// A locale loaded from an object made for a code set.
class loaded {
public:
    loaded(const code_set &set, const object_text &object) {
        temp_dir directory;
        directory.write("test.lco", object.all());
        EXPECT_EQ(gl_create_null_locale_4(&lc), 0);
        char *names = set_categories(lc, GL_CAT_ALL, "test.lco", directory.path().c_str());
        EXPECT_NE(names, nullptr) << set.name << ": error " << lc->err;
        gl_destroystring(names);
        lc->err = 0;
    }
    explicit loaded(const code_set &set) : loaded(set, object_of(set)) {}
    ~loaded() { gl_lc_unload(lc); }
    loaded(const loaded &) = delete;
    loaded &operator=(const loaded &) = delete;
    operator locale_rec *() const { return lc; }
    int32_t error() const {
        int32_t error = lc->err;
        lc->err = 0;
        return error;
    }

    locale_rec *lc;
};
