/* Preloaded into the command: makes one thing fail that the system would seldom let fail.
 *
 *   FAULT_MALLOC=k      the k-th allocation fails
 *   FAULT_LASTING=1     and all after it
 *   FAULT_COUNT=path    the number of allocations is written there at the end, and whether the
 *                       system may write a core file
 *   FAULT_STOP=1        stops when the installation directory is looked at, before anything is loaded
 *   FAULT_FILE=path     reads and writes of this file (its real path) are faulty:
 *   FAULT_READ=n        a read takes at most n bytes; 0: interrupted
 *   FAULT_WRITE=n       a write takes at most n bytes; 0: the second one is interrupted
 *   FAULT_ISI=name      this function of the provider fails
 */

#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <malloc.h>
#include <pwd.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);

static long allocations;
static long refused;
static int lasting;

__attribute__((constructor)) static void start(void) {
    const char *k = getenv("FAULT_MALLOC");
    refused = k == NULL ? 0 : atol(k);
    lasting = getenv("FAULT_LASTING") != NULL;
    allocations = 0;
}

__attribute__((destructor)) static void end(void) {
    const char *path = getenv("FAULT_COUNT");
    if (path == NULL)
        return;
    const int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dprintf(fd, "%ld %d", allocations, prctl(PR_GET_DUMPABLE));
    close(fd);
}

static int refuse(void) {
    ++allocations;
    if (refused == 0 || allocations < refused || (allocations > refused && !lasting))
        return 0;
    errno = ENOMEM;
    return 1;
}

void *malloc(size_t size) { return refuse() ? NULL : __libc_malloc(size); }
void *calloc(size_t count, size_t size) { return refuse() ? NULL : __libc_calloc(count, size); }

/* Always moves, and keeps the old block: what was not wiped there stays to be seen. */
void *realloc(void *block, size_t size) {
    void *moved = refuse() ? NULL : __libc_malloc(size);
    if (moved == NULL || block == NULL)
        return moved;
    const size_t old = malloc_usable_size(block);
    memcpy(moved, block, old < size ? old : size);
    return moved;
}

/* The fault set for this descriptor's file by `variable`, or -1. */
static long fault_of(int fd, const char *variable) {
    const char *file = getenv("FAULT_FILE");
    const char *number = getenv(variable);
    char link[64];
    char path[4096];
    if (file == NULL || number == NULL)
        return -1;
    snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    const ssize_t length = readlink(link, path, sizeof path - 1);
    if (length < 0)
        return -1;
    path[length] = '\0';
    return strcmp(path, file) == 0 ? atol(number) : -1;
}

/* Looking up a user, the C library (2.36) crashes of itself when it gets no memory. */
static struct passwd user = {.pw_dir = "/nowhere"};
struct passwd *getpwnam(const char *name) {
    (void)name;
    return &user;
}

struct passwd *getpwuid(uid_t uid) {
    (void)uid;
    return &user;
}

int access(const char *path, int mode) {
    if (getenv("FAULT_STOP") != NULL)
        raise(SIGSTOP);
    return faccessat(AT_FDCWD, path, mode, 0);
}

static int fail(void) { return 1; }
static void *find_nothing(void) { return NULL; }

/* The bridge asks for each function of the provider by name. */
void *dlsym(void *handle, const char *name) {
    static void *(*next)(void *, const char *);
    if (next == NULL)
        *(void **)&next = dlvsym(RTLD_NEXT, "dlsym", "GLIBC_2.34");
    const char *faulty = getenv("FAULT_ISI");
    if (faulty == NULL || strcmp(name, faulty) != 0)
        return next(handle, name);
    const int gives_pointer =
        strcmp(name, "ISI_cipher_ctx_new") == 0 || strcmp(name, "ISI_get_cipherbyname") == 0;
    return gives_pointer ? (void *)find_nothing : (void *)fail;
}

ssize_t read(int fd, void *buffer, size_t count) {
    const long limit = fault_of(fd, "FAULT_READ");
    if (limit == 0) {
        errno = EINTR;
        return -1;
    }
    return syscall(SYS_read, fd, buffer,
                   limit > 0 && (size_t)limit < count ? (size_t)limit : count);
}

ssize_t write(int fd, const void *buffer, size_t count) {
    static int writes;
    const long limit = fault_of(fd, "FAULT_WRITE");
    if (limit == 0 && ++writes == 2) {
        errno = EINTR;
        return -1;
    }
    const size_t most = limit == 0 ? 40 : limit > 0 ? (size_t)limit : count;
    return syscall(SYS_write, fd, buffer, most < count ? most : count);
}
