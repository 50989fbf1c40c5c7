// The grammar of specifiers and of the texts that hold one for each category, shared by the
// operations on them.

#pragma once

#include "gls/base/engine_error.h"
#include <kestrion/code_set_registry.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/path_search.h>
#include <kestrion/specifiers.h>

#include <string_view>

namespace kestrion {

inline constexpr int32_t gl_max_code_set_length = 21;
inline constexpr int32_t gl_max_modifier_length = 4;
inline constexpr int32_t gl_max_lang_length = 6; // "lan_TE"
inline constexpr size_t gl_max_cs_digits = 5;    // of a code-set number

// A text that is being written to a caller's buffer, and refuses what does not fit.
class out_text {
public:
    out_text(char *out, size_t size) : out_(out), left_(size - 1) { *out_ = '\0'; }

    out_text &add(std::string_view piece) {
        if (piece.size() > left_) {
            fits_ = false;
            return *this;
        }
        piece.copy(out_, piece.size());
        out_ += piece.size();
        left_ -= piece.size();
        *out_ = '\0';
        return *this;
    }
    out_text &add(char c) { return add(std::string_view(&c, 1)); }
    out_text &add_hex(int number) {
        for (int shift = 12; shift >= 0; shift -= 4)
            add("0123456789abcdef"[number >> shift & 15]);
        return *this;
    }
    out_text &add_directory(std::string_view dir) {
        return dir.empty() ? *this : add(dir).add(gl_directory_mark);
    }
    bool fits() const { return fits_; }

private:
    char *out_;
    size_t left_;
    bool fits_ = true;
};

inline int finish(void *ctx, const out_text &out) {
    return out.fits() ? 0 : fail(ctx, GLS_ERR_SPECIFIER);
}

inline std::string_view view_of(const char *text) {
    return text != nullptr ? std::string_view(text) : std::string_view();
}

inline constexpr std::string_view spec_equals = " = ";
inline constexpr std::string_view spec_separator = " ; ";

// Slot of the keyword at the start of `text`, or -1.
int keyword_slot(std::string_view text);

// Length of "la_TE" or "lan_TE" at the start of a text, or 0.
size_t language_and_territory(std::string_view text);

// The pieces of a file name, each terminated.
struct name_pieces {
    char lang[gl_max_lang_length + 1];
    char cs[gl_max_cs_digits + 1];
    char modifier[gl_max_modifier_length + 1];
};

// One category of a composite text, or the whole of a simple one.
struct spec_item {
    std::string_view keyword; // empty in a simple text
    size_t slot;              // of the category; 0 in a simple text
    std::string_view body;    // specifier or file name
};

// A text cut into its categories.
struct spec_items {
    int32_t count = 0;
    bool composite = false;
    spec_item of[gl_category_count];

    const spec_item *in_slot(size_t slot) const {
        for (int32_t i = 0; i < count; ++i) {
            if (!composite || of[i].slot == slot)
                return &of[i];
        }
        return nullptr;
    }
    bool has_all() const { return !composite || count == gl_category_count; }
};

// Cuts a text into categories; the bodies are not looked at. The last one may have a separator
// after it, as the queries of a record write it. False for any other text.
bool cut_spec(std::string_view text, spec_items &found);

// Writes what comes before a body in a composite text.
void start_item(out_text &out, const spec_item &category, bool first);

// Room that a caller's buffer has for such a text.
size_t room_for(const spec_items &found, std::string_view dir);

// A specifier that was parsed and whose code set is known.
struct parsed_spec {
    spec_items found;
    gl_spec_pieces pieces[gl_category_count];
    int number = gl_unknown_code_set; // the same for all categories

    // Returns 0, or -1 with the error word set.
    int parse(void *ctx, std::string_view spec, const char *regfile);
    void add_file_name(out_text &out, int32_t i) const;
};

} // namespace kestrion
