#include "isi/provider/provider.h"

#include <errno.h>
#include <sys/random.h>

namespace {

// From the kernel's generator itself: libcrypto's own, seeded from it, takes longer to set up than
// the few bytes of a run are worth.
int fill(unsigned char *buffer, int count) {
    if (buffer == nullptr || count < 0)
        return kestrion::report_message("no buffer for random bytes");
    while (count > 0) {
        const ssize_t got = getrandom(buffer, static_cast<size_t>(count), 0);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return kestrion::report_errno(errno);
        buffer += got;
        count -= static_cast<int>(got);
    }
    return kestrion::provider_ok;
}

} // namespace

int ISI_rand_bytes(unsigned char *buf, int num) { return fill(buf, num); }

int ISI_generate_random_seed(int seedLength, unsigned char *seed) { return fill(seed, seedLength); }

// The kernel's generator is seeded before it answers at all, and a seed can't make it better.
int ISI_rand_seed(const unsigned char *buf, int num) {
    if (buf == nullptr || num < 0)
        return kestrion::report_message("no seed for the random generator");
    return kestrion::provider_ok;
}
