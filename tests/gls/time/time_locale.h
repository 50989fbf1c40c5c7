// A locale of the build tree for the tests of times, with short ways to format and to scan.

#pragma once

#include "gls/time/moments.h"
#include <kestrion/categories.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/time_expand.h>
#include <kestrion/time_format.h>
#include <kestrion/time_scan.h>

#include <gtest/gtest.h>
#include <stddef.h>
#include <string>
#include <vector>

struct time_locale {
    explicit time_locale(const std::string &object,
                         const std::string &directory = KESTRION_BUILD_DIR "/gls/lc11") {
        gl_create_null_locale_4(&lc);
        char *loaded = set_categories(lc, GL_CAT_ALL, object.c_str(), directory.c_str());
        EXPECT_NE(loaded, nullptr) << object << ": error " << lc->err;
        gl_destroystring(loaded);
    }
    ~time_locale() { gl_lc_unload(lc); }
    time_locale(const time_locale &) = delete;
    time_locale &operator=(const time_locale &) = delete;

    // The text, or "error N".
    std::string text(const std::string &format, const gl_alt_tm &time) const {
        std::vector<char> made(10000);
        lc->err = 0;
        const int32_t length = gl_mbsftime(lc, made.data(), 10000, format.c_str(), &time);
        return lc->err != 0 ? "error " + std::to_string(lc->err)
                            : std::string(made.data(), static_cast<size_t>(length));
    }
    // Scans the whole text; 0, the error, or -1 when text is left.
    int32_t scan(const std::string &source, const std::string &format, gl_alt_tm &time) const {
        lc->err = 0;
        const char *end = gl_mbsptime(lc, source.c_str(), format.c_str(), &time);
        return end == nullptr ? lc->err : *end == 0 ? 0 : -1;
    }

    locale_rec *lc = nullptr;
};
