// Brings the environment and what the runtime keeps for the process back to the start before each test,
// so that a test program can also run whole. It is enough to link this file.

#include "base/resets.h"
#include "env/resets.h"
#include <kestrion/character_tables.h>
#include <kestrion/code_set_registry.h>
#include <kestrion/conventions.h>
#include <kestrion/env_registry.h>
#include <kestrion/environments.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/gentcb.h>
#include <kestrion/gls_errors.h>
#include <kestrion/gls_log.h>
#include <kestrion/isi_api.h>
#include <kestrion/language_slots.h>
#include <kestrion/message_slots.h>
#include <kestrion/messages.h>
#include <kestrion/os_control.h>
#include <kestrion/value_heap.h>

#include <gtest/gtest.h>
#include <locale.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <vector>

namespace {

// The variables that the program was started with. putenv() keeps them, so they are never freed.
auto &environment = *new std::vector<char *>;

class process_start : public testing::EmptyTestEventListener {
public:
    process_start() {
        for (char **variable = environ; *variable != nullptr; ++variable)
            environment.push_back(strdup(*variable));
        for (const message_slot *row = msginit; row->slot != nullptr; ++row)
            texts_.push_back(*row->slot);
        memcpy(ctype_, _ixctype, sizeof ctype_);
        memcpy(lower_, _ix2lowmap, sizeof lower_);
        memcpy(upper_, _ix2upmap, sizeof upper_);
    }

    void OnTestStart(const testing::TestInfo &) override {
        clearenv();
        for (char *variable : environment)
            putenv(variable);
        setlocale(LC_ALL, "C");
        reset_bridge();
        reset_messages();
        reset_locale();
        reset_engine();
        reset_registry();
        reset_base();
    }

private:
    static void reset_bridge() {
        isi_cleanup();
        isi_clear_err();
        isi_set_trace_file(nullptr);
        isi_set_err_file(nullptr);
        isi_shared_globals = {.allocate = malloc, .release = free};
    }

    void reset_messages() const {
        if (gen_resetMessageFindFile("c") != 0)
            abort();
        for (size_t i = 0; i < texts_.size(); ++i)
            *msginit[i].slot = texts_[i];
    }

    void reset_locale() const {
        FreeAllGlsEnv();
        for (char *&setting : new_gls_env.settings)
            free(setting);
        new_gls_env = state_;
        gls_env = environment_record_;
        gls_env_global = nullptr;
        glsenv_count = 0;
        _8bitfsys = 1;
        _gnorminit = 0;
    }

    static void reset_engine() {
        gl_free_registry_cache();
        for (uint32_t slot = 0; slot < GL_SLOTS; ++slot)
            _gl_set_ext_funcptr(slot, nullptr);
        _gl_reset_ext_func();
        temperr = GLS_OK;
        gls_debug_initialized = gls_logging = gls_popups = 0;
    }

    static void reset_registry() {
        gFreeEVars();
        gsetudenv(nullptr);
        gerrno = 0;
        Kes_DBVars = {};
        kestrion::reset_process_characters();
    }

    void reset_base() const {
        memcpy(_ixctype, ctype_, sizeof ctype_);
        memcpy(_ix2lowmap, lower_, sizeof lower_);
        memcpy(_ix2upmap, upper_, sizeof upper_);
        free(ostcb);
        ostcb = nullptr;
        kestrion::reset_gentcb();
        ansidb = 0;
        currheap = nullptr;
    }

    std::vector<const char *> texts_; // of the runtime's own message slots
    const new_gls_env_rec state_ = new_gls_env;
    const GlsEnv environment_record_ = gls_env;
    unsigned char ctype_[sizeof _ixctype];
    unsigned char lower_[sizeof _ix2lowmap];
    unsigned char upper_[sizeof _ix2upmap];
};

[[maybe_unused]] const bool starts_are_fresh =
    (testing::UnitTest::GetInstance()->listeners().Append(new process_start), true);

} // namespace
