#include <kestrion/message_slots.h>

#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>
#include <kestrion/messages.h>
#include <kestrion/strings.h>
#include <kestrion/value_heap.h>

#include <stdlib.h>

namespace {

constexpr int32_t first_scratch_size = 512; // bytes; grows to the longest text met

bool prepare(gentcb *block) {
    if (block->scratch == nullptr) {
        block->scratch = static_cast<char *>(malloc(first_scratch_size));
        if (block->scratch == nullptr)
            return false;
        block->scratch_size = first_scratch_size;
    }
    if (block->string_heap == nullptr)
        block->string_heap = rhpstart("rldmsg");
    return block->string_heap != nullptr;
}

bool grow_scratch(gentcb *block, int32_t size) {
    char *larger = static_cast<char *>(realloc(block->scratch, static_cast<size_t>(size)));
    if (larger == nullptr)
        return false;
    block->scratch = larger;
    block->scratch_size = size;
    return true;
}

int32_t read_to_scratch(gentcb *block, int32_t number, const char *locale, int32_t *length) {
    return rgetlmsg_with_locale(number, block->scratch, block->scratch_size, length, locale);
}

} // namespace

constinit const char *s_unknown = "Unknown error message number '%d'\n";
constinit const char *s_presscr = "Press RETURN to continue.";
constinit const char *s_msgfile = "Cannot open message file.  Check KESTRIONDIR and DBLANG.";
constinit const char *s_termtyp = "The type of your terminal is unknown to the system.";

constinit const message_slot msginit[] = {
    {&s_unknown, msg_unknown_number},
    {&s_presscr, 1202},
    {&s_msgfile, 1203},
    {&s_termtyp, 1204},
    {nullptr, 0},
};

int32_t rldinit(void) { return rldmgar(msginit); }

int32_t rldmgar(const message_slot *rows) {
    for (; rows->slot != nullptr; ++rows) {
        const char *text = rld_lmsg(rows->number);
        if (text == nullptr)
            return rows->number;
        *rows->slot = text;
    }
    return 0;
}

char *rld_lmsg(int32_t number) { return rld_lmsg_gls(number, nullptr); }
char *rldmsg(int32_t number) { return rld_lmsg_gls(number, nullptr); }

char *rld_lmsg_gls(int32_t number, const char *locale) {
    gentcb *block = CheckGenInit();
    if (block == nullptr || !prepare(block))
        return nullptr;
    int32_t length = 0;
    int32_t status = read_to_scratch(block, number, locale, &length);
    if (status == err_message_too_long && grow_scratch(block, length + 1))
        status = read_to_scratch(block, number, locale, &length);
    if (status != 0)
        return nullptr;
    // The last byte is the text's line end; a format bound to a slot goes without one.
    block->scratch[length - 1] = '\0';
    // Asking the heap by its handle leaves the heap of the moment, `currheap`, alone.
    char *text = static_cast<char *>(do_rualloc(length, 0, block->string_heap));
    return text == nullptr ? nullptr : stcopy(block->scratch, text);
}

value_heap *get_strheap(void) {
    const gentcb *block = CheckGenInit();
    return block == nullptr ? nullptr : block->string_heap;
}

void set_strheap(value_heap *heap) {
    if (gentcb *block = CheckGenInit())
        block->string_heap = heap;
}

char *rldmsg_fmtspecxtf(char *format, int32_t *error) {
    if (error != nullptr)
        *error = format == nullptr ? err_no_block : 0;
    return format;
}
