#include "compilers/mkcvo/conversion.h"

#include "compilers/head_lines.h"
#include "compilers/object_table.h"
#include "gls/conversion/conversion_object.h"
#include <kestrion/conversion_file.h>
#include <kestrion/ext_funcs.h>

#include <charconv>
#include <new>
#include <stdio.h>
#include <string.h>

namespace kestrion {

namespace {

void append_head(std::string &out, const conversion_object &object) {
    out += cvo_file_type;
    out += cvo_version;
    out += "HEADER_LINES=" + std::to_string(cvo_head_lines + object.head.size()) + "\n";
    for (const std::string &line : object.head) {
        if (line.size() > size_t{cvo_line_limit})
            throw compiler_failure("a head line of more than " + std::to_string(cvo_line_limit) +
                                   " characters: " + line);
        out += line + "\n";
    }
}

void append_numbers(std::string &out, const conversion_object &object) {
    out += std::to_string(object.source_stateful) + " " + std::to_string(object.target_stateful) +
           "\n";
    for (const code_sequence &shift : object.shifts) {
        out += std::to_string(shift.length) + hex_text(shift.text());
    }
    out += "\n" + std::to_string(object.target_min) + " " + std::to_string(object.target_max) +
           " 0 0 " + std::to_string(object.source_min) + " " + std::to_string(object.source_max) +
           "\n";
    out += std::to_string(object.no_byte_table) + "\n";
    char number[32];
    const auto end =
        std::to_chars(number, number + sizeof number, static_cast<float>(object.expansion)).ptr;
    out.append(number, end);
    if (out.find_first_of(".e", out.size() - static_cast<size_t>(end - number)) ==
        std::string::npos)
        out += ".0";
    out += "\n";
}

std::string entries_text(const std::vector<conversion_entry> &entries, int target_max) {
    const multi_table table = make_table(static_cast<uint32_t>(target_max) + 1);
    for (const conversion_entry &entry : entries) {
        if (entry.target.length > target_max)
            throw compiler_failure("a mapping to " + std::to_string(entry.target.length) +
                                   " bytes, where target characters have at most " +
                                   std::to_string(target_max));
        unsigned char datum[1 + gl_char_bytes] = {entry.control};
        memcpy(datum + 1, entry.target.bytes, sizeof entry.target.bytes);
        add_to_table(table.get(), entry.source, entry.control != 0 ? datum : nullptr);
    }
    return table_text(table.get(), conv_writer);
}

// A record that the runtime makes of an object's bytes.
class loaded_record {
public:
    loaded_record(std::string bytes, const std::string &refusal)
        : cv_(static_cast<cv_rec *>(_gl_ext_calloc(1, sizeof(cv_rec)))) {
        FILE *file = fmemopen(bytes.data(), bytes.size(), "r");
        const bool loaded = cv_ != nullptr && file != nullptr && read_cv_file(cv_, file) == 0;
        if (loaded)
            return; // with the file closed
        if (file != nullptr)
            fclose(file);
        if (cv_ == nullptr || file == nullptr)
            throw std::bad_alloc();
        const std::string error = std::to_string(cv_->cv_err);
        release();
        throw compiler_failure(refusal + " (error " + error + ")");
    }
    ~loaded_record() { release(); }
    loaded_record(const loaded_record &) = delete;
    loaded_record &operator=(const loaded_record &) = delete;

    const cv_rec &operator*() const { return *cv_; }

private:
    void release() {
        _gl_ext_free(cv_->sb_table); // the runtime leaves it to those who hold it
        gl_cv_unload(cv_);
    }

    cv_rec *cv_;
};

code_sequence sequence_of(const unsigned char *bytes, int length) {
    code_sequence sequence;
    sequence.length = static_cast<uint8_t>(length);
    memcpy(sequence.bytes, bytes, static_cast<size_t>(length));
    return sequence;
}

std::vector<conversion_entry> entries_of(const multi_arr *table) {
    std::vector<conversion_entry> entries;
    if (table != nullptr)
        for_each_entry(table, [&](const code_sequence &source, const unsigned char *datum) {
            entries.push_back({source, datum[0], sequence_of(datum + 1, datum[0] & CV_LENGTH)});
        });
    return entries;
}

} // namespace

std::string object_text(const conversion_object &object) {
    std::string out;
    append_head(out, object);
    append_numbers(out, object);
    out += entries_text(object.normal, object.target_max);
    if (object.source_stateful)
        out += entries_text(object.shifted, object.target_max);
    return out;
}

void check_by_loading(const std::string &bytes, const std::string &source) {
    const loaded_record loaded(bytes, source + ": the object cannot be loaded");
}

conversion_object read_object(const source_file &file) {
    const loaded_record loaded(std::string(file.text()),
                               file.name() + ": this is not a conversion object");
    const cv_rec &cv = *loaded;
    conversion_object object;
    object.head = skipped_head_lines(file);
    object.source_stateful = cv.source_stateful != 0;
    object.target_stateful = cv.target_stateful != 0;
    object.shifts = {sequence_of(cv.shift_in, cv.shift_in_len),
                     sequence_of(cv.shift_out, cv.shift_out_len),
                     sequence_of(cv.source_shift_in, cv.source_shift_in_len),
                     sequence_of(cv.source_shift_out, cv.source_shift_out_len)};
    object.target_min = cv.target_min_len;
    object.target_max = cv.target_max_len;
    object.source_min = cv.source_min_len;
    object.source_max = cv.source_max_len;
    object.no_byte_table = cv.no_sb_table != 0;
    object.expansion = double{cv.expansion};
    object.normal = entries_of(cv.table_normal);
    object.shifted = entries_of(cv.table_shifted);
    return object;
}

} // namespace kestrion
