// Cells made of short texts.

#pragma once

#include <kestrion/datetime_text.h>
#include <kestrion/decimal_text.h>
#include <kestrion/interval_text.h>
#include <kestrion/value.h>
#include <kestrion/value_types.h>

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <string_view>

namespace cells {

// A cell of a SQL type; a null text makes it NULL. The text must outlive a cell of text.
inline value_rec cell(int type, const char *text, int word = 0) {
    static const char truth[] = {0, 1};
    value_rec v = {};
    v.type = static_cast<uint16_t>(type);
    v.length_word = word;
    if (text == nullptr) {
        v.null_flag = -1;
        return v;
    }
    const auto length = static_cast<int32_t>(strlen(text));
    switch (type) {
    case sql_smallint:
    case sql_integer:
    case sql_serial:
    case sql_date:
        v.payload.integer = static_cast<int32_t>(strtol(text, nullptr, 10));
        break;
    case sql_float:
        v.payload.number = strtod(text, nullptr);
        break;
    case sql_smallfloat:
        v.payload.single = strtof(text, nullptr);
        break;
    case sql_decimal:
    case sql_money:
        deccvasc_net(text, length, &v.payload.decimal);
        break;
    case sql_int8:
    case sql_serial8:
        qvt_int8_from_bigint(strtoll(text, nullptr, 10), &v.payload.int8);
        break;
    case sql_bigint:
    case sql_bigserial:
        v.payload.bigint = strtoll(text, nullptr, 10);
        break;
    case sql_datetime:
        rstrdtime(text, &v.payload.decimal, word);
        break;
    case sql_interval:
        rstrinv(text, &v.payload.decimal, word);
        break;
    case sql_boolean:
        v.payload.text.data = truth + (*text == 't' ? 1 : 0);
        v.payload.text.text_length = 1;
        break;
    case sql_byte:
    case sql_text:
        v.payload.blob.kind = type;
        break;
    default:
        v.payload.text.data = text;
        v.payload.text.text_length = length;
    }
    return v;
}

inline std::string hex(const unsigned char *bytes, size_t count) {
    std::string text;
    for (size_t i = 0; i < count; ++i) {
        char pair[4];
        snprintf(pair, sizeof pair, i == 0 ? "%02x" : " %02x", bytes[i]);
        text += pair;
    }
    return text;
}

} // namespace cells
