// Locale specifiers, and the names of the files that belong to them.
//
// Simple specifier      en_US.8859-1@dict        language, territory, code set, modifier
// Composite specifier   GL_CTYPE = en_US.819 ; GL_COLLATE = en_US.819 ; ...
//                       (keywords in any order, none twice, all with the same code-set number)
// Short form            en_US.819;;fr_FR.819     one to six simple specifiers in the order CTYPE,
//                       COLLATE, NUMERIC, MONETARY, TIME, MESSAGES; an empty or absent one repeats
//                       the first
// Locale object file    en_us/0333dict.lco       the number in four hexadecimal digits
// Conversion file       0333e01c.cvo             source and target number
// Message directory     en_us/0333
//
// Language is 2 or 3 letters, territory 2 letters, code set a registry name or a decimal number of
// at most 21 graphic characters that does not begin with "#", modifier at most 4 letters or digits.
//
// A `dir` argument is put before a name with the byte 255 as a mark between them, which
// `gl_open_file` turns into a slash. `regfile` is the registry file to read when no registry is
// cached; null for the one that the path search finds. Failure is -1 with GLS_ERR_SPECIFIER, unless
// an operation says otherwise. A bad specifier is not logged.
//
// Sizes of `out`: gl_simple_spec_size plus the length of `dir` and its mark, or gl_composite_spec_size
// plus six times as much. What would not fit is refused with GLS_ERR_SPECIFIER.

#pragma once

#include <kestrion/category.h>

#include <stddef.h>
#include <stdint.h>

enum {
    gl_simple_spec_size = 34, // "lan_TE.", 21 characters, "@modi" and the terminator
    gl_composite_spec_size = 512,
    gl_lc_fname_size = 20, // "lan_te/e01cmodi.lco" and the terminator
    gl_cv_fname_size = 13  // "0333e01c.cvo" and the terminator
};

// Categories as `_gl_is_category` numbers them. Beware: this is not the order of gl_category.
enum gl_keyword {
    GL_KEYWORD_NONE,
    GL_KEYWORD_CTYPE,
    GL_KEYWORD_COLLATE,
    GL_KEYWORD_TIME,
    GL_KEYWORD_MONETARY,
    GL_KEYWORD_NUMERIC,
    GL_KEYWORD_MESSAGES
};

// Pieces of a simple specifier, as offsets into its text.
typedef struct gl_spec_pieces {
    int32_t language_length; // 2 or 3, at offset 0; the territory's two letters follow the "_"
    int32_t code_set;        // offset of the code set
    int32_t code_set_length; // 1 to 21
    int32_t modifier;        // offset of the modifier
    int32_t modifier_length; // 0 to 4
} gl_spec_pieces;

#ifdef __cplusplus
extern "C" {
#endif

// The gl_keyword of the category keyword at the start of `text`, with its length in *length (which
// may be null); GL_KEYWORD_NONE and 0 for any other text.
int _gl_is_category(const char *text, int32_t *length);

// Length of the simple specifier at the start of `text[0..length)`, or 0. `pieces` may be null.
int32_t _gl_is_xopen_spec(const char *text, int32_t length, gl_spec_pieces *pieces);

// Code-set number of a specifier; gl_unknown_code_set with GLS_ERR_SPECIFIER for a bad one or an
// unknown code set.
int gl_lc_spec2cs_num(void *ctx, const char *spec, const char *regfile);

// File name of a specifier; of a composite, each keyword and " = " followed by its file name.
// Example "en_US.8859-1" -> "en_us/0333.lco".
int gl_lc_spec2lc_fname(void *ctx, const char *spec, char *out, const char *regfile,
                        const char *dir);

// Directory with the messages of a specifier. Example "en_US.819" -> "en_us/0333".
int gl_lc_spec2msg_dname(void *ctx, const char *spec, char *out, const char *regfile,
                         const char *dir);

// Name of the conversion file; the source's number comes first. Returns 0.
int gl_cs_nums2cv_fname(void *ctx, int from, int to, char *out, const char *dir);

// Joins pieces to a simple specifier: up to 6 characters of `lang` or up to a point, ".", up to 5
// characters of `cs`, which starts with a hexadecimal digit, and unless `modifier` is null or
// empty, "@" and up to 4 characters of it.
int gl_lc_pieces2lc_spec(void *ctx, const char *lang, const char *cs, const char *modifier,
                         char *out);

// Splits a file name: `lang` (7 bytes) gets language and upper-case territory, `cs` (6 bytes) the
// number as decimal text, `modifier` (5 bytes) the rest up to a point. The separator may also be a
// backslash; any other gives -1 and leaves the error word alone.
// Example "en_us/0333dict.lco" -> "en_US", "819", "dict".
int gl_lc_fname2lc_pieces(void *ctx, const char *fname, char *lang, char *cs, char *modifier);

// Normal form of a specifier, simple or composite; a composite must have all six categories.
// Example "EN_us.8859-1" -> "en_US.819".
int gl_lc_spec2lc_norm(void *ctx, const char *spec, char *out, const char *regfile);

// Short form of a specifier: a simple one is its own; of a composite the six pieces, or one when
// all are equal.
int gl_lc_spec2lc_short(void *ctx, const char *spec, char *out, const char *regfile);
// Composite of a short form, its keywords in the order of the short form's pieces.
int gl_lc_short2lc_long(void *ctx, const char *short_spec, char *out, const char *regfile);

// 1 when `gl_lc_spec2lc_fname` would succeed, else 0; the error word is left alone.
int gl_is_lc_spec(void *ctx, const char *text);

// Specifier of a file name, or of a composite of file names. The code set's name is read from the
// head of each file; one that can't be opened is GLS_ERR_FILE, a bad head GLS_ERR_MALFORMED. A name
// that leads below its directory of language and territory, or out of it, is refused.
int gl_lc_fname2lc_spec(void *ctx, const char *fname, char *out, const char *regfile);

// Specifier of one gl_category of a specifier; of a simple one the whole.
int gl_lc_spec2category(void *ctx, const char *spec, int category, char *out, const char *regfile);

#ifdef __cplusplus
}
#endif
