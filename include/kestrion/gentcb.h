// The general control block: the runtime's process-wide state outside the locale.
//
// One record, made at first use by CheckGenInit() and kept until the process ends. It holds the
// error words of the general, the locale and the value layer, which are three separate fields, and
// the state of the message catalogues. One thread at a time; nothing here locks.

#pragma once

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

typedef struct value_heap value_heap; // <kestrion/value_heap.h>

// Bits of `gen_flags`.
enum gen_flag {
    GEN_DBVER_SET = 16,        // the version of the database is known
    GEN_PREC16_KNOWN = 32,     // QVT_USE_PREC_16 was asked for
    GEN_PREC16 = 64,           // it is in force
    GEN_DTENV_KNOWN = 128,     // USE_DTENV was asked for
    GEN_DTENV = 256,           // it is in force
    GEN_DBTODAY_BUSY = 512,    // DBTODAY is being looked at; none of the three: not asked for yet
    GEN_DBTODAY_OFFSET = 1024, // dbtoday_offset moves the clock
    GEN_DBTODAY_NONE = 2048,   // nothing does
    GEN_PRESENT_SET = 4096,    // the program set the present
};

enum {
    gen_leaf_size = 64,   // leaf name of a catalogue, terminator included
    gen_path_size = 256,  // path of a catalogue, terminator included
    gen_window_bytes = 80 // eight index records of the longer kind
};

// An open catalogue file. Reading it is the business of messages/message_file.h.
typedef struct gen_catalogue {
    int32_t fd;                             // descriptor, -1 for none or when `image` is enough
    int32_t count;                          // records in the index, 0 to 32767
    int32_t record_size;                    // 8 or 10 bytes
    int32_t window_first;                   // position in the index of the window's first record
    int32_t window_count;                   // records in the window, 0 to 8
    int32_t fresh;                          // 1 in the lookup that opened the file
    int64_t file_size;                      // bytes of the file when it was opened
    unsigned char *image;                   // the whole file when it is small, else null; owned
    unsigned char window[gen_window_bytes]; // records read last, when there is no image
    char leaf[gen_leaf_size];               // leaf name the file was opened for; empty: not in use
} gen_catalogue;

typedef struct gentcb {
    uint32_t gen_flags;               // gen_flag bits
    int32_t gen_err;                  // error word of the general layer
    int32_t gls_err;                  // error word of the locale environment
    int32_t conv_err;                 // conversion error of the value layer
    int32_t float_type;               // stored form of floats in the database
    int32_t msg_depth;                // above 0 while a stand-in text is being looked up
    gen_catalogue catalogues[2];      // 0 is in use; 1 never opens a file
    char *scratch;                    // texts on their way to the string heap; owned
    int32_t scratch_size;             // bytes of it
    char *message_file;               // explicit file for all messages, null for none; owned
    char *install_dir;                // installation directory, null until first use; owned
    value_heap *string_heap;          // loaded messages, null until first use
    char path[gen_path_size];         // path built last
    char *digit_text;                 // digits of the decimal printed last, null at first; owned
    int32_t digit_capacity;           // bytes of it
    int32_t thread_date;              // day on which the thread began its work
    int16_t dbtoday_qualifier;        // of the offset
    unsigned char dbtoday_offset[22]; // a decimal: DBTODAY less the clock
    unsigned char set_present[22];    // a decimal: what the program set as the present
    unsigned char reserved[498];      // fields to come
} gentcb;
static_assert(sizeof(gentcb) == 1248, "stated size");

#ifdef __cplusplus
extern "C" {
#endif

// 1 in an ANSI database, where a text that is cut on storing is an error. Set by gen_setansidb.
extern int32_t ansidb;

// Makes the block if there is none. Returns it, or null when there is no memory.
gentcb *gentcb_alloc(void);

// Clears a block; no catalogue is open in it.
void genfill(gentcb *block);

// Returns the block, making it at first use with `gen_err` 0; null when there is no memory.
gentcb *CheckGenInit(void);

// The error word, or err_no_block without a block.
int32_t getgenerr(void);

// Whether the version of the database is known: gset_dbver sets it, gget_dbver returns 1 or 0.
void gset_dbver(void);
int32_t gget_dbver(void);

void qvtGEN_setFloatType(int32_t type);
// -1 without a block; this call does not make one.
int32_t qvtGEN_getFloatType(void);

void gen_setansidb(int32_t on);

// The error word of the locale environment. Both yield err_no_block without a block;
// otherwise set_glserror returns `code`.
int32_t get_glserror(void);
int32_t set_glserror(int32_t code);

// The conversion error of the value layer. Both yield err_no_block without a block; otherwise
// set_toerrno returns `code`.
int32_t get_toerrno(void);
int32_t set_toerrno(int32_t code);

#ifdef __cplusplus
}
#endif
