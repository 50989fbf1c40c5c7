#include <kestrion/locale_specifiers.h>

#include "gls/naming/category_words.h"
#include <kestrion/categories.h>
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/gentcb.h>
#include <kestrion/gls_errors.h>
#include <kestrion/locale_rec.h>
#include <kestrion/specifiers.h>
#include <kestrion/startup.h>
#include <kestrion/strings.h>

#include <stdio.h>
#include <string.h>

namespace {

struct alias_row {
    const char *alias;
    const char *locale;
};
constexpr alias_row aliastab[] = {
    {"ascii", "en_US.8859-1"}, {"gb", "zh_CN.gb"},       {"ksc1", "ko_KR.ksc"},
    {"ksc", "ko_KR.ksc"},      {"big5", "zh_TW.big5"},   {"sbig5", "zh_TW.sbig5"},
    {"ccdc", "zh_TW.ccdc"},    {"cccii", "zh_TW.cccii"}, {"8859-1", "en_US.8859-1"},
    {"gb2312", "zh_CN.gb"},    {"ks5601", "ko_KR.ksc"},  {"jis208", "ja_JP.ujis"},
    {"sjis208", "ja_JP.sjis"}, {"sjis", "ja_JP.sjis"},   {"ujis", "ja_JP.ujis"},
    {nullptr, nullptr},
};

constexpr size_t name_size = 512; // room for a file name or composite of the engine
constexpr size_t os_name_size = 290;
constexpr int all_categories = 1;

// Length of the part of `text` that `size` bytes hold with a terminator.
size_t fitting(const char *text, size_t size) { return strnlen(text, size - 1); }

void cut_copy(const char *text, char *out, size_t size) {
    const size_t length = fitting(text, size);
    memmove(out, text, length);
    out[length] = '\0';
}

void append(char *out, const char *text) {
    const size_t used = strnlen(out, gls_composite_size - 1);
    cut_copy(text, out + used, gls_composite_size - used);
}

// The value of `slot` in a composite, into value[0..size); empty when the keyword is missing.
void composite_value(const char *composite, int slot, char *value, size_t size) {
    value[0] = '\0';
    const char *found = strstr(composite, kestrion::category_words[slot].text);
    if (found == nullptr)
        return;
    char keyword[257];
    char word[40];
    if (sscanf(found, "%256s = %39s", keyword, word) == 2)
        cut_copy(word, value, size);
}

// The name to load for one try, with the flags of its categories. Returns true when it contains a
// name of the operating system.
bool name_to_load(locale_rec *lc, const char *spec, bool as_os_name, char *name, int32_t *is_gls) {
    const auto resolves = [&](const char *text, char *file) {
        return !as_os_name && gl_lc_spec2lc_fname(lc, text, file, nullptr, nullptr) == 0;
    };
    const bool whole = resolves(spec, name);
    for (int slot = 0; slot < GLS_SLOTS; ++slot)
        is_gls[slot] = whole;
    if (whole)
        return false;
    if (strstr(spec, kestrion::category_words[GLS_SLOT_CTYPE].text) == nullptr) {
        prependos(spec, name);
        return true;
    }
    bool os_name = false;
    for (int slot = 0; slot < GLS_SLOTS; ++slot) {
        char value[gls_spec_size];
        char file[name_size];
        composite_value(spec, slot, value, sizeof value);
        is_gls[slot] = resolves(value, file);
        if (!is_gls[slot]) {
            prependos(value, file);
            os_name = true;
        }
        mk1loccat(file, slot, name, 0, "", 0);
    }
    return os_name;
}

// One try of get_locale. Returns 0, or the engine's error word of the failure.
int32_t load_named(locale_rec *lc, const char *name) {
    int32_t *word = _gl_ext_errno(lc);
    *word = 0;
    char *text = gl_setlocale_4(lc, all_categories, name);
    const bool loaded = text != nullptr && *word != GLS_ERR_MIXED_CODE_SETS;
    gl_destroystring(text);
    const int32_t error = *word;
    if (loaded) {
        *word = 0;
        return 0;
    }
    return error != 0 ? error : GLS_ERR_FILE;
}

// Errors that say no more than that a locale file was not usable.
bool deserves_retry(int32_t error) {
    return error == GLS_ERR_FILE || error == GLS_ERR_ARGUMENT || error == GLS_ERR_MALFORMED;
}

void rebuild_slot(const char *lang, const char *cs, const char *modifier, char *slot) {
    char text[name_size];
    if (gl_lc_pieces2lc_spec(nullptr, lang, cs, modifier, text) == 0)
        cut_copy(text, slot, gls_spec_size);
}

struct pieces {
    char lang[16];
    char cs[16];
    char modifier[16];
};

bool split(const char *spec, pieces &out) {
    return spec2pieces(spec, out.lang, out.cs, out.modifier) == 0;
}

// What mklocspec decides from the client's own setting.
struct locspec_choice {
    bool simple = false;
    bool keep_slots = false;
    const char *value = nullptr; // for the last four categories; null: their slots
    bool convert = false;
};

locspec_choice choose(const char *spec0, const char *spec1, const char *client, char *value,
                      int flag_a, int flag_b, int keep) {
    const bool same = strcmp(spec0, spec1) == 0;
    pieces db{};
    if (client == nullptr) {
        if ((CheckGlsEnv()->state->lc_flags & 2) != 0) {
            if (flag_a != 0 && flag_b != 0)
                return {.simple = true};
            return {.convert = split(spec0, db)};
        }
        if (same)
            return {.simple = true, .keep_slots = true};
        return {.value = spec0};
    }
    char gen0[gls_spec_size];
    char own[gls_spec_size];
    togensp(spec0, gen0);
    togensp(client, own);
    if (strcmp(gen0, own) == 0) {
        if (flag_b != 0 || same)
            return {.simple = true, .keep_slots = keep != 0};
        return {.value = spec0};
    }
    cut_copy(client, value, gls_spec_size);
    pieces mine{};
    if (split(client, mine) && split(spec0, db))
        rebuild_slot(mine.lang, db.cs, mine.modifier, value);
    return {.value = value};
}

} // namespace

void prependos(const char *name, char *out) {
    memcpy(out, "os/", sizeof "os/");
    cut_copy(name, out + 3, os_name_size - 3);
}

void lcspec2longsp(char *spec, char (*slots)[gls_spec_size]) {
    const size_t length = fitting(spec, gls_spec_size);
    if (spec[length] != '\0')
        spec[length] = '\0';
    for (int slot = 0; slot < GLS_SLOTS; ++slot)
        memcpy(slots[slot], spec, length + 1);
}

int spec2pieces(const char *spec, char *lang, char *cs, char *modifier) {
    char file[name_size];
    if (gl_lc_spec2lc_fname(nullptr, spec, file, nullptr, nullptr) != 0 ||
        gl_lc_fname2lc_pieces(nullptr, file, lang, cs, modifier) != 0)
        return -1;
    return 0;
}

void mk1loccat(const char *value, int slot, char *out, int convert, const char *cs, int keep) {
    char *own = CheckGlsEnv()->state->lc_spec[slot];
    if (slot == GLS_SLOT_CTYPE)
        out[0] = '\0';
    append(out, kestrion::category_words[slot].text);
    append(out, " = ");
    if (value != nullptr) {
        append(out, value);
        if (keep != 0)
            cut_copy(value, own, gls_spec_size);
    } else {
        pieces old{};
        if (convert != 0 && split(own, old))
            rebuild_slot(old.lang, cs, old.modifier, own);
        append(out, own);
    }
    append(out, " ; ");
}

void get_nlscat(const char *name, int slot, int strict, int *missing, const char *) {
    char *own = CheckGlsEnv()->state->lc_spec[slot];
    const char *value = ggetenv(name);
    if (value != nullptr) {
        cut_copy(value, own, gls_spec_size);
    } else if (strict != 0) {
        ++*missing;
        own[0] = gls_missing_mark;
    }
}

int get_locale(locale_rec **out, const char *spec, int32_t *is_gls) {
    if (spec == nullptr || strnlen(spec, gls_spec_limit) >= gls_spec_limit)
        return set_glserror(err_locale_load);
    for (bool retry = false;; retry = true) {
        locale_rec *lc = nullptr;
        if (gl_create_null_locale_4(&lc) != 0) {
            set_glserror(*_gl_ext_errno(lc));
            return -1;
        }
        char name[gls_composite_size];
        const bool os_name = name_to_load(lc, spec, retry, name, is_gls);
        const int32_t error = load_named(lc, name);
        if (error == 0) {
            *out = lc;
            return 0;
        }
        set_glserror(error);
        gl_lc_unload(lc);
        if (retry || os_name || !deserves_retry(error))
            return -1;
    }
}

const char *getalsloc(const char *name) {
    if (name == nullptr)
        return nullptr;
    for (const alias_row *row = aliastab; row->alias != nullptr; ++row)
        if (stcmpr(row->alias, name) == 0)
            return row->locale;
    return nullptr;
}

void togensp(const char *spec, char *out) {
    char file[name_size];
    int32_t dropped;
    if (gl_lc_spec2lc_fname(nullptr, spec, file, nullptr, nullptr) == 0)
        chglcfile2sp(file, out, &dropped);
    else
        cut_copy(spec, out, gls_spec_size);
}

void chglcfile2sp(const char *fname, char *out, int32_t *is_gls) {
    pieces parts{};
    char spec[name_size];
    if (gl_lc_fname2lc_pieces(nullptr, fname, parts.lang, parts.cs, parts.modifier) == 0 &&
        gl_lc_pieces2lc_spec(nullptr, parts.lang, parts.cs, parts.modifier, spec) == 0) {
        cut_copy(spec, out, gls_spec_size);
        *is_gls = 1;
        return;
    }
    const char *slash = strchr(fname, '/');
    cut_copy(slash != nullptr ? slash + 1 : fname, out, gls_spec_size);
    *is_gls = 0;
}

int restorelocsp(locale_rec *lc) {
    new_gls_env_rec &state = *CheckGlsEnv()->state;
    char *composite = lc != nullptr ? gl_setlocale_4(lc, all_categories, nullptr) : nullptr;
    if (composite == nullptr) {
        set_glserror(lc != nullptr ? *_gl_ext_errno(lc) : GLS_ERR_NULL_ARGUMENT);
        return getiniterr();
    }
    for (int slot = 0; slot < GLS_SLOTS; ++slot) {
        char file[40];
        composite_value(composite, slot, file, sizeof file);
        chglcfile2sp(file, state.lc_spec[slot], &state.lc_is_gls[slot]);
    }
    gl_destroystring(composite);
    return 0;
}

void mklocspec(const char *spec0, const char *spec1, char *out, int flag_a, int flag_b, int keep) {
    new_gls_env_rec &state = *CheckGlsEnv()->state;
    char value[gls_spec_size];
    const char *client = getsesenv("CLIENT_LOCALE");
    const locspec_choice choice = choose(spec0, spec1, client, value, flag_a, flag_b, keep);
    if (choice.simple) {
        state.lc_flags |= 1;
        cut_copy(spec0, out, gls_composite_size);
        if (choice.keep_slots) {
            char copy[gls_spec_size];
            cut_copy(spec0, copy, sizeof copy);
            lcspec2longsp(copy, state.lc_spec);
        }
        return;
    }
    pieces db{};
    if (choice.convert)
        split(spec0, db);
    mk1loccat(spec0, GLS_SLOT_CTYPE, out, 0, "", keep);
    mk1loccat(spec1, GLS_SLOT_COLLATE, out, 0, "", keep);
    for (int slot = GLS_SLOT_NUMERIC; slot < GLS_SLOTS; ++slot)
        mk1loccat(choice.value, slot, out, choice.convert, db.cs, 1);
}
