// Name caches: small tries of lower-cased names, each with a value.
//
// A cache is built name by name and then asked which name a text begins with, in any case. The
// multibyte form has one node for each byte of a name, the wide form one for each character. A null
// pointer is an empty cache. Case folds by the locale's map, or by its case pairs where it has
// none.

#pragma once

#include <kestrion/char_desc.h>

#include <stdint.h>

typedef struct locale_rec locale_rec; // <kestrion/locale_rec.h>

typedef struct gl_mb_name_node gl_mb_name_node;
struct gl_mb_name_node {
    unsigned char byte;           // 0: the empty name
    int32_t value;                // of the name that ends here
    int32_t end;                  // 1 when a name ends here
    gl_mb_name_node *next_level;  // nodes of the byte after this one
    gl_mb_name_node *alternative; // other bytes in this place
};

typedef struct gl_wc_name_node gl_wc_name_node;
struct gl_wc_name_node {
    gl_wchar character;           // 0: the empty name
    int32_t value;                // of the name that ends here
    int32_t end;                  // 1 when a name ends here
    gl_wc_name_node *next_level;  // nodes of the character after this one
    gl_wc_name_node *alternative; // other characters in this place
};

#ifdef __cplusplus
extern "C" {
#endif

// Adds a terminated name. A name that is there keeps its first value. Returns 0, or -1 with
// GLS_ERR_NO_MEMORY or GLS_ERR_BAD_CHARACTER (not a text of the locale); the cache then answers as
// before.
int _gl_cache_mb_string(locale_rec *lc, gl_mb_name_node **cache, const char *name, int32_t value);
int _gl_cache_wc_string(locale_rec *lc, gl_wc_name_node **cache, const gl_wchar *name,
                        int32_t value);

// Value of the longest name at the start of text[0..length), with what it took of the text in
// *used: bytes, or elements in the wide form. -1 for `length` means that the text is terminated.
// When no name matches, the empty name's value, or -1 without an empty name, with 0 used.
int32_t _gl_validate_mb_string(locale_rec *lc, const gl_mb_name_node *cache, const char *text,
                               int32_t length, int32_t *used);
int32_t _gl_validate_wc_string(locale_rec *lc, const gl_wc_name_node *cache, const gl_wchar *text,
                               int32_t length, int32_t *used);

// Releases a cache; null is ignored.
void _gl_free_mb_cache(gl_mb_name_node *cache);
void _gl_free_wc_cache(gl_wc_name_node *cache);

#ifdef __cplusplus
}
#endif
