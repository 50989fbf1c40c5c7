#include "passwords/leftovers.h"

#include <string.h>
#if defined(__x86_64__)
#if defined(__clang__)
#define _Bool bool // the header speaks C; g++ understands
#endif
#include <sys/platform/x86.h>
#endif

namespace {

// The provider and the C library reach down some 5 KB; the smallest stack of a thread, which could
// run them, has room for this.
constexpr size_t reach = 8 * 1024;

#define XMM_REGISTERS                                                                              \
    "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7", "xmm8", "xmm9", "xmm10",       \
        "xmm11", "xmm12", "xmm13", "xmm14", "xmm15"

// Copying and comparing leave the last bytes there, and the C library still saves them on the stack
// where it binds functions of its own during the exit. Registers above 15 are the C library's
// alone: no compiler uses them for the instructions that this is built with.
[[gnu::noinline]] void wipe_vector_registers() {
#if defined(__x86_64__)
    if (CPU_FEATURE_ACTIVE(AVX512F))
        asm volatile(".irp n,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30,31\n\t"
                     "vpxorq %%zmm\\n, %%zmm\\n, %%zmm\\n\n\t"
                     ".endr" ::
                         : "memory");
    if (CPU_FEATURE_ACTIVE(AVX))
        asm volatile("vzeroall" ::: XMM_REGISTERS);
    else
        asm volatile(".irp n,0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15\n\t"
                     "pxor %%xmm\\n, %%xmm\\n\n\t"
                     ".endr" ::
                         : XMM_REGISTERS);
#endif
}

// Also where a call saved the registers before.
[[gnu::noinline]] void wipe_dead_stack() {
    char dead[reach];
    explicit_bzero(dead, sizeof dead);
}

} // namespace

namespace kestrion {

void wipe_leftovers() {
    wipe_vector_registers();
    wipe_dead_stack();
}

} // namespace kestrion
