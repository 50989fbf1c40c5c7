// Two small locales made by hand, one of single bytes and one of characters of several bytes, and
// the way to make one current.

#pragma once

#include <ctype.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <string.h>

#include <string>

#include "gls/categories.h"
#include "gls/char_desc.h"
#include "gls/ctype_masks.h"
#include "gls/locale_file.h"
#include "gls/multi_file.h"
#include "locale_env/gls_env.h"

// Every byte its own character: ASCII, and of the high letters one pair.
struct byte_locale {
    uint8_t upper[256], lower[256];
    uint16_t classes[256] = {};
    locale_rec record = {};

    byte_locale() {
        for (int c = 0; c < 256; c++) {
            upper[c] = static_cast<uint8_t>(c == 0xE9 ? 0xC9 : toupper(c));
            lower[c] = static_cast<uint8_t>(c == 0xC9 ? 0xE9 : tolower(c));
            classes[c] = isalpha(c) || c == 0xE9 || c == 0xC9 ? CT_ALPHA : 0;
        }
        record.case_expansion = 1.0;
        record.sb_upper = upper;
        record.sb_lower = lower;
        record.sb_class = classes;
        record.is_single_byte = 1;
    }
};

// A piece of UTF-8: ASCII, an accented pair, a pair whose upper case is a byte longer than its
// lower case, and a wide blank.
class multibyte_locale {
public:
    multibyte_locale() {
        gl_create_null_locale_4(&record);
        std::string ascii(1, '\0');
        for (int c = 0; c < 128; c++) {
            ascii[0] = static_cast<char>(c);
            const bool blank = c == ' ' || c == '\t';
            add(ascii, isalpha(c) ? CT_ALPHA : blank ? CT_BLANK : 0, isalpha(c) ? (c & 31) : 0);
        }
        for (const char *letter : {"é", "É"})
            add(letter, CT_ALPHA, 27);
        for (const char *letter : {"ß", "ẞ"})
            add(letter, CT_ALPHA, 28);
        add("\u3000", CT_BLANK, 0);
        load();
    }
    ~multibyte_locale() { gl_lc_unload(record); }

    locale_rec *record = nullptr;

private:
    multi_arr *classes_ = _gl_create_multi(2, 0, "\0\0");
    multi_arr *cases_ = _gl_create_multi(2, 0, "\0\0");

    void add(const std::string &bytes, uint32_t class_mask, int case_pair) {
        gl_char_desc sequence = {};
        sequence.length = static_cast<int32_t>(bytes.size());
        memcpy(sequence.bytes, bytes.data(), bytes.size());
        const uint16_t mask = static_cast<uint16_t>(class_mask);
        const uint16_t index = static_cast<uint16_t>(case_pair);
        EXPECT_EQ(_gl_insert_desc_multi(&sequence, &mask, classes_), 0);
        EXPECT_EQ(_gl_insert_desc_multi(&sequence, &index, cases_), 0);
    }

    // By way of the section of a locale object that holds these tables.
    void load() {
        FILE *section = tmpfile();
        _gl_fprintf_multi(section, classes_, ub2_writer);
        fputs("0\n", section);
        _gl_fprintf_multi(section, cases_, ub2_writer);
        fputs("28\n", section);
        for (int letter = 1; letter <= 26; letter++)
            fprintf(section, "%08x%08x\n", 'A' + letter - 1, 'a' + letter - 1);
        fputs("0000c3890000c3a9\n00e1ba9e0000c39f\n1.5\n", section);
        rewind(section);
        EXPECT_EQ(read_ctype(record, section), 0) << record->err;
        EXPECT_EQ(update_locale(record), 0) << record->err;
        fclose(section);
        _gl_free_multi(classes_);
        _gl_free_multi(cases_);
    }
};

// Makes a locale the current one, as a start that has succeeded leaves it.
class current_locale {
public:
    explicit current_locale(locale_rec *lc) {
        CheckGlsEnv()->cur_lc = lc;
        CheckGlsEnv()->state->init_flags = 1;
    }
    ~current_locale() { CheckGlsEnv()->cur_lc = nullptr; }
};
