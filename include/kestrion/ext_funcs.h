// The table of external functions: all that the engine needs from its host.
//
// Allocation, files, environment, error word and clock go through 21 replaceable slots, so that the
// engine can sit under different hosts. Until a host registers something, and for every slot that
// it leaves empty, the built-in functions serve, which go to the C library. The table is filled
// once, before the engine's first use; registering again overwrites it. Nothing here locks.
//
// Contexts are opaque: the engine only knows that the first 32-bit field of one is its error word.

#pragma once

#include <kestrion/gls_errors.h>

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

// A function of any type; cast back to the slot's type before it is called.
typedef void (*gl_function)(void);

// Slots of the table. Registered by number: never renumber.
enum gl_ext_slot {
    GL_SLOT_GETENV,
    GL_SLOT_ERRNO,
    GL_SLOT_FCLOSE,
    GL_SLOT_FEOF,
    GL_SLOT_FERROR,
    GL_SLOT_FGETC,
    GL_SLOT_FGETS,
    GL_SLOT_FOPEN,
    GL_SLOT_FREE,
    GL_SLOT_FSEEK,
    GL_SLOT_FTELL,
    GL_SLOT_FWRITE,
    GL_SLOT_GETC,
    GL_SLOT_MALLOC,
    GL_SLOT_UNGETC,
    GL_SLOT_PUTENV,
    GL_SLOT_CURRDATE,
    GL_SLOT_CURRTIME,
    GL_SLOT_CALLOC,
    GL_SLOT_REALLOC,
    GL_SLOT_UCA, // the one slot without a built-in function
    GL_SLOTS
};

// Record that the currdate slot fills.
typedef struct gl_date_rec {
    uint16_t month; // 1 to 12
    uint16_t day;   // 1 to 31
    uint16_t year;  // four digits
} gl_date_rec;

// Record that the currtime slot fills: a broken-down local time between zeroed ends.
typedef struct gl_time_rec {
    int64_t head;        // 0
    int32_t second;      // 0 to 60
    int32_t minute;      // 0 to 59
    int32_t hour;        // 0 to 23
    int32_t day;         // 1 to 31
    int32_t month;       // 0 to 11
    int32_t year;        // years since 1900
    int32_t weekday;     // 0 to 6, from Sunday
    int32_t day_of_year; // 0 to 365
    int32_t daylight;    // above 0 in summer time
    int64_t utc_offset;  // 0
    const char *zone;    // null
} gl_time_rec;

// Types of the functions in the slots.
typedef char *gl_getenv_fn(const char *name);
typedef int32_t *gl_errno_fn(void *ctx);
typedef int gl_fclose_fn(FILE *file);
typedef int gl_feof_fn(FILE *file);
typedef int gl_ferror_fn(FILE *file);
typedef int gl_fgetc_fn(FILE *file);
typedef char *gl_fgets_fn(char *buffer, int size, FILE *file);
typedef FILE *gl_fopen_fn(const char *name, const char *mode);
typedef void gl_free_fn(void *block);
typedef int gl_fseek_fn(FILE *file, long offset, int whence);
typedef long gl_ftell_fn(FILE *file);
typedef size_t gl_fwrite_fn(const void *data, size_t size, size_t count, FILE *file);
typedef int gl_getc_fn(FILE *file);
typedef void *gl_malloc_fn(size_t size);
typedef int gl_ungetc_fn(int character, FILE *file);
typedef int gl_putenv_fn(const char *text);
typedef int gl_currdate_fn(gl_date_rec *record);
typedef int gl_currtime_fn(gl_time_rec *record);
typedef void *gl_calloc_fn(size_t count, size_t size);
typedef void *gl_realloc_fn(void *block, size_t size);
typedef int gl_uca_fn(void);

// The four functions that a path search needs. A search takes one of the two tables below, so that
// it can also run before the engine is set up.
typedef struct gl_file_functions {
    gl_malloc_fn *allocate;
    gl_free_fn *release;
    gl_fopen_fn *open;
    gl_fclose_fn *close;
} gl_file_functions;

#ifdef __cplusplus
extern "C" {
#endif

extern gl_function funcptr_arr[GL_SLOTS]; // the table
extern int32_t _gl_ext_func;              // 0 until the first registration
extern int32_t temperr;                   // the error word of a null context

extern const gl_file_functions gl_ext_functions; // the engine's own, by the table
extern const gl_file_functions gl_reg_functions; // the built-in ones

// Fills a slot and switches the table on. Returns 0, or -1 with GLS_ERR_ARGUMENT for a slot above
// 20; the table then stays as it was.
int gl_setextfunc(void *ctx, uint32_t slot, gl_function function);

// Raw access to the table, with no effect on the switch. A slot above 20 reads as null and is not
// written.
gl_function _gl_get_ext_funcptr(uint32_t slot);
void _gl_set_ext_funcptr(uint32_t slot, gl_function function);
// Switches the table off; the slots stay filled.
void _gl_reset_ext_func(void);

// Each of these calls its slot when the table is on and the slot is filled, else the built-in
// function. `_gl_ext_errno` gives the address of the context's error word and never null.
int32_t *_gl_ext_errno(void *ctx);
char *_gl_ext_getenv(const char *name);
int _gl_ext_putenv(const char *text);
void *_gl_ext_malloc(size_t size);
void *_gl_ext_calloc(size_t count, size_t size);
void *_gl_ext_realloc(void *block, size_t size);
void _gl_ext_free(void *block);
FILE *_gl_ext_fopen(const char *name, const char *mode);
int _gl_ext_fclose(FILE *file);
int _gl_ext_fgetc(FILE *file);
int _gl_ext_getc(FILE *file);
int _gl_ext_ungetc(int character, FILE *file);
char *_gl_ext_fgets(char *buffer, int size, FILE *file);
size_t _gl_ext_fwrite(const void *data, size_t size, size_t count, FILE *file);
int _gl_ext_feof(FILE *file);
int _gl_ext_ferror(FILE *file);
int _gl_ext_fseek(FILE *file, long offset, int whence);
long _gl_ext_ftell(FILE *file);
int _gl_ext_currdate(gl_date_rec *record);
int _gl_ext_currtime(gl_time_rec *record);
// Calls GL_SLOT_UCA; -1 when no host has filled it.
int _gl_ext_UCA(void);

// The allocators with a leading context, which they ignore.
void *_gl_ext1_malloc(void *ctx, size_t size);
void *_gl_ext1_calloc(void *ctx, size_t count, size_t size);
void *_gl_ext1_realloc(void *ctx, void *block, size_t size);
void _gl_ext1_free(void *ctx, void *block);

// Allocates by the table; null for size 0.
void *_gl_alloc_ptr(size_t size);
// Frees by the table; null is ignored. `gl_destroystring` is the same for texts that the engine
// handed out.
void _gl_free_ptr(void *block);
void gl_destroystring(void *text);

// `_gl_ext_getenv` with an empty value turned into null.
char *_gl_get_env_var(const char *name);

// Built-in functions of the slots: the C library, and what it lacks.
char *gl_ext_getenv(const char *name); // null for every name with raised privileges
int32_t *gl_ext_errno(void *ctx);      // the context itself, or `temperr` for null
int gl_ext_fclose(FILE *file);
int gl_ext_feof(FILE *file);
int gl_ext_ferror(FILE *file);
int gl_ext_fgetc(FILE *file);
char *gl_ext_fgets(char *buffer, int size, FILE *file);
FILE *gl_ext_fopen(const char *name, const char *mode); // with "r" regular files alone
void gl_ext_free(void *block);
int gl_ext_fseek(FILE *file, long offset, int whence);
long gl_ext_ftell(FILE *file);
size_t gl_ext_fwrite(const void *data, size_t size, size_t count, FILE *file);
int gl_ext_getc(FILE *file);
void *gl_ext_malloc(size_t size);
int gl_ext_ungetc(int character, FILE *file);
int gl_ext_putenv(const char *text);      // keeps a copy, which stays allocated
int gl_ext_currdate(gl_date_rec *record); // 0, or -1 when the local time can't be had
int gl_ext_currtime(gl_time_rec *record);
void *gl_ext_calloc(size_t count, size_t size);
void *gl_ext_realloc(void *block, size_t size);

#ifdef __cplusplus
}
#endif
