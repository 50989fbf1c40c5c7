// Orders for tests: one described in plain data, its section of a locale object, and a slow second
// implementation of comparing and of keys, straight from what an order means.

#pragma once

#include "gls/locale_texts.h"

#include <map>
#include <random>
#include <string>
#include <vector>

using wide_text = std::vector<gl_wchar>;

struct plain_contraction {
    wide_text characters;
    uint16_t row;
};

struct plain_order {
    std::map<std::string, uint16_t> rows;       // by character; one may have none
    std::vector<int> directions;                // 1 or 2 by level
    std::vector<std::vector<uint16_t>> weights; // by level and row
    std::vector<wide_text> expansions;
    std::vector<plain_contraction> contractions;
    unsigned max_weight = 0;

    std::string section(bool compressed = false) const {
        std::vector<std::pair<std::string, uint16_t>> table(rows.begin(), rows.end());
        std::string text =
            "as_specified\n" + table_text(table, compressed) + "0\n" +
            std::to_string(weights[0].size() - 1) + "\n" + std::to_string(directions.size()) +
            "\n" + std::to_string(contractions.size()) + "\n" + std::to_string(expansions.size()) +
            "\n" + std::to_string(max_weight) + "\n";
        for (int direction : directions)
            text += hex_text(static_cast<unsigned>(direction), 4);
        text += "\n";
        for (const plain_contraction &c : contractions)
            text += hex_text(c.characters.size(), 1) + hex_text(c.row, 4) + digits(c.characters);
        for (const wide_text &e : expansions)
            text += hex_text(e.size(), 1) + digits(e);
        for (size_t row = 0; row < weights[0].size(); ++row) {
            for (const auto &level : weights)
                text += hex_text(level[row], 4);
            text += "\n";
        }
        return text;
    }

    object_text object(const code_set &set) const {
        object_text whole = object_of(set);
        whole.sections[1] = section(set.compressed);
        return whole;
    }

    static std::string digits(const wide_text &characters) {
        std::string text;
        for (gl_wchar character : characters)
            text += hex_text(character, 8);
        return text + "\n";
    }
};

// ---- The second implementation

// The weights of a level that are not ignored, each with the element that gave it.
class plain_walk {
public:
    plain_walk(const plain_order &order, size_t level, const wide_text &text)
        : order_(order), level_(level), text_(text) {
        for (const auto &[bytes, row] : order.rows)
            row_of_[packed(bytes)] = row;
        const bool forward = order.directions[level] == 1;
        std::vector<std::pair<int, size_t>> found; // contraction and place in it, or -1
        for (size_t i = 0; i < text.size();) {
            const int c = contraction_at(i);
            const size_t length =
                c < 0 ? 1 : order.contractions[static_cast<size_t>(c)].characters.size();
            for (size_t k = 0; k < length; ++k)
                found.emplace_back(c, k);
            i += length;
        }
        long step = 1;
        for (long at = forward ? 0 : static_cast<long>(text.size()) - 1;
             at >= 0 && at < static_cast<long>(text.size()); at += forward ? step : -step) {
            const int c = found[static_cast<size_t>(at)].first;
            gl_wchar element = text[static_cast<size_t>(at)];
            step = 1;
            uint16_t row;
            if (c >= 0) {
                row = order.contractions[static_cast<size_t>(c)].row;
                step =
                    static_cast<long>(order.contractions[static_cast<size_t>(c)].characters.size());
                element = 1;
            } else if (!find_row(element, row)) {
                return;
            }
            const uint16_t weight = order.weights[level][row];
            if (weight & 0x4000) {
                step = 1;
                if (!expand(weight & 0x3fff, forward))
                    return;
            } else if (weight != 1) {
                weights.emplace_back(weight, element);
            }
        }
    }

    std::vector<std::pair<uint16_t, gl_wchar>> weights;

private:
    bool find_row(gl_wchar element, uint16_t &row) const {
        auto found = row_of_.find(element);
        if (found == row_of_.end())
            return false;
        row = found->second;
        return true;
    }
    // An expansion that is met inside another one takes its place. False at a character without
    // row.
    bool expand(size_t number, bool forward) {
        wide_text characters = order_.expansions[number];
        if (!forward)
            std::reverse(characters.begin(), characters.end());
        for (gl_wchar element : characters) {
            uint16_t row;
            if (!find_row(element, row))
                return false;
            const uint16_t weight = order_.weights[level_][row];
            if (weight & 0x4000)
                return expand(weight & 0x3fff, forward);
            if (weight != 1)
                weights.emplace_back(weight, element);
        }
        return true;
    }
    int contraction_at(size_t i) const {
        for (size_t c = 0; c < order_.contractions.size(); ++c) {
            const wide_text &wanted = order_.contractions[c].characters;
            if (wanted.size() <= text_.size() - i &&
                std::equal(wanted.begin(), wanted.end(), text_.begin() + static_cast<long>(i)))
                return static_cast<int>(c);
        }
        return -1;
    }

    const plain_order &order_;
    size_t level_;
    const wide_text &text_;
    std::map<gl_wchar, uint16_t> row_of_;
};

inline int plain_compare(const plain_order &order, const wide_text &a, const wide_text &b,
                         size_t levels = 8) {
    for (size_t level = 0; level < order.directions.size() && level < levels; ++level) {
        const auto first = plain_walk(order, level, a).weights;
        const auto second = plain_walk(order, level, b).weights;
        for (size_t i = 0; i < first.size() && i < second.size(); ++i) {
            const int difference = (first[i].first & 0x3fff) - (second[i].first & 0x3fff);
            if (difference != 0)
                return difference < 0 ? -1 : 1;
            if (first[i].first & 0x8000 && first[i].second != second[i].second)
                return first[i].second < second[i].second ? -1 : 1;
        }
        if (first.size() != second.size())
            return first.size() < second.size() ? -1 : 1;
    }
    return 0;
}

inline std::string plain_digits(uint64_t value, uint64_t limit) {
    const uint32_t number = static_cast<uint32_t>(value - 2);
    int digits = limit > 0xF817E00F ? 5
                 : limit > 16387063 ? 4
                 : limit > 64515    ? 3
                 : limit > 253      ? 2
                                    : 1;
    std::string text;
    uint64_t left = number;
    for (; digits > 0; --digits) {
        const uint64_t digit = digits == 1 ? left : left % 254;
        text.insert(text.begin(), static_cast<char>(digit + 2));
        left /= 254;
    }
    return text;
}

inline std::string plain_key(const plain_order &order, const wide_text &text, int mb_loc_max) {
    std::string key;
    for (size_t level = 0; level < order.directions.size(); ++level) {
        key += level > 0 ? "\1" : "";
        for (const auto &[weight, element] : plain_walk(order, level, text).weights) {
            key += plain_digits(weight & 0x3fff, order.max_weight);
            if (weight & 0x8000)
                key += plain_digits(element, (uint64_t{1} << 8 * mb_loc_max) - 1);
        }
    }
    return key;
}

// ---- Random orders

struct order_features {
    bool expansions = true;
    bool contractions = true;
    bool backward = true;
    bool ties = true;
    bool gaps = true; // characters without a row
};

// Texts are made of few characters, so that they meet contractions and each other.
struct random_order {
    plain_order order;
    std::vector<std::string> alphabet;

    std::string text(std::mt19937 &random, size_t longest) const {
        std::string made;
        for (size_t length = random() % (longest + 1); length > 0; --length)
            made += alphabet[random() % alphabet.size()];
        return made;
    }
};

inline random_order make_random_order(std::mt19937 &random, const code_set &set,
                                      const order_features &with) {
    random_order made;
    plain_order &order = made.order;
    std::vector<std::string> characters;
    for (const auto &[bytes, facts] : set.characters)
        if (bytes.find('\0') == std::string::npos)
            characters.push_back(bytes);
    std::shuffle(characters.begin(), characters.end(), random);
    made.alphabet.assign(characters.begin(), characters.begin() + 10);

    const size_t row_count = 2 + random() % 20;
    const size_t level_count = 1 + random() % 4;
    const size_t expansion_count = with.expansions ? 1 + random() % 4 : 0;
    // A table of single bytes has all of them.
    const bool single_bytes = set.name == "8859-1";
    for (const std::string &character : characters)
        if (!with.gaps || single_bytes || random() % 12 != 0)
            order.rows[character] = static_cast<uint16_t>(random() % row_count);
    order.max_weight = std::vector<unsigned>{9, 253, 254, 9000}[random() % 4];
    for (size_t level = 0; level < level_count; ++level) {
        order.directions.push_back(with.backward && random() % 3 == 0 ? 2 : 1);
        std::vector<uint16_t> weights;
        for (size_t row = 0; row < row_count; ++row) {
            const auto kind = random() % 8;
            unsigned weight = 2 + static_cast<unsigned>(random() % 8);
            if (kind == 0)
                weight = 1;
            if (kind == 1 && with.ties)
                weight |= 0x8000;
            if (kind == 2 && with.expansions)
                weight = 0x4000u | static_cast<unsigned>(random() % expansion_count);
            weights.push_back(static_cast<uint16_t>(weight));
        }
        order.weights.push_back(weights);
    }
    // An expansion may lead to those before it alone, so that each ends.
    const auto leads_back = [&](const std::string &character, size_t number) {
        const auto row = order.rows.find(character);
        for (const auto &weights : order.weights)
            if (row != order.rows.end() && weights[row->second] & 0x4000 &&
                (weights[row->second] & 0x3fffu) >= number)
                return false;
        return true;
    };
    for (size_t number = 0; number < expansion_count; ++number) {
        wide_text expansion;
        for (size_t length = 1 + random() % 3; length > 0; --length)
            for (size_t tries = 0; tries < 200; ++tries) {
                const std::string &character = tries < 20
                                                   ? made.alphabet[random() % 10]
                                                   : characters[random() % characters.size()];
                if (leads_back(character, number)) {
                    expansion.push_back(packed(character));
                    break;
                }
            }
        if (expansion.empty()) { // every row expands: start again
            return make_random_order(random, set, with);
        }
        order.expansions.push_back(expansion);
    }
    for (size_t count = with.contractions ? 1 + random() % 5 : 0; count > 0; --count) {
        plain_contraction c = {{}, static_cast<uint16_t>(random() % row_count)};
        for (size_t length = 1 + random() % 3; length > 0; --length)
            c.characters.push_back(packed(made.alphabet[random() % 5]));
        order.contractions.push_back(c);
    }
    return made;
}

// The characters of a text, packed. The text is valid in the code set.
inline wide_text wide_of(const code_set &set, std::string_view text) {
    wide_text wide;
    while (!text.empty()) {
        const size_t length = set.first_length(text);
        wide.push_back(packed(text.substr(0, length)));
        text.remove_prefix(length);
    }
    return wide;
}
