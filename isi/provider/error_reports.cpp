#include "isi/provider/provider.h"

#include "isi/error_stack.h"

#include <openssl/crypto.h>
#include <openssl/err.h>
#include <stdio.h>

namespace {

// Any value but 3, which would name libcrypto's codes after somebody else's.
constexpr int library_base = 1;

const char *code_message(int32_t kind, long code) {
    if (kind == ISI_ERR_CRYPTO)
        return ISI_get_crypto_error_string(code);
    return kind == ISI_ERR_SSL ? ISI_get_ssl_error_string(code) : ISI_get_km_error_string(code);
}

constinit kestrion::err_context provider = {
    .globals = nullptr,
    .code_message = code_message,
    .provider_base = ISI_lib_base,
};
constinit thread_local struct isi_shared_thread_globals *current_record = nullptr;

int push(int32_t kind, long code, const char *text) {
    if (provider.globals == nullptr || current_record == nullptr)
        return kestrion::provider_failed;
    kestrion::push_err_item(provider, current_record, kind, code, text);
    return kestrion::provider_ok;
}

const char *libcrypto_text(long code) {
    static constinit thread_local char text[256] = {};
    OPENSSL_init_crypto(OPENSSL_INIT_LOAD_CRYPTO_STRINGS, nullptr);
    ERR_error_string_n(static_cast<unsigned long>(code), text, sizeof text);
    return text;
}

} // namespace

namespace kestrion {

int report_message(const char *text) {
    push(ISI_ERR_MESSAGE, 0, text);
    return provider_failed;
}

int report_errno(int error) {
    push(ISI_ERR_ERRNO, error, nullptr);
    return provider_failed;
}

int report_libcrypto() {
    unsigned long code = ERR_get_error();
    if (code == 0)
        return report_message("refused by libcrypto");
    for (; code != 0; code = ERR_get_error())
        push(ISI_ERR_CRYPTO, static_cast<long>(code), nullptr);
    return provider_failed;
}

void set_shared_globals(struct isi_shared_globals *globals) { provider.globals = globals; }

void set_current_record(struct isi_shared_thread_globals *record) { current_record = record; }

} // namespace kestrion

int ISI_lib_base() { return library_base; }

const char *ISI_get_crypto_error_string(long code) { return libcrypto_text(code); }
const char *ISI_get_ssl_error_string(long code) { return libcrypto_text(code); }
const char *ISI_get_km_error_string(long) { return "key manager error"; }

int ISI_err_stack_push_crypto_error(long code) { return push(ISI_ERR_CRYPTO, code, nullptr); }
int ISI_err_stack_push_ssl_error(long code) { return push(ISI_ERR_SSL, code, nullptr); }
int ISI_err_stack_push_km_error(long code) { return push(ISI_ERR_KM, code, nullptr); }
