#include <kestrion/messages.h>

#include "base/default_locale.h"
#include "base/owned_text.h"
#include "base/print_as_format.h"
#include "env/variable_table.h"
#include "messages/message_file.h"
#include "messages/message_ranges.h"
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>
#include <kestrion/message_paths.h>
#include <kestrion/startup.h>
#include <kestrion/strings.h>

#include <algorithm>
#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

using namespace kestrion;

namespace {

constexpr int32_t no_stand_in = -1; // the text for a failed lookup is itself missing
constexpr const char *unknown_number_text = "Unknown error message number '%d'\n";
constexpr const char *unknown_file_text = "Cannot open file '%s'\n";
constexpr const char *explicit_leaf = "/"; // means the explicit file; no leaf name is equal to it
constexpr int32_t stand_in_size = 512;     // a stand-in text from a catalogue, with its terminator

// Texts for a locale that could not be started: no catalogue can be found without one.
struct start_failure {
    int32_t code;
    const char *text;
};
constexpr start_failure start_failures[] = {
    {err_date_no_memory, "Out of memory."},
    {err_date_format, "Date conversion format must contain a month, day, and year component."},
    {err_locale_load, "Unable to load locale categories."},
    {err_locale_no_memory, "Memory allocation failed during locale processing."},
    {err_locale_conversion, "Error opening required code-set conversion object file."},
    {err_locale_structure, "An error occurred during locale structure creation."},
    {err_locale_environment, "An error occurred during environment variable processing."},
    {err_locale_argument, "Internal error.  Illegal argument for locale initialization."},
    {err_locale_code_sets, "Code sets of the locale categories are not the same."},
};

gen_catalogue *catalogue_of(gentcb *block) { return &block->catalogues[0]; }

void forget_leaf(gentcb *block) { catalogue_of(block)->leaf[0] = '\0'; }

const char *wanted_leaf(const gentcb *block, int32_t number) {
    return block->message_file != nullptr ? explicit_leaf : leaf_of_message(number);
}

int32_t open_catalogue(gentcb *block, const char *leaf, const char *locale) {
    gen_catalogue *catalogue = catalogue_of(block);
    catalogue->window_count = 0;
    catalogue->leaf[0] = '\0';
    if (strlen(leaf) >= sizeof catalogue->leaf)
        return err_catalogue_path;
    const char *path = block->message_file;
    if (path == nullptr && (path = rmsgfname_gls(leaf, locale)) == nullptr)
        return err_catalogue_path;
    catalogue_close(catalogue);
    const int32_t status = catalogue_open(catalogue, path);
    if (status == 0)
        stcopy(leaf, catalogue->leaf);
    return status;
}

// What a catalogue is opened for: texts, for which a copy in memory is enough, or its descriptor.
enum class purpose { text, descriptor };

int32_t find_message(gentcb *block, int32_t number, const char *locale, purpose use,
                     message_place *place) {
    const char *leaf = wanted_leaf(block, number);
    gen_catalogue *catalogue = catalogue_of(block);
    const bool is_open = strcmp(catalogue->leaf, leaf) == 0;
    if (!is_open || (use == purpose::descriptor && catalogue->fd < 0)) {
        if (const int32_t status = open_catalogue(block, leaf, locale))
            return status;
        if (use == purpose::text)
            catalogue_release_descriptor(catalogue);
    }
    return catalogue_find(catalogue, number, place);
}

// One attempt of a lookup: finds the message and copies what fits.
int32_t fetch_message(gentcb *block, int32_t number, const char *locale, char *buffer, int32_t size,
                      int32_t *length) {
    message_place place;
    if (const int32_t status = find_message(block, number, locale, purpose::text, &place))
        return status;
    if (length != nullptr)
        *length = place.length;
    if (size < 1)
        return err_message_too_long;
    const int32_t fits = std::min(place.length, size - 1);
    if (const int32_t status = catalogue_read(catalogue_of(block), place.offset, buffer, fits))
        return status;
    buffer[fits] = '\0';
    return size > place.length ? 0 : err_message_too_long;
}

bool was_found(int32_t status) { return status == 0 || status == err_message_too_long; }

bool english_is_the_users() {
    const char *language = idx_ggetenv("DBLANG", variable_index("DBLANG"));
    return language != nullptr && strcmp(language, default_locale) == 0;
}

// The leaf name is cleared on every way out, so that the next lookup searches in the user's
// language.
int32_t fetch_english(gentcb *block, int32_t number, char *buffer, int32_t size, int32_t *length,
                      int32_t status) {
    if (!english_is_the_users()) {
        forget_leaf(block);
        status = fetch_message(block, number, default_locale, buffer, size, length);
    }
    forget_leaf(block);
    return status;
}

// Fills the buffer for a message that is nowhere. The texts for this are messages themselves; a
// lookup of one of them must not ask for the other in turn.
int32_t stand_in(gentcb *block, int32_t number, char *buffer, int32_t size, int32_t status) {
    const int32_t stand_in_number =
        status == err_catalogue_not_opened ? msg_unknown_file : msg_unknown_number;
    if (number == stand_in_number || block->msg_depth > 0)
        return no_stand_in;
    if (status == err_catalogue_not_opened)
        rnofile(number, buffer, size);
    else
        rnomsg(number, buffer, size);
    return status;
}

// QVT_FREE_FD closes and forgets the catalogue after each lookup. A catalogue that was in memory
// before holds no descriptor, and is spared the look at the environment.
void close_if_descriptors_are_scarce(gentcb *block) {
    gen_catalogue *catalogue = catalogue_of(block);
    if (catalogue->fresh == 0 && catalogue->fd < 0)
        return;
    catalogue->fresh = 0;
    if (idx_ggetenv("QVT_FREE_FD", variable_index("QVT_FREE_FD")) != nullptr)
        catalogue_close(catalogue);
}

int32_t start_failed(int32_t code, char *buffer, int32_t size) {
    for (const start_failure &row : start_failures)
        if (row.code == code)
            stncopy(row.text, buffer, size);
    return code;
}

// Formats the catalogue's text `number`, or `fixed` without one, into buffer[0..size).
void print_stand_in(int32_t number, const char *fixed, format_arg argument, char *buffer,
                    int32_t size) {
    char text[stand_in_size];
    if (gentcb *block = CheckGenInit()) {
        ++block->msg_depth;
        if (rgetlmsg(number, text, std::min(size, stand_in_size), nullptr) == 0)
            fixed = text;
        --block->msg_depth;
    }
    if (size > 0)
        print_as_format_into(buffer, static_cast<size_t>(size), fixed, &argument, 1);
}

} // namespace

int32_t rgetlmsg(int32_t number, char *buffer, int32_t size, int32_t *length) {
    return rgetlmsg_gls(number, buffer, size, length, nullptr);
}

int32_t rget_lmsg(int32_t number, char *buffer, int32_t size, int32_t *length) {
    return rgetlmsg_gls(number, buffer, size, length, nullptr);
}

int32_t rgetlmsg_with_locale(int32_t number, char *buffer, int32_t size, int32_t *length,
                             const char *locale) {
    return rgetlmsg_gls(number, buffer, size, length, locale);
}

int32_t rgetlmsg_gls(int32_t number, char *buffer, int32_t size, int32_t *length,
                     const char *locale) {
    if (const int code = chkglsinit(); code < 0)
        return start_failed(code, buffer, size);
    gentcb *block = CheckGenInit();
    if (block == nullptr)
        return err_no_block;
    int32_t status = fetch_message(block, number, locale, buffer, size, length);
    if (!was_found(status))
        status = fetch_english(block, number, buffer, size, length, status);
    if (!was_found(status))
        status = stand_in(block, number, buffer, size, status);
    close_if_descriptors_are_scarce(block);
    return status;
}

void rnomsg(int32_t number, char *buffer, int32_t size) {
    print_stand_in(msg_unknown_number, unknown_number_text, number_arg(number), buffer, size);
}

void rnofile(int32_t number, char *buffer, int32_t size) {
    const gentcb *block = CheckGenInit();
    const bool is_explicit = block != nullptr && block->message_file != nullptr;
    const char *name = is_explicit ? block->message_file : leaf_of_message(number);
    print_stand_in(msg_unknown_file, unknown_file_text, text_arg(name), buffer, size);
}

int32_t lrseekmsg_gls(int32_t number, int32_t *length, int64_t *position, const char *locale,
                      int *descriptor) {
    gentcb *block = CheckGenInit();
    if (block == nullptr)
        return err_no_block;
    message_place place;
    if (const int32_t status = find_message(block, number, locale, purpose::descriptor, &place))
        return status;
    const int fd = catalogue_of(block)->fd;
    if (lseek(fd, place.offset, SEEK_SET) < 0)
        return err_catalogue_cut;
    if (length != nullptr)
        *length = place.length;
    if (position != nullptr)
        *position = place.offset;
    if (descriptor != nullptr)
        *descriptor = fd;
    return 0;
}

int32_t lrseekmsg(int32_t number, int32_t *length, FILE **stream) {
    *stream = nullptr;
    int fd = -1;
    if (const int32_t status = lrseekmsg_gls(number, length, nullptr, nullptr, &fd))
        return status;
    const int own = fcntl(fd, F_DUPFD_CLOEXEC, 0);
    if (own >= 0 && (*stream = fdopen(own, "r")) == nullptr)
        close(own);
    return *stream != nullptr ? 0 : err_catalogue_not_opened;
}

int32_t rseekmsg(int32_t number, int32_t *length, FILE **stream) {
    return lrseekmsg(number, length, stream);
}

int32_t _setmsgfile(const char *path) {
    gentcb *block = CheckGenInit();
    char *own = path != nullptr ? joined_text(path) : nullptr;
    if (block == nullptr || (path != nullptr && own == nullptr)) {
        free(own);
        return err_no_block;
    }
    free(block->message_file);
    block->message_file = own;
    catalogue_close(catalogue_of(block));
    return 0;
}

void rmsg_init(void) {
    free(msg_langdir);
    msg_langdir = nullptr;
    if (gentcb *block = CheckGenInit())
        catalogue_close(catalogue_of(block));
}

int32_t gen_resetMessageFindFile(const char *kind) {
    const bool server = strcmp(kind, "s") == 0;
    if (!server && strcmp(kind, "c") != 0)
        return -1;
    rmsg_init();
    _mfqvt = server ? _smfqvt : _cmfqvt;
    return 0;
}
