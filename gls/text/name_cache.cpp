#include <kestrion/name_cache.h>

#include "gls/base/engine_error.h"
#include <kestrion/char_case.h>
#include <kestrion/char_convert.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/locale_rec.h>

using namespace kestrion;

namespace {

// The element of a name that a node holds.
unsigned char &element_of(gl_mb_name_node &node) { return node.byte; }
gl_wchar &element_of(gl_wc_name_node &node) { return node.character; }
unsigned char element_of(const gl_mb_name_node &node) { return node.byte; }
gl_wchar element_of(const gl_wc_name_node &node) { return node.character; }

// The node of an element in a level, or null.
template <typename Node, typename Element> Node *find(Node *level, Element element) {
    while (level != nullptr && element_of(*level) != element)
        level = level->alternative;
    return level;
}

// The same, made if it is missing; null without memory.
template <typename Node, typename Element> Node *find_or_make(Node **level, Element element) {
    if (Node *const known = find(*level, element))
        return known;
    Node *const node = static_cast<Node *>(_gl_ext_calloc(1, sizeof(Node)));
    if (node == nullptr)
        return nullptr;
    element_of(*node) = element;
    node->alternative = *level;
    *level = node;
    return node;
}

// Marks the end of a name; a name that is there keeps its first value.
template <typename Node> void end_name(Node *node, int32_t value) {
    if (node->end == 0) {
        node->value = value;
        node->end = 1;
    }
}

template <typename Node> void release(Node *cache) {
    // A list in place of a recursion: names may be of any length.
    while (cache != nullptr) {
        Node *const node = cache;
        cache = node->alternative;
        if (node->next_level != nullptr) {
            Node *last = node->next_level;
            while (last->alternative != nullptr)
                last = last->alternative;
            last->alternative = cache;
            cache = node->next_level;
        }
        _gl_ext_free(node);
    }
}

// Name that a lookup has found so far, to begin with the empty one.
template <typename Node> struct best_name {
    explicit best_name(const Node *cache) {
        const Node *const empty = find(cache, element_of(Node{}));
        if (empty != nullptr && empty->end != 0)
            value = empty->value;
    }
    void take(const Node *node, int32_t length) {
        value = node->value;
        used = length;
    }
    int32_t value = -1;
    int32_t used = 0;
};

// One character in lower case, taken from a text of `limit` bytes or, for -1, a terminated one.
struct folded_char {
    unsigned char bytes[gl_char_bytes];
    int32_t length; // of the lower case
    int32_t read;   // of the character; 0 without one
};

folded_char fold(locale_rec *lc, const char *text, int32_t limit) {
    folded_char folded = {};
    if (lc != nullptr && lc->sb_lower != nullptr) {
        folded.bytes[0] = lc->sb_lower[static_cast<unsigned char>(*text)];
        folded.length = folded.read = 1;
        return folded;
    }
    const int32_t lengths =
        _qvt_gl_im_tomlower(lc, reinterpret_cast<char *>(folded.bytes), text, limit);
    folded.read = lengths >> 8;
    folded.length = lengths & 0xFF;
    return folded;
}

gl_wchar fold(locale_rec *lc, gl_wchar character) {
    if (lc != nullptr && lc->sb_lower != nullptr)
        return character < 256 ? lc->sb_lower[character] : character;
    return _gl_im_towlower(lc, character);
}

bool at_end(locale_rec *lc, const char *text, int32_t left) {
    return left < 0 ? gl_ismbsterm(lc, text) != 0 : left == 0;
}

// Keeps the error word over a lookup: the caller does not care what follows a name.
class kept_error_word {
public:
    explicit kept_error_word(locale_rec *lc) : word_(*_gl_ext_errno(lc)), before_(word_) {}
    ~kept_error_word() { word_ = before_; }

private:
    int32_t &word_;
    int32_t before_;
};

} // namespace

int _gl_cache_mb_string(locale_rec *lc, gl_mb_name_node **cache, const char *name, int32_t value) {
    gl_mb_name_node **level = cache;
    gl_mb_name_node *node = nullptr;
    while (!at_end(lc, name, -1)) {
        const folded_char folded = fold(lc, name, -1);
        if (folded.read == 0)
            return -1;
        for (int32_t i = 0; i < folded.length; ++i) {
            node = find_or_make(level, folded.bytes[i]);
            if (node == nullptr)
                return fail(lc, GLS_ERR_NO_MEMORY);
            level = &node->next_level;
        }
        name += folded.read;
    }
    if (node == nullptr && (node = find_or_make(cache, static_cast<unsigned char>(0))) == nullptr)
        return fail(lc, GLS_ERR_NO_MEMORY);
    end_name(node, value);
    return 0;
}

int _gl_cache_wc_string(locale_rec *lc, gl_wc_name_node **cache, const gl_wchar *name,
                        int32_t value) {
    gl_wc_name_node **level = cache;
    gl_wc_name_node *node = nullptr;
    for (; *name != 0; ++name) {
        node = find_or_make(level, fold(lc, *name));
        if (node == nullptr)
            return fail(lc, GLS_ERR_NO_MEMORY);
        level = &node->next_level;
    }
    if (node == nullptr && (node = find_or_make(cache, gl_wchar{0})) == nullptr)
        return fail(lc, GLS_ERR_NO_MEMORY);
    end_name(node, value);
    return 0;
}

int32_t _gl_validate_mb_string(locale_rec *lc, const gl_mb_name_node *cache, const char *text,
                               int32_t length, int32_t *used) {
    const kept_error_word kept(lc);
    best_name best(cache);
    const gl_mb_name_node *level = cache;
    int32_t at = 0;
    while (level != nullptr && !at_end(lc, text + at, length < 0 ? -1 : length - at)) {
        const folded_char folded = fold(lc, text + at, length < 0 ? -1 : length - at);
        // No name holds the character 0; its node is the empty name.
        if (folded.read == 0 || (folded.length == 1 && folded.bytes[0] == 0))
            break;
        const gl_mb_name_node *node = nullptr;
        for (int32_t i = 0; i < folded.length && (i == 0 || node != nullptr); ++i)
            node = find(i == 0 ? level : node->next_level, folded.bytes[i]);
        if (node == nullptr)
            break;
        at += folded.read;
        if (node->end != 0)
            best.take(node, at);
        level = node->next_level;
    }
    *used = best.used;
    return best.value;
}

int32_t _gl_validate_wc_string(locale_rec *lc, const gl_wc_name_node *cache, const gl_wchar *text,
                               int32_t length, int32_t *used) {
    const kept_error_word kept(lc);
    best_name best(cache);
    const gl_wc_name_node *level = cache;
    for (int32_t at = 0; length < 0 ? text[at] != 0 : at < length; ++at) {
        // The node of the character 0 is the empty name, whatever a counted text holds.
        const gl_wc_name_node *const node =
            text[at] == 0 ? nullptr : find(level, fold(lc, text[at]));
        if (node == nullptr)
            break;
        if (node->end != 0)
            best.take(node, at + 1);
        level = node->next_level;
    }
    *used = best.used;
    return best.value;
}

void _gl_free_mb_cache(gl_mb_name_node *cache) { release(cache); }

void _gl_free_wc_cache(gl_wc_name_node *cache) { release(cache); }
