#include "compilers/mkcvo/conversion.h"

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
        unsigned char datum[1 + max_sequence_length] = {entry.control};
        memcpy(datum + 1, entry.target.bytes, sizeof entry.target.bytes);
        add_to_table(table.get(), entry.source, entry.control != 0 ? datum : nullptr);
    }
    return table_text(table.get(), conv_writer);
}

// A record that the runtime makes of an object's file, which is closed here; null for none.
class loaded_record {
public:
    loaded_record(FILE *file, const std::string &refusal)
        : cv_(static_cast<cv_rec *>(_gl_ext_calloc(1, sizeof(cv_rec)))) {
        if (cv_ != nullptr && read_cv_file(cv_, file) == 0)
            return;
        if (file != nullptr)
            _gl_ext_fclose(file);
        if (cv_ == nullptr)
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

void collect(const multi_arr *table, const multi_node *node, code_sequence prefix,
             std::vector<conversion_entry> &entries) {
    const int depth = prefix.length++;
    for (int b = 0; node->flag_bytes != nullptr && b < gl_bytes; ++b) {
        prefix.bytes[depth] = static_cast<unsigned char>(b);
        if (node->flag_bytes[b] == MULTI_CHILD) {
            collect(table, node->children[node->child_slot[b]], prefix, entries);
        } else if (node->flag_bytes[b] == MULTI_END) {
            const unsigned char *datum =
                node->data == nullptr ? table->default_datum
                                      : node->data + (static_cast<size_t>(b) << table->shift);
            entries.push_back({prefix, datum[0], sequence_of(datum + 1, datum[0] & CV_LENGTH)});
        }
    }
}

std::vector<conversion_entry> entries_of(const multi_arr *table) {
    std::vector<conversion_entry> entries;
    if (table != nullptr)
        collect(table, table->root, {}, entries);
    return entries;
}

// The lines that the runtime skips, from the text itself.
std::vector<std::string> head_of(const source_file &source) {
    const std::string_view count = source.line(cvo_head_lines);
    size_t lines = 0;
    if (const size_t equals = count.find('='); equals != std::string_view::npos)
        std::from_chars(count.data() + equals + 1, count.data() + count.size(), lines);
    std::vector<std::string> head;
    for (size_t i = cvo_head_lines + 1; i <= lines && i <= source.line_count(); ++i)
        head.emplace_back(source.line(i));
    return head;
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

void check_by_loading(std::string &text) {
    FILE *file = fmemopen(text.data(), text.size(), "r");
    if (file == nullptr)
        throw std::bad_alloc();
    const loaded_record loaded(file, "the runtime would refuse the object");
}

conversion_object read_object(const std::string &path) {
    const source_file source = source_file::read(path);
    std::string absolute = path;
    if (path.empty() || path[0] != '/')
        absolute.insert(0, "./");
    const loaded_record loaded(_gl_ext_fopen(absolute.c_str(), "r"),
                               path + ": this is no conversion object");
    const cv_rec &cv = *loaded;
    conversion_object object;
    object.head = head_of(source);
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
