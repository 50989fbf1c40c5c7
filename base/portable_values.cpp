#include <kestrion/portable_values.h>

#include "base/byte_order.h"
#include <kestrion/byte_blocks.h>
#include <kestrion/strings.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <string.h>
#include <string_view>

namespace {

static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<double>::is_iec559);

constexpr int null_byte = 0xFF;
constexpr int network_form = 1; // the network flag that asks for the network's order

// The host's floating format by its name: "IEEEM" has the network's order, "IEEEI" the other one.
// Of a format that is neither, loads take the bytes as they come and stores write nothing.
constexpr std::string_view host_format =
    std::endian::native == std::endian::little ? "IEEEI" : "IEEEM";
constexpr bool host_is_network = host_format == "IEEEM";
constexpr bool host_is_reversed = host_format == "IEEEI";

template <typename Unsigned> Unsigned load_high_first(const void *source) {
    return kestrion::load_big_endian<Unsigned>(static_cast<const unsigned char *>(source));
}

template <typename Unsigned> void store_high_first(Unsigned value, void *destination) {
    kestrion::store_big_endian(value, static_cast<unsigned char *>(destination));
}

template <typename Float> double load(const void *bytes) {
    Float value;
    memcpy(&value, bytes, sizeof value);
    return static_cast<double>(value);
}

template <typename Float> void store(void *destination, double value) {
    const Float stored = static_cast<Float>(value);
    memcpy(destination, &stored, sizeof stored);
}

template <typename Float> double network_load(const void *bytes, int network) {
    if (network != network_form || !host_is_reversed)
        return load<Float>(bytes);
    unsigned char turned[sizeof(Float)];
    memcpy(turned, bytes, sizeof turned);
    std::reverse(std::begin(turned), std::end(turned));
    return load<Float>(turned);
}

template <typename Float> void network_store(void *destination, int network, double value) {
    if (network != network_form || host_is_network)
        return store<Float>(destination, value);
    if (!host_is_reversed)
        return;
    unsigned char turned[sizeof(Float)];
    store<Float>(turned, value);
    std::reverse(std::begin(turned), std::end(turned));
    memcpy(destination, turned, sizeof turned);
}

template <typename Float> bool is_null_form(const void *bytes) {
    return _gIsRangeFilled(bytes, sizeof(Float), null_byte) == 1;
}

template <typename Float>
void network_store_or_null(void *destination, int16_t is_null, int network, double value) {
    if (is_null != 0)
        byfill(destination, sizeof(Float), null_byte);
    else
        network_store<Float>(destination, network, value);
}

} // namespace

int32_t ldlong(const void *bytes) { return static_cast<int32_t>(load_high_first<uint32_t>(bytes)); }
void stlong(int32_t value, void *bytes) { store_high_first(static_cast<uint32_t>(value), bytes); }
uint64_t ldptr(const void *bytes) { return load_high_first<uint64_t>(bytes); }
void stptr(uint64_t value, void *bytes) { store_high_first(value, bytes); }

void stshort(int16_t value, void *bytes) {
    kestrion::store_little_endian(static_cast<uint16_t>(value),
                                  static_cast<unsigned char *>(bytes));
}

double ldfloat(const void *bytes) { return load<float>(bytes); }
void stfloat(void *destination, double value) { store<float>(destination, value); }
double lddbl(const void *bytes) { return load<double>(bytes); }
void stdbl(void *destination, double value) { store<double>(destination, value); }

double network_ldfloat(const void *bytes, int network) {
    return network_load<float>(bytes, network);
}
double network_lddbl(const void *bytes, int network) {
    return network_load<double>(bytes, network);
}
void network_stfloat(void *destination, int network, double value) {
    network_store<float>(destination, network, value);
}
void network_stdbl(void *destination, int network, double value) {
    network_store<double>(destination, network, value);
}

double ldfltnull(const void *bytes, int16_t *is_null) {
    return network_ldfltnull(bytes, is_null, 0);
}
double lddblnull(const void *bytes, int16_t *is_null) {
    return network_lddblnull(bytes, is_null, 0);
}

// All ones reads the same from either end, and is a quiet NaN, whose bits survive the way from
// float to double and back.
double network_ldfltnull(const void *bytes, int16_t *is_null, int network) {
    *is_null = is_null_form<float>(bytes);
    return network_load<float>(bytes, network);
}
double network_lddblnull(const void *bytes, int16_t *is_null, int network) {
    *is_null = is_null_form<double>(bytes);
    return network_load<double>(bytes, network);
}

void stfltnull(void *destination, int16_t is_null, double value) {
    network_store_or_null<float>(destination, is_null, 0, value);
}
void stdblnull(void *destination, int16_t is_null, double value) {
    network_store_or_null<double>(destination, is_null, 0, value);
}
void network_stfltnull(void *destination, int16_t is_null, int network, double value) {
    network_store_or_null<float>(destination, is_null, network, value);
}
void network_stdblnull(void *destination, int16_t is_null, int network, double value) {
    network_store_or_null<double>(destination, is_null, network, value);
}

void ldchar(const void *source, ptrdiff_t size, char *destination) {
    const ptrdiff_t length = qvt_byleng(source, size);
    bycopy(source, destination, length);
    destination[length] = '\0';
}

void stchar(const char *text, void *destination, ptrdiff_t size) {
    const ptrdiff_t length = text != nullptr ? stnleng(text, size) : 0;
    bycopy(text, destination, length);
    byfill(static_cast<char *>(destination) + length, size - length, ' ');
}

void ldvarchar(const void *source, ptrdiff_t maximum, char *destination) {
    const unsigned char *field = static_cast<const unsigned char *>(source);
    const ptrdiff_t length = std::min<ptrdiff_t>(field[0], std::max<ptrdiff_t>(maximum, 0));
    bycopy(field + 1, destination, length);
    destination[length] = '\0';
}

void stvarchar(const char *text, void *destination, ptrdiff_t size) {
    unsigned char *field = static_cast<unsigned char *>(destination);
    if (text == nullptr) {
        field[0] = 1;
        byfill(field + 1, std::min<ptrdiff_t>(size, 1), 0);
        return;
    }
    field[0] = static_cast<unsigned char>(stleng(text));
    stchar(text, field + 1, size);
}
