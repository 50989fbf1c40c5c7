// The functions that the locale engine is given by a client of the runtime. The others
// forward to the C library.

#pragma once

#include <kestrion/ext_funcs.h>

#ifdef __cplusplus
extern "C" {
#endif

int32_t *cl_ext_errno(void *ctx);      // the context itself, or the address of temperr for null
char *cl_ext_getenv(const char *name); // by the registry of variables

// Splits its text at the first equal sign and sets the variable. Returns 0; -1 without an equal
// sign after at most 80 characters of name; err_env_no_memory.
int cl_ext_putenv(const char *text);

void *cl_ext_malloc(size_t size);
void *cl_ext_calloc(size_t count, size_t size);
void *cl_ext_realloc(void *block, size_t size);
void cl_ext_free(void *block);

// In mode "r" opens a regular file alone, so that a pipe in the place of an object cannot hold the
// program up.
FILE *cl_ext_fopen(const char *name, const char *mode);

int cl_ext_fclose(FILE *file);
int cl_ext_fgetc(FILE *file);
int cl_ext_getc(FILE *file);
int cl_ext_ungetc(int character, FILE *file);
char *cl_ext_fgets(char *buffer, int size, FILE *file);
size_t cl_ext_fwrite(const void *data, size_t size, size_t count, FILE *file);
int cl_ext_feof(FILE *file);
int cl_ext_ferror(FILE *file);
int cl_ext_fseek(FILE *file, long offset, int whence);
long cl_ext_ftell(FILE *file);

// The local date and time. Return 0, or -1 when the local time is not known.
int cl_ext_currdate(gl_date_rec *record);
int cl_ext_currtime(gl_time_rec *record);

#ifdef __cplusplus
}
#endif
