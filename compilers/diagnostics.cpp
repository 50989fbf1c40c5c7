#include "compilers/diagnostics.h"

#include "compilers/input_files.h"

#include <algorithm>
#include <errno.h>
#include <memory>
#include <string.h>
#include <utility>

namespace kestrion {

namespace {

constexpr size_t most_shown = 20;     // of each kind
constexpr size_t shown_columns = 160; // a longer line is shown from its start

// A source line as it can be shown: control characters would move the caret or the cursor.
std::string shown(std::string_view line) {
    std::string text(line.substr(0, shown_columns));
    for (char &c : text)
        if (c != '\t' && (static_cast<unsigned char>(c) < 32 || c == 127))
            c = '?';
    return text;
}

// The blanks before the caret: tabs stay tabs, and a UTF-8 character takes one column.
std::string before_caret(std::string_view line, size_t column) {
    std::string blanks;
    for (const char c : line.substr(0, column - 1))
        if ((static_cast<unsigned char>(c) & 0xC0) != 0x80)
            blanks += c == '\t' ? '\t' : ' ';
    return blanks;
}

std::string place_text(const source_file *source, source_position where) {
    if (source == nullptr)
        return {};
    std::string text = source->name();
    if (where.line != 0)
        text += ':' + std::to_string(where.line);
    if (where.line != 0 && where.column != 0)
        text += ':' + std::to_string(where.column);
    return text + ": ";
}

} // namespace

source_file::source_file(std::string name, std::string text)
    : name_(std::move(name)), text_(std::move(text)) {
    for (size_t start = 0; start < text_.size();) {
        starts_.push_back(start);
        const size_t end = text_.find('\n', start);
        start = end == std::string::npos ? text_.size() : end + 1;
    }
}

source_file source_file::read(const std::string &path) {
    const std::unique_ptr<FILE, int (*)(FILE *)> file(fopen(path.c_str(), "rb"), fclose);
    std::string text;
    if (file != nullptr) {
        note_input_file(fileno(file.get()));
        char block[16384];
        for (size_t n; (n = fread(block, 1, sizeof block, file.get())) != 0;)
            text.append(block, n);
    }
    if (file == nullptr || ferror(file.get()) != 0)
        throw compiler_failure("cannot read " + path + ": " + strerror(errno));
    return {path, std::move(text)};
}

std::string_view source_file::line(size_t number) const {
    if (number == 0 || number > starts_.size())
        return {};
    const size_t start = starts_[number - 1];
    const size_t end = number < starts_.size() ? starts_[number] : text_.size();
    std::string_view line = text().substr(start, end - start);
    if (!line.empty() && line.back() == '\n')
        line.remove_suffix(1);
    return line;
}

source_position source_file::position(size_t offset) const {
    const auto next = std::upper_bound(starts_.begin(), starts_.end(), offset);
    if (next == starts_.begin()) // an empty file
        return {1, 1};
    return {static_cast<size_t>(next - starts_.begin()), offset - *(next - 1) + 1};
}

void diagnostics::error(const source_file &source, source_position where, std::string_view what,
                        std::string_view remedy) {
    add(errors_, {&source, where}, what, remedy);
}

void diagnostics::warning(const source_file &source, source_position where, std::string_view what,
                          std::string_view remedy) {
    add(warnings_, {&source, where}, what, remedy);
}

void diagnostics::loss(const source_file &source, source_position where, std::string_view what,
                       std::string_view remedy) {
    add_loss({&source, where}, what, remedy);
}

void diagnostics::error(std::string_view what, std::string_view remedy) {
    add(errors_, {nullptr, {}}, what, remedy);
}

void diagnostics::warning(std::string_view what, std::string_view remedy) {
    add(warnings_, {nullptr, {}}, what, remedy);
}

void diagnostics::loss(std::string_view what, std::string_view remedy) {
    add_loss({nullptr, {}}, what, remedy);
}

void diagnostics::make_losses_errors() {
    losses_are_errors_ = true;
    losses_.word = "error: loss";
}

exit_status diagnostics::status() const {
    if (failed())
        return exit_status::nothing_written;
    return warnings() + losses() == 0 ? exit_status::written : exit_status::written_with_losses;
}

void diagnostics::add_loss(place at, std::string_view what, std::string_view remedy) {
    loss_list_ += place_text(at.source, at.where);
    loss_list_ += what;
    loss_list_ += '\n';
    add(losses_, at, what, remedy);
}

void diagnostics::add(kind &of, place at, std::string_view what, std::string_view remedy) {
    ++of.count;
    if (of.count <= most_shown)
        print(of.word, at, what, remedy);
    else if (of.count == most_shown + 1 && stream_ != nullptr)
        fputs(of.further, stream_);
}

void diagnostics::print(const char *word, place at, std::string_view what,
                        std::string_view remedy) {
    if (stream_ == nullptr)
        return;
    const std::string prefix = place_text(at.source, at.where) + word + ": ";
    fprintf(stream_, "%s%.*s\n", prefix.c_str(), static_cast<int>(what.size()), what.data());
    const std::string line = at.source == nullptr ? "" : shown(at.source->line(at.where.line));
    if (!line.empty()) {
        fprintf(stream_, "%5zu | %s\n", at.where.line, line.c_str());
        if (at.where.column != 0 && at.where.column <= line.size() + 1)
            fprintf(stream_, "      | %s^\n", before_caret(line, at.where.column).c_str());
    }
    if (!remedy.empty())
        fprintf(stream_, "      = %.*s\n", static_cast<int>(remedy.size()), remedy.data());
}

} // namespace kestrion
