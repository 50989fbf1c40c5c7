// Locales for the tests of numbers: shipped ones, and ones whose conventions a test makes up.

#pragma once

#include "gls/locale_texts.h"

#include <string>
#include <string_view>
#include <vector>

// A wide text of ASCII.
inline std::vector<gl_wchar> wide(std::string_view text) {
    std::vector<gl_wchar> elements;
    for (const char c : text)
        elements.push_back(static_cast<unsigned char>(c));
    elements.push_back(0);
    return elements;
}

class shipped_object {
public:
    explicit shipped_object(const char *name) {
        gl_create_null_locale_4(&lc);
        char *names = set_categories(lc, GL_CAT_ALL, name, KESTRION_BUILD_DIR "/gls/lc11");
        EXPECT_NE(names, nullptr) << name << ": error " << lc->err;
        gl_destroystring(names);
        lc->err = 0;
    }
    ~shipped_object() { gl_lc_unload(lc); }
    shipped_object(const shipped_object &) = delete;
    shipped_object &operator=(const shipped_object &) = delete;
    operator locale_rec *() const { return lc; }

    locale_rec *lc;
};

// The sections of numbers and money, as a test wants them.
struct conventions {
    std::string point = ".", separator = ",", groups = "2 3 0", plus = "+", minus = "-";
    std::string international = "USD ", symbol = "$", money_point = ".", money_separator = ",";
    std::string money_groups = "2 3 0", money_plus = "", money_minus = "-";
    std::vector<int64_t> places = {2, 2, 1, 0, 1, 0, 1, 1}; // digits, then p and n, then positions

    object_text object(const code_set &set) const {
        object_text made = object_of(set);
        made.sections[2] = fields({point, separator}) + groups + "\n" + fields({plus, minus});
        made.sections[3] = fields({international, symbol, money_point, money_separator}) +
                           money_groups + "\n" + fields({money_plus, money_minus});
        for (const int64_t place : places)
            made.sections[3] += std::to_string(place) + "\n";
        return made;
    }
};

// The error word, which is put back to 0.
inline int32_t taken_error(locale_rec *lc) {
    const int32_t error = *_gl_ext_errno(lc);
    *_gl_ext_errno(lc) = 0;
    return error;
}
