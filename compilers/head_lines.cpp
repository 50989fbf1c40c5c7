#include "compilers/head_lines.h"

#include <algorithm>
#include <charconv>
#include <stdio.h>
#include <zlib.h>

namespace kestrion {

namespace {

constexpr size_t count_line = 3; // and the last of the lines that the runtime reads

uLong add_bytes(uLong value, std::string_view bytes) {
    return crc32_z(value, reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size());
}

std::string hash_of(const source_texts &read) {
    uLong value = 0;
    for (const auto &[name, text] : read) {
        value = add_bytes(value, name);
        value = add_bytes(value, {"\0", 1}); // a name and its text must not run together
        value = add_bytes(value, text);
    }
    char digits[16];
    snprintf(digits, sizeof digits, "%08lx", value);
    return digits;
}

} // namespace

std::vector<std::string> head_lines(const std::string &compiler, const std::string &made_of,
                                    const source_texts &read) {
    return {"COMPILER=" + compiler + " " + KESTRION_VERSION, "SOURCE=" + made_of,
            "SOURCE_CRC32=" + hash_of(read)};
}

std::vector<std::string> skipped_head_lines(const source_file &object) {
    const std::string_view line = object.line(count_line);
    const size_t digits = std::min(line.find('='), line.size() - 1) + 1;
    size_t count = 0;
    std::from_chars(line.data() + digits, line.data() + line.size(), count);
    std::vector<std::string> head;
    for (size_t i = count_line + 1; i <= count && i <= object.line_count(); ++i)
        head.emplace_back(object.line(i));
    return head;
}

std::string last_component(const std::string &path) { return path.substr(path.rfind('/') + 1); }

} // namespace kestrion
