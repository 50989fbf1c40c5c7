// What the two targets of times share: locales, texts, and hostile data for the locales.

#pragma once

#include <kestrion/categories.h>
#include <kestrion/ext_funcs.h>

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

namespace kestrion {

// One of a few locales: plain, with eras and digits of its own, with a calendar of its own.
inline locale_rec *fuzzed_locale(uint8_t choice) {
    static constexpr const char *objects[] = {"en_us/e01c.lco", "ja_jp/e006.lco", "th_th/e01c.lco",
                                              "fa_ir/e01c.lco"};
    static locale_rec *loaded[4];
    locale_rec *&lc = loaded[choice % 4];
    if (lc == nullptr) {
        gl_create_null_locale_4(&lc);
        char *names =
            set_categories(lc, GL_CAT_ALL, objects[choice % 4], KESTRION_BUILD_DIR "/gls/lc11");
        if (names == nullptr)
            abort();
        gl_destroystring(names);
    }
    lc->time_cat.calendar = CALENDAR_GREGORIAN + (choice / 4) % 3;
    return lc;
}

// Bytes as a text that ends where its block does, and each of them as a wide character.
class fuzzed_text {
public:
    fuzzed_text(const uint8_t *data, size_t size)
        : bytes_(static_cast<char *>(malloc(size + 1))),
          wide_(static_cast<gl_wchar *>(malloc((size + 1) * sizeof(gl_wchar)))) {
        memcpy(bytes_, data, size);
        bytes_[size] = 0;
        for (size_t i = 0; i <= size; ++i)
            wide_[i] = static_cast<unsigned char>(bytes_[i]);
    }
    ~fuzzed_text() {
        free(bytes_);
        free(wide_);
    }
    fuzzed_text(const fuzzed_text &) = delete;
    fuzzed_text &operator=(const fuzzed_text &) = delete;

    char *bytes() const { return bytes_; }
    gl_wchar *wide() const { return wide_; }

private:
    char *bytes_;
    gl_wchar *wide_;
};

// Lets a text stand for some of the locale's own formats while it lives, so that formats name each
// other and themselves.
class hostile_data {
public:
    hostile_data(locale_rec *lc, uint8_t choice, const fuzzed_text &text)
        : data_(lc->time_cat), kept_(lc->time_cat) {
        if ((choice & 0x40) != 0) {
            data_.d_fmt = text.bytes();
            data_.wide_d_fmt = text.wide();
        }
        if ((choice & 0x80) != 0 && data_.era_count > 0) {
            data_.era_d_fmt = text.bytes();
            data_.wide_era_d_fmt = text.wide();
            kept_era_ = data_.eras[0];
            data_.eras[0].format = text.bytes();
            data_.eras[0].wide_format = text.wide();
            data_.eras[0].start_year = choice % 2 == 0 ? -999999999 : 999999999;
        }
    }
    ~hostile_data() {
        if (kept_era_.direction != 0)
            data_.eras[0] = kept_era_;
        data_ = kept_;
    }
    hostile_data(const hostile_data &) = delete;
    hostile_data &operator=(const hostile_data &) = delete;

private:
    time_rec &data_;
    const time_rec kept_;
    era_rec kept_era_ = {};
};

} // namespace kestrion
