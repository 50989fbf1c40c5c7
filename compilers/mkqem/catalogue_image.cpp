#include "compilers/mkqem/catalogue_image.h"

#include "base/byte_order.h"
#include "compilers/diagnostics.h"
#include "compilers/mkqem/signature.h"
#include "messages/message_file.h"

#include <algorithm>
#include <stdio.h>
#include <utility>

namespace kestrion {

namespace {

void append_big_endian(std::string &bytes, uint32_t value, size_t count) {
    unsigned char stored[sizeof value];
    store_big_endian(value, stored, count);
    bytes.append(reinterpret_cast<const char *>(stored), count);
}

// A signed number of `count` bytes.
int64_t big_endian(std::string_view bytes, size_t at, size_t count) {
    const auto *stored = reinterpret_cast<const unsigned char *>(bytes.data()) + at;
    const uint64_t value = load_big_endian<uint64_t>(stored, count);
    const uint64_t sign = uint64_t{1} << (8 * count - 1);
    return static_cast<int64_t>(value ^ sign) - static_cast<int64_t>(sign);
}

[[noreturn]] void refuse(const std::string &why) {
    throw compiler_failure("not a sound catalogue: " + why);
}

// A text as it is written between quotes; bytes outside ASCII by their octal numbers.
std::string escaped(std::string_view text) {
    constexpr std::string_view bytes = "\n\t\v\b\r\f\\\"";
    constexpr std::string_view letters = "ntvbrf\\\"";
    std::string shown;
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (const size_t i = bytes.find(c); i != std::string_view::npos) {
            (shown += '\\') += letters[i];
        } else if (code >= 0x20 && code < 0x7F) {
            shown += c;
        } else {
            char octal[5];
            snprintf(octal, sizeof octal, "\\%03o", static_cast<unsigned>(code));
            shown += octal;
        }
    }
    return shown;
}

} // namespace

std::string encode_catalogue(const catalogue_texts &texts) {
    const bool is_short = std::in_range<int16_t>(texts.begin()->first) &&
                          std::in_range<int16_t>(texts.rbegin()->first);
    const size_t record_size = is_short ? message_short_record : message_long_record;
    const size_t count = texts.size();
    std::string index;
    append_big_endian(index, is_short ? message_magic_short : message_magic_long, 2);
    append_big_endian(index, static_cast<uint32_t>(count), 2);
    std::string stored;
    for (const auto &[number, text] : texts) {
        append_big_endian(index, static_cast<uint32_t>(number), is_short ? 2 : 4);
        append_big_endian(index, static_cast<uint32_t>(text.size()), 2);
        append_big_endian(
            index, static_cast<uint32_t>(message_head_size + count * record_size + stored.size()),
            4);
        stored += text;
    }
    const size_t least_texts = (std::min<size_t>(count, message_window) - 1) * record_size;
    stored.resize(std::max(stored.size(), least_texts), '\0');
    return index + stored;
}

catalogue_texts decode_catalogue(std::string_view bytes) {
    const int64_t magic = bytes.size() < message_head_size ? 0 : big_endian(bytes, 0, 2) & 0xFFFF;
    if (magic != message_magic_short && magic != message_magic_long)
        refuse("the first two bytes are not 65128 or 65129");
    const size_t number_size = magic == message_magic_short ? 2 : 4;
    const size_t record_size = number_size + 6;
    const int64_t count = big_endian(bytes, 2, 2);
    if (count < 0 || static_cast<size_t>(count) * record_size > bytes.size() - message_head_size)
        refuse("the index of " + std::to_string(count) + " records reaches beyond the file");
    if (count == 0)
        refuse("it holds no message");
    catalogue_texts texts;
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
        const size_t at = message_head_size + i * record_size;
        const auto number = static_cast<int32_t>(big_endian(bytes, at, number_size));
        const int64_t length = big_endian(bytes, at + number_size, 2);
        const int64_t offset = big_endian(bytes, at + number_size + 2, 4);
        if (length <= 0 || offset < 0 || length > static_cast<int64_t>(bytes.size()) - offset)
            refuse("the text of message " + std::to_string(number) +
                   " is empty or reaches beyond the file");
        if (!texts.empty() && number <= texts.rbegin()->first)
            refuse("message " + std::to_string(number) + " is out of order");
        texts.emplace(number,
                      bytes.substr(static_cast<size_t>(offset), static_cast<size_t>(length)));
    }
    return texts;
}

std::string list_catalogue(const catalogue_texts &texts) {
    std::string listing = "$quote \"\n";
    for (const auto &[number, text] : texts) {
        const std::string_view said = std::string_view(text).substr(0, text.size() - 1);
        const signature shown = signature_of(said);
        if (shown.unchecked || !shown.arguments.empty())
            listing += "$args " + std::to_string(number) + ' ' + signature_words(shown) + '\n';
        listing += std::to_string(number) + " \"" + escaped(said) + "\"\n";
    }
    return listing;
}

} // namespace kestrion
