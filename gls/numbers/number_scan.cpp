#include <kestrion/number_scan.h>

#include "gls/base/engine_error.h"
#include "gls/numbers/multibyte_twin.h"
#include "gls/numbers/number_directive.h"
#include "gls/numbers/number_scanning.h"
#include "gls/numbers/value_list.h"
#include <kestrion/char_convert.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/format_modifiers.h>
#include <kestrion/gls_errors.h>

#include <float.h>
#include <math.h>
#include <string.h>

using namespace kestrion;

namespace {

int32_t bits_of(value_length length) {
    switch (length) {
    case value_length::chars:
        return 8;
    case value_length::shorts:
        return 16;
    case value_length::normal:
        return 32;
    case value_length::longs:
        break;
    }
    return 64;
}

// Signed and unsigned integers of one size share their bytes.
void store_integer(void *to, value_length length, uint64_t value) {
    switch (length) {
    case value_length::chars:
        *static_cast<unsigned char *>(to) = static_cast<unsigned char>(value);
        break;
    case value_length::shorts:
        *static_cast<unsigned short *>(to) = static_cast<unsigned short>(value);
        break;
    case value_length::normal:
        *static_cast<unsigned int *>(to) = static_cast<unsigned int>(value);
        break;
    case value_length::longs:
        *static_cast<unsigned long *>(to) = static_cast<unsigned long>(value);
        break;
    }
}

// Where characters go: nowhere, to wide elements or to bytes.
class character_store {
public:
    character_store(locale_rec *lc, void *to, bool wide)
        : lc_(lc), wide_(wide), to_(static_cast<char *>(to)) {}

    bool put(gl_wchar character) {
        if (character == no_character)
            return false;
        if (to_ == nullptr)
            return true;
        char bytes[gl_char_bytes];
        const int32_t length =
            wide_ ? put_element(character) : gl_full_wctomb(lc_, bytes, character);
        if (length < 0)
            return false;
        if (!wide_)
            memcpy(to_, bytes, static_cast<size_t>(length));
        to_ += length;
        return true;
    }
    void terminate() {
        if (to_ != nullptr && wide_)
            put_element(0);
        else if (to_ != nullptr)
            gl_mbsterm(lc_, to_);
    }

private:
    int32_t put_element(gl_wchar element) {
        memcpy(to_, &element, sizeof element);
        return static_cast<int32_t>(sizeof element);
    }

    locale_rec *lc_;
    bool wide_;
    char *to_;
};

// ---- Reading

// How a step of the scan ended.
struct outcome {
    bool goes_on;
    int32_t error; // when it does not; GLS_OK at the end of the source
};

constexpr outcome went_on = {true, GLS_OK};
constexpr outcome source_ended = {false, GLS_OK};
constexpr outcome stopped(int32_t error) { return {false, error}; }

template <class source> class number_reader {
public:
    number_reader(locale_rec *lc, source text, value_list &pointers)
        : lc_(lc), text_(text), pointers_(pointers) {}

    // Reads by the whole format; GLS_OK or the error that stopped it.
    int32_t read(const gl_wchar *format);
    int32_t count() const { return count_; }

private:
    int32_t announce_pointers(const gl_wchar *format);
    outcome read_literal(gl_wchar wanted);
    outcome read_directive(const gl_wchar *&format);
    outcome read_value(const number_directive &d, const conversion &known, void *to);
    outcome read_integer(const number_directive &d, const conversion &known, void *to);
    outcome read_float(const number_directive &d, void *to);
    outcome read_characters(const number_directive &d, void *to);
    outcome read_text(const number_directive &d, void *to);
    outcome mismatch();
    source limited(const number_directive &d) const {
        source text = text_;
        if (d.width > 0)
            text.limit(d.width);
        return text;
    }
    void go_to(typename source::pointer at) { text_ = source(lc_, at); }

    locale_rec *lc_;
    source text_;
    int32_t count_ = 0;
    bool numbered_ = false;
    value_list &pointers_;
};

template <class source> int32_t number_reader<source>::read(const gl_wchar *format) {
    while (*format != 0) {
        outcome step = went_on;
        if (*format == '%' && format[1] != '%') {
            ++format;
            step = read_directive(format);
        } else if (has_class(lc_, *format, CT_SPACE)) {
            skip_white(text_);
            ++format;
        } else {
            step = read_literal(*format);
            format += *format == '%' ? 2 : 1;
        }
        if (!step.goes_on)
            return step.error;
    }
    return GLS_OK;
}

template <class source> outcome number_reader<source>::mismatch() {
    return stopped(text_.peek() == no_character ? GLS_ERR_BAD_CHARACTER : GLS_ERR_FORMAT);
}

template <class source> outcome number_reader<source>::read_literal(gl_wchar wanted) {
    const gl_wchar element = text_.peek();
    if (element == 0)
        return source_ended;
    if (element != wanted)
        return mismatch();
    text_.next();
    return went_on;
}

// Looks at all directives from the first numbered one on, at whose start `format` stands.
template <class source> int32_t number_reader<source>::announce_pointers(const gl_wchar *format) {
    for (;;) {
        number_directive d;
        if (const int32_t error = read_scan_directive(lc_, format, d))
            return error;
        if (!d.suppressed && !pointers_.announce(d.value_index, value_kind::pointer))
            return GLS_ERR_FORMAT;
        format = next_directive(format);
        if (format == nullptr)
            return pointers_.fetch() ? GLS_OK : GLS_ERR_FORMAT;
    }
}

template <class source> outcome number_reader<source>::read_directive(const gl_wchar *&format) {
    const gl_wchar *const start = format;
    number_directive d;
    int32_t error = read_scan_directive(lc_, format, d);
    if (error == GLS_OK && d.value_index != 0 && !numbered_) {
        numbered_ = true;
        error = announce_pointers(start);
    }
    if (error != GLS_OK)
        return stopped(error);
    const conversion *known = conversion_of(d.conversion);
    if (known == nullptr || known->kind == conversion_kind::pointer)
        return stopped(GLS_ERR_FORMAT);
    listed_value to = {};
    if (!d.suppressed && !pointers_.take(d.value_index, value_kind::pointer, to))
        return stopped(GLS_ERR_FORMAT);
    if (!d.suppressed && to.pointer == nullptr)
        return stopped(GLS_ERR_NULL_ARGUMENT);
    if (known->kind != conversion_kind::character)
        skip_white(text_);
    if (text_.peek() == 0)
        return source_ended;
    const outcome step = read_value(d, *known, to.pointer);
    count_ += step.goes_on && !d.suppressed;
    return step;
}

template <class source>
outcome number_reader<source>::read_value(const number_directive &d, const conversion &known,
                                          void *to) {
    switch (known.kind) {
    case conversion_kind::floating:
        return read_float(d, to);
    case conversion_kind::character:
        return read_characters(d, to);
    case conversion_kind::text:
        return read_text(d, to);
    default:
        return read_integer(d, known, to);
    }
}

template <class source>
outcome number_reader<source>::read_integer(const number_directive &d, const conversion &known,
                                            void *to) {
    source text = limited(d);
    scanned_integer scanned;
    if (!scan_integer(text, numeric_marks(lc_, (d.flags & gl_flag_group) != 0),
                      static_cast<uint32_t>(known.base), scanned))
        return mismatch();
    const int32_t unused = 64 - bits_of(d.length);
    uint64_t value = scanned.magnitude;
    bool fits = false;
    if (known.kind == conversion_kind::signed_integer) {
        int64_t signed_value = 0;
        fits = signed_value_of(scanned, INT64_MIN >> unused, INT64_MAX >> unused, signed_value);
        value = static_cast<uint64_t>(signed_value);
    } else {
        fits =
            !scanned.overflow && value <= UINT64_MAX >> unused && (!scanned.negative || value == 0);
    }
    if (!fits)
        return stopped(GLS_ERR_RANGE);
    if (to != nullptr)
        store_integer(to, d.length, value);
    go_to(text.at());
    return went_on;
}

template <class source>
outcome number_reader<source>::read_float(const number_directive &d, void *to) {
    source text = limited(d);
    collected_float collected;
    if (!scan_float(text, numeric_marks(lc_, (d.flags & gl_flag_group) != 0), collected))
        return mismatch();
    int32_t error = GLS_OK;
    const double value = collected.value(error);
    const bool is_double = d.length == value_length::longs;
    if (error == GLS_OK && !is_double && fabs(value) > static_cast<double>(FLT_MAX))
        error = GLS_ERR_RANGE;
    if (error != GLS_OK)
        return stopped(error);
    if (to != nullptr && is_double)
        *static_cast<double *>(to) = value;
    else if (to != nullptr)
        *static_cast<float *>(to) = static_cast<float>(value);
    go_to(text.at());
    return went_on;
}

template <class source>
outcome number_reader<source>::read_characters(const number_directive &d, void *to) {
    const int32_t wanted = d.width > 0 ? d.width : 1;
    if (wanted > 1 && d.precision != gl_modifier_unset)
        return stopped(GLS_ERR_FORMAT);
    character_store store(lc_, to, d.length == value_length::longs);
    for (int32_t i = 0; i < wanted; ++i, text_.next()) {
        const gl_wchar character = text_.peek();
        if (character == 0)
            return source_ended;
        if (!store.put(character))
            return stopped(GLS_ERR_BAD_CHARACTER);
    }
    return went_on;
}

template <class source>
outcome number_reader<source>::read_text(const number_directive &d, void *to) {
    source text = limited(d);
    if (d.precision != gl_modifier_unset)
        text.limit(d.precision);
    character_store store(lc_, to, d.length == value_length::longs);
    for (gl_wchar character; (character = text.peek()) != 0; text.next()) {
        if (has_class(lc_, character, CT_SPACE))
            break;
        if (!store.put(character))
            return stopped(GLS_ERR_BAD_CHARACTER);
    }
    store.terminate();
    go_to(text.at());
    return went_on;
}

template <class source>
int32_t scan(locale_rec *lc, typename source::pointer text, const gl_wchar *format, va_list list) {
    if (text == nullptr || format == nullptr) {
        set_engine_error(lc, GLS_ERR_NULL_ARGUMENT);
        return 0;
    }
    value_list pointers;
    va_copy(pointers.list, list);
    number_reader<source> reader(lc, source(lc, text), pointers);
    const int32_t error = reader.read(format);
    va_end(pointers.list);
    if (error != GLS_OK)
        set_engine_error(lc, error);
    return reader.count();
}

} // namespace

int32_t gl_wcspnum1(locale_rec *lc, const gl_wchar *source, const gl_wchar *format,
                    va_list pointers) {
    return scan<wide_source>(lc, source, format, pointers);
}

int32_t gl_wcspnum(locale_rec *lc, const gl_wchar *source, const gl_wchar *format, ...) {
    va_list pointers;
    va_start(pointers, format);
    const int32_t count = gl_wcspnum1(lc, source, format, pointers);
    va_end(pointers);
    return count;
}

int32_t gl_wcsscanf(locale_rec *lc, const gl_wchar *source, const gl_wchar *format, ...) {
    va_list pointers;
    va_start(pointers, format);
    const int32_t count = gl_wcspnum1(lc, source, format, pointers);
    va_end(pointers);
    return count;
}

int32_t gl_mbsscanf1(locale_rec *lc, const char *source, const char *format, va_list pointers) {
    const wide_copy wide_format(lc, format);
    if (wide_format.text() == nullptr)
        return *_gl_ext_errno(lc) == GLS_ERR_NO_MEMORY ? -1 : 0;
    return scan<multibyte_source>(lc, source, wide_format.text(), pointers);
}

int32_t gl_mbspnum(locale_rec *lc, const char *source, const char *format, ...) {
    va_list pointers;
    va_start(pointers, format);
    const int32_t count = gl_mbsscanf1(lc, source, format, pointers);
    va_end(pointers);
    return count;
}

int32_t gl_mbsscanf(locale_rec *lc, const char *source, const char *format, ...) {
    va_list pointers;
    va_start(pointers, format);
    const int32_t count = gl_mbsscanf1(lc, source, format, pointers);
    va_end(pointers);
    return count;
}
