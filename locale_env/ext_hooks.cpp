#include <kestrion/ext_hooks.h>

#include <kestrion/env_registry.h>

#include <stdlib.h>
#include <string.h>

namespace {

constexpr size_t name_limit = 80;

} // namespace

int32_t *cl_ext_errno(void *ctx) { return ctx != nullptr ? static_cast<int32_t *>(ctx) : &temperr; }

char *cl_ext_getenv(const char *name) { return ggetenv(name); }

int cl_ext_putenv(const char *text) {
    char name[name_limit + 1];
    const size_t length = strcspn(text, "=");
    if (length > name_limit || text[length] == '\0')
        return -1;
    memcpy(name, text, length);
    name[length] = '\0';
    return gfeputenv(name, text + length + 1);
}

void *cl_ext_malloc(size_t size) { return malloc(size); }
void *cl_ext_calloc(size_t count, size_t size) { return calloc(count, size); }
void *cl_ext_realloc(void *block, size_t size) { return realloc(block, size); }
void cl_ext_free(void *block) { free(block); }

FILE *cl_ext_fopen(const char *name, const char *mode) { return gl_ext_fopen(name, mode); }

int cl_ext_fclose(FILE *file) { return fclose(file); }
// One thread reads an object file: its lock would take half of the loading time.
int cl_ext_fgetc(FILE *file) { return getc_unlocked(file); }
int cl_ext_getc(FILE *file) { return getc_unlocked(file); }
int cl_ext_ungetc(int character, FILE *file) { return ungetc(character, file); }
char *cl_ext_fgets(char *buffer, int size, FILE *file) { return fgets(buffer, size, file); }
size_t cl_ext_fwrite(const void *data, size_t size, size_t count, FILE *file) {
    return fwrite(data, size, count, file);
}
int cl_ext_feof(FILE *file) { return feof(file); }
int cl_ext_ferror(FILE *file) { return ferror(file); }
int cl_ext_fseek(FILE *file, long offset, int whence) { return fseek(file, offset, whence); }
long cl_ext_ftell(FILE *file) { return ftell(file); }

// The engine's own clock is the local time too; the two have one source.
int cl_ext_currdate(gl_date_rec *record) { return gl_ext_currdate(record); }
int cl_ext_currtime(gl_time_rec *record) { return gl_ext_currtime(record); }
