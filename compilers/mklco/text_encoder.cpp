#include "compilers/mklco/text_encoder.h"

namespace kestrion {

// All of them or none.
bool text_encoder::append_code_points(std::string &out, const std::u32string &text) const {
    std::string bytes;
    for (char32_t code_point : text) {
        const charmap_row *row = map_.find(code_point);
        if (row == nullptr)
            return false;
        bytes += row->sequence.text();
    }
    out += bytes;
    return true;
}

void text_encoder::append(std::string &out, const locale_source &from, const text_element &element,
                          text_use use) {
    bool named = element.is == text_element::kind::name;
    const charmap_row *row = named ? map_.find_name(element.name) : map_.find(element.value);
    if (row != nullptr) {
        out += row->sequence.text();
        return;
    }
    if (!named) {
        if (!substitutes_)
            substitutes_.emplace(library_, source_);
        if (const auto *texts = substitutes_->find(element.value))
            for (const std::u32string &text : *texts)
                if (append_code_points(out, text))
                    return;
    }
    const source_place place = from.place(element.offset);
    if (named)
        throw source_error(place, "unknown name <" + std::string(element.name) + ">",
                           "write the character as <Uxxxx>, or name it in the charmap");
    const std::string what = "the code set lacks " + code_point_text(element.value);
    if (use == text_use::format)
        throw source_error(
            place, what,
            "a format cannot do without it; give a transliteration or choose another charmap");
    said_.loss(*place.file, place.position(), what, "a question mark replaces it");
    append_code_points(out, U"?");
}

// In a single-byte code set every byte is a character.
bool text_encoder::is_spelt(std::string_view bytes) const {
    if (map_.mb_cur_max == 1)
        return true;
    code_sequence sequence;
    for (char byte : bytes) {
        if (sequence.length == gl_char_bytes)
            return false;
        sequence.bytes[sequence.length++] = static_cast<unsigned char>(byte);
        if (map_.find_bytes(sequence) != nullptr)
            sequence = {};
    }
    return sequence.length == 0;
}

std::string text_encoder::encode(const locale_source &from, std::span<const text_element> text,
                                 text_use use) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i].is != text_element::kind::byte) {
            append(out, from, text[i], use);
            continue;
        }
        std::string bytes;
        const size_t first = i;
        for (; i < text.size() && text[i].is == text_element::kind::byte; ++i)
            bytes += static_cast<char>(text[i].value);
        if (!is_spelt(bytes))
            throw source_error(from.place(text[first].offset),
                               "these bytes are not characters of the code set",
                               "write the characters as <Uxxxx>");
        out += bytes;
        --i;
    }
    return out;
}

std::string text_encoder::encode_ascii(std::string_view text) const {
    std::string out;
    append_code_points(out, std::u32string(text.begin(), text.end()));
    return out;
}

} // namespace kestrion
