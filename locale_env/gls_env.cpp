#include "locale_env/gls_env.h"

#include "locale_env/startup.h"

namespace {

constinit char lconv_block[gls_lconv_size] = {};
constinit char net_lconv_block[gls_lconv_size] = {};

} // namespace

extern "C" {

constinit new_gls_env_rec new_gls_env = {
    .mode = 1, .lconv = lconv_block, .net_lconv = net_lconv_block};
constinit GlsEnv gls_env = {.is_default = 1, .state = &new_gls_env};
constinit GlsEnv *gls_env_global = nullptr;
constinit int32_t glsenv_count = 0;
constinit int32_t _8bitfsys = 1;

GlsEnv *CheckGlsEnv(void) {
    if (gls_env_global == nullptr) {
        gls_env_global = &gls_env;
        if (glsenv_count == 0)
            glsenv_count = 1;
    }
    return gls_env_global;
}

int chkglsinit(void) { return 0; }
}
