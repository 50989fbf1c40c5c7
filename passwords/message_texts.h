// The command's texts. Each slot starts with a fixed English text, so that the library speaks in a
// program that loads no catalogue too; rldmgar on rdpwmsg replaces them by those of the user's
// language. Print them with print_as_format.

#pragma once

#include <kestrion/message_slots.h>

#include <stdint.h>

// Slot, message number (stored in catalogues: never renumber), fixed text. The arguments:
// s_errread takes a path or an errno; s_errwrite, s_err_openfile and s_err_format take a path.
// Nothing prints s_err_setperms and s_err_perms.
// clang-format off
#define PW_MESSAGES(ROW)                                                                           \
    ROW(s_pwusage,      -84400, "Usage: pwsealtool -k <access_key> -e <input_filename> | -d <output_filename>\n") \
    ROW(s_qvtxdir,      -84401, "KESTRIONDIR is not set; set it to the installation directory\n")  \
    ROW(s_crxctxinit,   -84402, "Cannot make ready the cipher\n")                                  \
    ROW(s_errread,      -84403, "Cannot read: %s\n")                                               \
    ROW(s_errwrite,     -84404, "Cannot write file %s\n")                                          \
    ROW(s_keycmpfail,   -84405, "The access key is not the one that the file was sealed with\n")   \
    ROW(s_errencr,      -84406, "Cannot seal the password text\n")                                 \
    ROW(s_errdecr,      -84407, "Cannot open the sealed password file\n")                          \
    ROW(s_errkeygen,    -84408, "Cannot make a random key\n")                                      \
    ROW(s_ctxcleanup,   -84409, "Cannot release the cipher\n")                                     \
    ROW(s_err_openfile, -84410, "Cannot open file %s\n")                                           \
    ROW(s_err_setperms, -84411, "Cannot set the permissions of a file\n")                          \
    ROW(s_err_format,   -84412, "The password text %s is not well-formed\n")                       \
    ROW(s_err_less_tok, -84413, "Format Error: a line has fewer than four tokens\n")               \
    ROW(s_err_more_tok, -84414, "Format Error: a line has more than four tokens\n")                \
    ROW(s_err_perms,    -84415, "The permissions of a file are not safe\n")
// clang-format on

namespace kestrion {

#define PW_SLOT(slot, number, text) extern const char *slot;
PW_MESSAGES(PW_SLOT)
#undef PW_SLOT

extern const message_slot rdpwmsg[]; // the slots in their order, ended by a null one
} // namespace kestrion
