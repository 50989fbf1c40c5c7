// A number that tells whether an object was made of these sources: the CRC-32 of all that was read,
// with the names that it was read by. It stands in the head lines that the runtime skips.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrion {

class source_hash {
public:
    // Order counts.
    void add(std::string_view name, std::string_view text);
    std::string text() const; // eight hexadecimal digits

private:
    uint32_t value_ = 0;
};

// The version that a compiler writes into what it makes.
std::string_view compiler_version();

} // namespace kestrion
