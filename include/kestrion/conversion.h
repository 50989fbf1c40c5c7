// Code-set conversion: the record of a loaded conversion object, opening, converting, measuring.
//
// A conversion turns text of one code set into another, one character at a time, by lookup in a
// multi table. Its object file is docs/formats/conversion-object.md. In every open operation the
// target comes first.
//
// Failure is -1 and the record's error word (the first field, which is where `_gl_ext_errno` leads
// when the record is the context):
//     GLS_ERR_BAD_CHARACTER  no such character, or no mapping
//     GLS_ERR_NO_MEMORY      an allocation failed
//     GLS_ERR_SPECIFIER      a character that the length cuts off, or an unknown code set
//     GLS_ERR_FILE           a file that can't be used
//     GLS_ERR_NO_ROOM        the target is full
//
// A record is read-only but for its error word, which an operation that fails writes: threads may
// share one where none depends on that word. The state of a stateful conversion is the caller's.

#pragma once

#include <stddef.h>
#include <stdint.h>

typedef struct multi_arr multi_arr;
typedef struct cv_rec cv_rec;

enum {
    cv_sequence_size = 4 // bytes of the longest shift sequence
};

// Bits of the control byte at the start of each datum.
enum {
    CV_LENGTH = 7,      // number of target bytes
    CV_TERMINATOR = 8,  // this source character ends a string
    CV_MAPPED = 16,     // set in every mapping, so that it is 8 or more
    CV_INEXACT = 32,    // sets the caller's lossy flag
    CV_SHIFTED = 64,    // the target character belongs to the shifted state
    CV_SWITCH = 128,    // switches the source state, and so the table
    CV_FIRST_MAPPED = 8 // control bytes below it have no mapping
};

// State of a stateful conversion, kept by the caller over a run of calls.
typedef struct cv_state {
    int32_t reset;          // not 0: start from the normal state on both sides
    int32_t flush;          // not 0: close with a shift sequence at the end of the input
    int32_t source_shifted; // not 0: the source is in the shifted state
    int32_t target_shifted; // not 0: the target is
} cv_state;

// One of the routines; arguments as gl_miconv.
typedef int32_t (*cv_routine)(cv_rec *cv, const char **source, int32_t *source_length,
                              char **target, int32_t *room, int32_t *lossy);

struct cv_rec {
    int32_t cv_err;          // error word; must stay the first field
    unsigned char *sb_table; // 256 bytes of a stateless single-byte pair, else null
    int32_t source_stateful; // not 0: shift states and a second table
    int32_t target_stateful; // not 0: shift states
    // Lengths of the four sequences below, 0 to 4.
    int32_t shift_in_len;
    int32_t shift_out_len;
    int32_t source_shift_in_len;
    int32_t source_shift_out_len;
    int32_t target_min_len;                    // bytes of the shortest target character
    int32_t target_max_len;                    // bytes of the longest, 1 to 4
    int32_t unused1;                           // kept as read
    int32_t unused2;                           // kept as read
    int32_t source_min_len;                    // bytes of the shortest source character
    int32_t source_max_len;                    // bytes of the longest
    int32_t no_sb_table;                       // not 0: sb_table is not built
    float expansion;                           // greatest output bytes per input byte
    unsigned char shift_in[cv_sequence_size];  // into the shifted target state
    unsigned char shift_out[cv_sequence_size]; // and back
    // Stored, not used: the source's state changes by entries of its tables.
    unsigned char source_shift_in[cv_sequence_size];
    unsigned char source_shift_out[cv_sequence_size];
    multi_arr *table_normal;  // conversions in the normal state
    multi_arr *table_shifted; // in the shifted source state; null unless source_stateful
    int32_t reserved;         // 0
    cv_routine convert;       // chosen at load; not used when source_stateful
    void *plugin_handle;      // the Unicode plug-in's
    int32_t plugin_flag;      // 1: the plug-in serves this record
    void *fast;               // derived tables made at load, or null; owned
};

#ifdef __cplusplus
extern "C" {
#endif

// Stand-ins that an open operation hands out when it has no record; unloading them does nothing.
extern cv_rec cd_enomem;  // GLS_ERR_NO_MEMORY
extern cv_rec cd_fileerr; // GLS_ERR_FILE
extern cv_rec cd_einval;  // GLS_ERR_SPECIFIER

// Loads the conversion to the code set of `to` from that of `from`, which are locale specifiers.
// regfile code-set registry to use in place of the search, or null.
// dir     directory of the object file, or null for the search.
// Returns 1 loaded; 0 the code sets are one, *out is null; -1 with a stand-in or a failed record in
//         *out, whose error word says why and which gl_cv_unload takes.
int32_t gl_cv_load(cv_rec **out, const char *to, const char *from, const char *regfile,
                   const char *dir);

// The same by the names of the code sets in the specifiers ("from_to.cvo").
int32_t gl_cv_open(cv_rec **out, const char *to, const char *from);

// Opens by code-set names, or by file name. Returns 0, or -1 with *out as above.
int32_t gl_iconv_open(cv_rec **out, const char *to, const char *from);
int32_t gl_iconv_open1(cv_rec **out, const char *file_name);

// Releases a record; its sb_table stays allocated, since callers keep pointers to it. Returns 0; -1
// for null.
int32_t gl_cv_unload(cv_rec *cv);

// Converts. All pointers and counts move forward by whole characters, on failure too.
// state          null: start and end in the normal state.
// source_length  null: the source is a terminated text, converted with its terminator, which is as
//                many zero bytes as the source's shortest character has; else the bytes left.
// target         null, or pointing at null: nothing is stored, the room shrinks all the same. It
//                may be the source itself only for a pair that writes no more than it has read.
// lossy          set to 1 when a mapping was inexact, else 0.
// Returns 0 or -1. A stand-in or a failed record converts nothing: -1 with its word as it is.
int32_t gl_cv_mconv(cv_rec *cv, cv_state *state, const char **source, int32_t *source_length,
                    char **target, int32_t *room, int32_t *lossy);
int32_t gl_miconv(cv_rec *cv, const char **source, int32_t *source_length, char **target,
                  int32_t *room, int32_t *lossy);
// Measures: gl_cv_mconv with no target.
int32_t gl_mconvlen(cv_rec *cv, cv_state *state, const char **source, int32_t *source_length,
                    int32_t *room, int32_t *lossy);

// Greatest output bytes per input byte; `plugin_argument` is not looked at without a plug-in.
double gl_iconv_expansion(const cv_rec *cv, int32_t plugin_argument);

// Bytes that always hold the conversion of `length` bytes: the expansion, rounded up to a whole
// number, times the length; saturated at the largest int32_t.
int32_t gl_cv_outbuflen(const cv_rec *cv, int32_t length);

// The byte-to-byte table, or null when the pair has none.
const unsigned char *qvt_gl_cv_sb2sb_table(const cv_rec *cv);

#ifdef __cplusplus
}
#endif
