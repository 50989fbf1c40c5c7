// What the tests of conversions share: small objects made from entries, records loaded from a text,
// and one call of a conversion with all that it answers.

#pragma once

#include "gls/engine_test.h"
#include <kestrion/conversion.h>
#include <kestrion/conversion_file.h>
#include <kestrion/multi.h>
#include <kestrion/multi_file.h>

#include <map>
#include <string>

using conversion_entries = std::map<std::string, std::string>; // source bytes, whole datum

// The lines of a small object; what a test does not name is a plain pair of single bytes.
struct object_lines {
    std::string states = "0 0";
    std::string shifts = "0000";
    std::string lengths = "1 1 0 0 1 1";
    std::string no_byte_table = "1";
    std::string expansion = "1.0";
    conversion_entries normal = {};
    conversion_entries shifted = {}; // written when the states begin with 1

    static std::string table(const conversion_entries &entries, uint32_t data_size) {
        const std::string unmapped(data_size, '\0');
        multi_arr *made = _gl_create_multi(data_size, 0, unmapped.data());
        for (const auto &[source, datum] : entries) {
            gl_char_desc desc = {.length = static_cast<int32_t>(source.size()), .bytes = {}};
            memcpy(desc.bytes, source.data(), source.size());
            std::string whole = datum;
            whole.resize(data_size);
            EXPECT_EQ(_gl_insert_desc_multi(&desc, whole.data(), made), 0);
        }
        const std::string text =
            text_written([&](FILE *stream) { _gl_fprintf_multi(stream, made, conv_writer); });
        _gl_free_multi(made);
        return text;
    }

    std::string text() const {
        const auto data_size = static_cast<uint32_t>(lengths[2] - '0' + 1);
        return "FILE_TYPE=codeset_conversion_object\nCOMPILER_VERSION=9\nHEADER_LINES=4\n"
               "COMPILER=test\n" +
               states + "\n" + shifts + "\n" + lengths + "\n" + no_byte_table + "\n" + expansion +
               "\n" + table(normal, data_size) +
               (states[0] == '1' ? table(shifted, data_size) : "");
    }
};

// A record read from a text, and released with the byte table that unloading leaves to its users.
class loaded_object {
public:
    explicit loaded_object(std::string text) {
        cv = static_cast<cv_rec *>(_gl_ext_calloc(1, sizeof(cv_rec)));
        FILE *file = text.empty() ? tmpfile() : fmemopen(text.data(), text.size(), "r");
        result = cv != nullptr ? read_cv_file(cv, file) : -1;
        if (result != 0)
            fclose(file); // a failed read leaves it open
    }
    ~loaded_object() {
        if (cv == nullptr)
            return;
        unsigned char *byte_table = cv->sb_table;
        gl_cv_unload(cv);
        _gl_ext_free(byte_table);
    }
    loaded_object(const loaded_object &) = delete;
    loaded_object &operator=(const loaded_object &) = delete;

    cv_rec *cv;
    int32_t result;
};

struct conversion_result {
    int32_t result;
    int32_t error;    // 0 on success
    std::string text; // written
    int64_t used;     // of the source
    int32_t room;     // left
    int32_t lossy;

    bool operator==(const conversion_result &) const = default;
};

inline void PrintTo(const conversion_result &r, std::ostream *out) {
    *out << r.result << " error " << r.error << " used " << r.used << " room " << r.room
         << " lossy " << r.lossy << " text";
    for (const char c : r.text)
        *out << ' ' << std::hex << static_cast<int>(static_cast<unsigned char>(c)) << std::dec;
}

enum class text_form { counted, terminated };

inline conversion_result convert(cv_rec *cv, const std::string &text, int32_t room = 1 << 20,
                                 cv_state *state = nullptr, text_form form = text_form::counted) {
    std::string out(static_cast<size_t>(room), '\xee');
    const char *source = text.data();
    char *target = out.data();
    int32_t length = static_cast<int32_t>(text.size());
    conversion_result r = {};
    r.room = room;
    r.lossy = 7;
    cv->cv_err = 0;
    r.result = gl_cv_mconv(cv, state, &source, form == text_form::counted ? &length : nullptr,
                           &target, &r.room, &r.lossy);
    r.error = cv->cv_err;
    r.used = source - text.data();
    r.text.assign(out.data(), std::min(target, out.data() + out.size()));
    if (form == text_form::counted) {
        EXPECT_EQ(length, static_cast<int64_t>(text.size()) - r.used);
    }
    return r;
}

// The same with nothing stored: its text is empty.
inline conversion_result measure(cv_rec *cv, const std::string &text, int32_t room,
                                 cv_state *state = nullptr) {
    const char *source = text.data();
    int32_t length = static_cast<int32_t>(text.size());
    conversion_result r = {};
    r.room = room;
    cv->cv_err = 0;
    r.result = gl_mconvlen(cv, state, &source, &length, &r.room, &r.lossy);
    r.error = cv->cv_err;
    r.used = source - text.data();
    return r;
}

// What comes of a text given in two pieces, with `room` bytes for each call.
inline std::string in_pieces(cv_rec *cv, const std::string &text, size_t cut, int32_t room) {
    std::string out;
    cv_state state = {.reset = 1, .flush = 0, .source_shifted = 0, .target_shifted = 0};
    size_t at = 0;
    for (int calls = 0; calls < 200; ++calls) {
        const size_t end = at < cut && calls < 100 ? cut : text.size();
        state.flush = end == text.size();
        const conversion_result r = convert(cv, text.substr(at, end - at), room, &state);
        state.reset = 0;
        out += r.text;
        at += static_cast<size_t>(r.used);
        if (r.error == 7) // the rest comes with the next piece
            cut = 0;
        else if (r.result != 0 && r.error != 14)
            return "error " + std::to_string(r.error);
        if (at == text.size())
            return out;
    }
    return "no end";
}
