#include "isi/provider/provider.h"

#include <link.h>
#include <openssl/crypto.h>
#include <stdint.h>

namespace {

constexpr int version_major = 1;
constexpr int version_minor = 2;
constexpr const char *version_string = "1.2, stand-in on libcrypto";

bool lies_in(const dl_phdr_info *object, uintptr_t address) {
    for (int i = 0; i < object->dlpi_phnum; ++i) {
        const ElfW(Phdr) &part = object->dlpi_phdr[i];
        if (part.p_type == PT_LOAD && address - (object->dlpi_addr + part.p_vaddr) < part.p_memsz)
            return true;
    }
    return false;
}

enum first_seen { NEITHER, PROVIDER, LIBCRYPTO };

// Objects come in the order in which they were loaded; the walk stops at the first of the two.
int note_first(dl_phdr_info *object, size_t, void *answer) {
    auto seen = static_cast<first_seen *>(answer);
    if (lies_in(object, reinterpret_cast<uintptr_t>(&OPENSSL_init_crypto)))
        *seen = LIBCRYPTO;
    else if (lies_in(object, reinterpret_cast<uintptr_t>(&note_first)))
        *seen = PROVIDER;
    return *seen != NEITHER;
}

// libcrypto's start reads its configuration, which takes longer than sealing a file and changes
// nothing for the one cipher used here. It is left out where this library brought libcrypto in; a
// program that had it before may count on the configuration, and keeps it.
void start_libcrypto() {
    first_seen seen = NEITHER;
    dl_iterate_phdr(note_first, &seen);
    if (seen == PROVIDER)
        OPENSSL_init_crypto(OPENSSL_INIT_NO_LOAD_CONFIG | OPENSSL_INIT_NO_ATEXIT, nullptr);
}

} // namespace

int ISI_init_int(struct isi_shared_globals *globals, struct isi_shared_thread_globals *record) {
    if (globals == nullptr || record == nullptr)
        return kestrion::provider_failed;
    kestrion::set_shared_globals(globals);
    kestrion::set_current_record(record);
    start_libcrypto();
    return kestrion::provider_ok;
}

void ISI_cleanup_int() {
    kestrion::set_current_record(nullptr);
    kestrion::set_shared_globals(nullptr);
}

void ISI_set_shared_thread_globals_ptr(struct isi_shared_thread_globals *record) {
    kestrion::set_current_record(record);
}

int ISI_lib_version_major() { return version_major; }
int ISI_lib_version_minor() { return version_minor; }
const char *ISI_lib_version_string() { return version_string; }
const char *ISI_crypto_version() { return OpenSSL_version(OPENSSL_VERSION); }
