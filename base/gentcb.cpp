#include <kestrion/gentcb.h>

#include "base/resets.h"
#include <kestrion/error_numbers.h>
#include <kestrion/value_heap.h>

#include <stdlib.h>

namespace {

constinit gentcb *the_block = nullptr;

// The one way in which the words of the block are read and written.
int32_t word_of_block(int32_t gentcb::*word) {
    const gentcb *block = CheckGenInit();
    return block == nullptr ? err_no_block : block->*word;
}

int32_t set_word_of_block(int32_t gentcb::*word, int32_t value) {
    gentcb *block = CheckGenInit();
    if (block == nullptr)
        return err_no_block;
    block->*word = value;
    return value;
}

} // namespace

namespace kestrion {

void reset_gentcb() {
    if (the_block == nullptr)
        return;
    free(the_block->scratch);
    free(the_block->message_file);
    free(the_block->install_dir);
    rhpfree(the_block->string_heap);
    free(the_block);
    the_block = nullptr;
}

} // namespace kestrion

constinit int32_t ansidb = 0;

void genfill(gentcb *block) {
    *block = gentcb{};
    for (gen_catalogue &catalogue : block->catalogues)
        catalogue.fd = -1;
}

gentcb *gentcb_alloc(void) {
    if (the_block == nullptr) {
        the_block = static_cast<gentcb *>(malloc(sizeof(gentcb)));
        if (the_block != nullptr)
            genfill(the_block);
    }
    return the_block;
}

gentcb *CheckGenInit(void) { return the_block != nullptr ? the_block : gentcb_alloc(); }

int32_t getgenerr(void) { return word_of_block(&gentcb::gen_err); }

void gset_dbver(void) {
    gentcb *block = CheckGenInit();
    if (block != nullptr)
        block->gen_flags |= GEN_DBVER_SET;
}

int32_t gget_dbver(void) {
    const gentcb *block = CheckGenInit();
    return block != nullptr && (block->gen_flags & GEN_DBVER_SET) != 0 ? 1 : 0;
}

void qvtGEN_setFloatType(int32_t type) { set_word_of_block(&gentcb::float_type, type); }
int32_t qvtGEN_getFloatType(void) { return the_block == nullptr ? -1 : the_block->float_type; }

void gen_setansidb(int32_t on) { ansidb = on; }

int32_t get_glserror(void) { return word_of_block(&gentcb::gls_err); }
int32_t set_glserror(int32_t code) { return set_word_of_block(&gentcb::gls_err, code); }

int32_t get_toerrno(void) { return word_of_block(&gentcb::conv_err); }
int32_t set_toerrno(int32_t code) { return set_word_of_block(&gentcb::conv_err, code); }
