// Comparing texts in the order of a locale.
//
// A locale weighs each character at several levels: letters first, then accents, then case, then
// what is left. Two texts are compared level by level; a level only counts when all levels before
// it are equal. At each level a character has one weight, or none ("-" in "co-op"), or those of
// several characters (an expansion: sharp s sorts as "ss"), and several characters may share one
// (a contraction: "ch" in Czech).
//
//     level 1   resume = résumé = Resume < resumes
//     level 2   resume = Resume < résumé
//     level 3   resume < Resume
//
// A locale record carries the comparers that suit its code set and its data; call those:
//
//     lc->mbscoll_fn(lc, "Ofen", "Strasse")           -1
//     lc->mbfscoll_fn(lc, "Ofen", 4, "Oel, kalt", 3)  1
//
// The operations below are what they are chosen from, and the comparison of wide texts.
//
// All comparers give -1, 0 or 1; where a locale orders texts by their codes, the sign alone counts.
// Lengths are in bytes for multibyte and in elements for wide texts, -1 for terminated texts. A
// failure gives 0 as well, so clear the error word before and look at it after:
//
//     1   a text is not valid in the code set (multibyte code sets only)
//     2   the locale or a text is null
//     3   no memory; texts of up to 127 characters need none
//     56  one length is -1 and the other is not

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// ---- Any code set

// Compare wide texts.
int32_t gl_full_wcscoll(locale_rec *lc, const gl_wchar *a, const gl_wchar *b);
int32_t _qvt_gl_full_wcscoll(locale_rec *lc, const gl_wchar *a, int32_t a_length, const gl_wchar *b,
                             int32_t b_length);

// Compare multibyte texts as if they were made wide: directions, expansions and contractions in any
// mix. A locale that orders by codes compares the wide characters.
int32_t _gl_im_mbscoll(locale_rec *lc, const char *a, const char *b);
int32_t _qvt_gl_im_mbfscoll(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                            int32_t b_length);

// ---- Single-byte code sets, each for the features that a locale has. A byte that is not a
// character weighs what the table's default weighs.

// Expansions, all levels forward.
int32_t _gl_is_mbscoll_exp(locale_rec *lc, const char *a, const char *b);
int32_t _qvt_gl_is_mbfscoll_exp(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                                int32_t b_length);

// Contractions, all levels forward.
int32_t _gl_is_mbscoll_elem(locale_rec *lc, const char *a, const char *b);
int32_t _qvt_gl_is_mbfscoll_elem(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                                 int32_t b_length);

// Both, all levels forward. A level at which both texts end together is then decided by the weights
// of their last characters, ignored ones included: "a." and "a" differ where "." is ignored. Keys
// know nothing of this.
int32_t _gl_is_mbscoll_exp_elem(locale_rec *lc, const char *a, const char *b);
int32_t _qvt_gl_is_mbfscoll_exp_elem(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                                     int32_t b_length);

// Neither, in any direction. A weight that asks for the characters on a tie compares those two at a
// level that runs backward, but the bytes after them at one that runs forward.
int32_t _gl_is_mbscoll_back(locale_rec *lc, const char *a, const char *b);
int32_t _qvt_gl_is_mbfscoll_back(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                                 int32_t b_length);

// ---- Some of the levels

// Compares at the first `levels` levels only: at 1 "Résumé" equals "resume", at 2 it equals
// "résumé". Takes any code set; lengths as above. A locale without levels (order by codes, Thai)
// compares as always.
int32_t qvt_gl_compare_levels(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                              int32_t b_length, int32_t levels);

// Finds the shortest leading part of a text that equals `start` at the first `levels` levels. It
// never ends inside a contraction: in Czech "chata" does not begin with "c".
// Returns its bytes, or -1 when there is none, and on failure.
// Example "Résumés" begins with "resume" at level 1 -> 8 bytes in UTF-8; at level 2 -> -1.
int32_t qvt_gl_begins_with(locale_rec *lc, const char *text, int32_t length, const char *start,
                           int32_t start_length, int32_t levels);

// ---- The Unicode plug-in's comparers: it is not there, so all texts are equal.
int32_t _glu_mbscoll(locale_rec *lc, const char *a, const char *b);
int32_t _glu_mbfscoll(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                      int32_t b_length);

#ifdef __cplusplus
}
#endif
