// Any bytes as a column of any type, then through every column and every variable of any length to
// 40; and any bytes as a program's variable.

#include <kestrion/value.h>
#include <kestrion/value_host.h>
#include <kestrion/value_text.h>
#include <kestrion/value_types.h>

#include <stdlib.h>
#include <string.h>

namespace {

constexpr int longest = 40;

// A block of exactly so many bytes, so that the sanitizer sees each byte past it.
class exact_block {
public:
    explicit exact_block(size_t size) : bytes(static_cast<unsigned char *>(calloc(1, size + 1))) {
        bytes = static_cast<unsigned char *>(realloc(bytes, size == 0 ? 1 : size));
    }
    ~exact_block() { free(bytes); }
    exact_block(const exact_block &) = delete;
    exact_block &operator=(const exact_block &) = delete;

    unsigned char *bytes;
};

// Bytes that a column takes.
size_t column_bytes(int type, int length) {
    const auto n = static_cast<size_t>(length < 0 ? 0 : length);
    switch (type) {
    case sql_char:
    case sql_nchar:
        return n;
    case sql_varchar:
    case sql_nvarchar:
        return (n & 255) == 0 ? 256 : (n & 255) + 1;
    case sql_int8:
    case sql_serial8:
        return 10;
    case sql_decimal:
    case sql_money:
    case sql_datetime:
    case sql_interval:
        return static_cast<size_t>(((length >> 8 & 255) + (length & 1) + 3) >> 1);
    case sql_lvarchar:
        return (n == 0 ? 2048 : n) + 5;
    case sql_boolean:
        return 6;
    case sql_variable_udt:
    case sql_fixed_udt:
        return n + 5;
    case sql_byte:
    case sql_text:
        return n;
    default:
        return static_cast<size_t>(rtypmsize(type, length));
    }
}

// Bytes of a variable. Texts of length 0 go to their terminator.
size_t variable_bytes(int type, int length) {
    if (type == host_variable_binary || type == host_text_pointer)
        return sizeof(host_binary);
    const bool counted = type == 100 || type == 108 || type == 109 || type == 114 || type == 116 ||
                         type == 119 || type == 120;
    return counted ? static_cast<size_t>(length) : static_cast<size_t>(rtypmsize(type, length));
}

void use(value_rec value, int word, int length) {
    for (int type = 0; type < sql_type_count; ++type) {
        const bool worded = type == sql_decimal || type == sql_money || type == sql_datetime ||
                            type == sql_interval;
        const exact_block column(column_bytes(type, worded ? word : length));
        value_rec copy = value;
        rvaldata(&copy, column.bytes, type, worded ? word : length);
    }
    for (int type = 100; type <= 125; ++type) {
        const exact_block variable(variable_bytes(type, length));
        value_rec copy = value;
        int16_t indicator;
        rvalcvar(&copy, variable.bytes, type, length, &indicator);
        if (type == 121 || type == 124) {
            host_binary owned = {host_binary_owner, 0, 0, nullptr};
            rvalcvar(&copy, &owned, type, length, &indicator);
            free(owned.data);
        }
    }
    const exact_block text(static_cast<size_t>(length));
    if (length > 0)
        rvalstr(&value, reinterpret_cast<char *>(text.bytes), length, word & 1);
}

void take(unsigned char *to, size_t room, const unsigned char *data, size_t size) {
    memcpy(to, data, size < room ? size : room);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size) {
    if (size < 4)
        return 0;
    const int length = data[0] % (longest + 1);
    const int word = data[1] << 8 | data[2];
    const int code = data[3] % 80;
    data += 4;
    size -= 4;
    value_rec value = {};
    if (code < sql_type_count) {
        const bool worded = code == sql_decimal || code == sql_money || code == sql_datetime ||
                            code == sql_interval;
        const size_t room = column_bytes(code, worded ? word : length);
        const exact_block column(room);
        take(column.bytes, room, data, size);
        if (rdataval(column.bytes, code, worded ? word : length, &value) == 0)
            use(value, word, length);
        return 0;
    }
    const int host = code - sql_type_count + 100;
    if (host == 121 || host == 124) { // the address comes from the program
        host_binary binary = {static_cast<uint32_t>(word) & 2U, static_cast<int32_t>(size),
                              static_cast<int32_t>(size), const_cast<unsigned char *>(data)};
        if (rcvarval(&binary, host, &value, length, nullptr) == 0)
            use(value, word, length);
        return 0;
    }
    const int given = length == 0 ? 1 : length;
    const size_t room = variable_bytes(host, given);
    const exact_block variable(room);
    take(variable.bytes, room, data, size);
    if (rcvarval(variable.bytes, host, &value, given, nullptr) == 0)
        use(value, word, length);
    return 0;
}
