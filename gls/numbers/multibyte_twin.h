// What the multibyte twins of wide operations share: the format as wide characters, a wide work
// area for the result, and the way back.
//
//     const wide_copy wide_format(lc, format);
//     wide_area area(lc, size);
//     if (wide_format.text() == nullptr || area.elements() == nullptr)
//         return no_result(lc, dst, size, -1);
//     const int32_t count = the_wide_operation(lc, area.elements(), area.size(),
//                                              wide_format.text(), ...);
//     return _gl_get_mbstring(lc, dst, size, area.elements(), count);

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

// Elements that need no allocation, terminators included.
inline constexpr int32_t stack_format = 32;
inline constexpr int32_t stack_area = 128;

// A terminated multibyte text as a terminated wide one.
class wide_copy {
public:
    wide_copy(locale_rec *lc, const char *source);
    ~wide_copy();
    wide_copy(const wide_copy &) = delete;
    wide_copy &operator=(const wide_copy &) = delete;

    // Null with the error word GLS_ERR_NULL_ARGUMENT, GLS_ERR_BAD_CHARACTER or GLS_ERR_NO_MEMORY.
    const gl_wchar *text() const { return text_; }

private:
    gl_wchar *text_ = nullptr;
    gl_wchar on_stack_[stack_format];
};

// Room for the wide form of a result of `size` bytes: one element more than bytes.
class wide_area {
public:
    wide_area(locale_rec *lc, int32_t size);
    ~wide_area();
    wide_area(const wide_area &) = delete;
    wide_area &operator=(const wide_area &) = delete;

    // Null with the error word GLS_ERR_NO_MEMORY, or GLS_ERR_NO_ROOM for a size below 1.
    gl_wchar *elements() const { return elements_; }
    int32_t size() const { return size_; }

private:
    gl_wchar *elements_ = nullptr;
    int32_t size_ = 0;
    gl_wchar on_stack_[stack_area];
};

// Writes src[0..count) and a terminator to dst[0..size) in the locale's code set. A count below 0
// stands for a wide operation that failed.
// Returns the bytes without the terminator; -1 with GLS_ERR_NO_ROOM, with GLS_ERR_BAD_CHARACTER, or
//         for a count below 0 with the error word as it is.
int32_t _gl_get_mbstring(locale_rec *lc, char *dst, int32_t size, const gl_wchar *src,
                         int32_t count);

// Leaves an empty text where there is room for one, and gives the result of the failed operation.
int32_t no_result(locale_rec *lc, char *dst, int32_t size, int32_t result);
int32_t no_result(gl_wchar *dst, int32_t size, int32_t result);

} // namespace kestrion
