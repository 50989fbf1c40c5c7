// What a compiler says about its sources: where, what, and what to do about it.
//
//     de_de/pwseal.msg:12:23: error: the text takes a number where the English text takes a text
//        12 | -84403 Fehler beim Lesen: %d
//           |                           ^
//           = write %s here, or change $args -84403 in en_us/pwseal.msg
//
// Lines and columns count from 1, columns in bytes. A cause is reported once: after an error in a
// line a compiler does not report what follows from it.
//
// Of errors, of warnings and of losses the first twenty are printed; all are counted.
//
// A loss is something of the source that the output cannot hold (a character without a counterpart,
// a text without a translation). It is not an error unless --werror=loss makes it one.

#pragma once

#include <stddef.h>
#include <stdexcept>
#include <stdint.h>
#include <stdio.h>
#include <string>
#include <string_view>
#include <vector>

namespace kestrion {

// What ends a compiler's process; scripts rely on the numbers.
enum class exit_status {
    written = 0,             // output written, nothing to say
    written_with_losses = 1, // output written, with warnings or losses
    usage = 2,               // a bad command line, nothing read
    nothing_written = 4,     // after errors; files are as they were
};

// Ends the compiler with nothing written. For what has no place in a source: a file that cannot be
// read, a disk that is full.
struct compiler_failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A bad command line: the reason is printed with the usage, and the exit is 2.
struct usage_error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct source_position {
    size_t line = 0;   // from 1; 0: the file as a whole
    size_t column = 0; // from 1, in bytes; 0: the line as a whole
};

// One source file, held whole, with its lines.
class source_file {
public:
    source_file(std::string name, std::string text);

    // Reads a file whole. Throws compiler_failure when that fails.
    static source_file read(const std::string &path);

    const std::string &name() const { return name_; }
    std::string_view text() const { return text_; }
    size_t line_count() const { return starts_.size(); }
    // Line `number`, from 1, without its line end; empty when there is none.
    std::string_view line(size_t number) const;
    // Line and column of an offset in the text.
    source_position position(size_t offset) const;

private:
    std::string name_;
    std::string text_;
    std::vector<size_t> starts_; // offset of each line
};

class diagnostics {
public:
    // A null stream: things are counted and listed, not printed.
    explicit diagnostics(FILE *stream = stderr) : stream_(stream) {}

    // Each takes what happened and what to do about it; both are one line without a full stop.
    void error(const source_file &source, source_position where, std::string_view what,
               std::string_view remedy);
    void warning(const source_file &source, source_position where, std::string_view what,
                 std::string_view remedy);
    // Also a line "name:line:column: what" of the list that --losses writes.
    void loss(const source_file &source, source_position where, std::string_view what,
              std::string_view remedy);

    // The same without a place in a source.
    void error(std::string_view what, std::string_view remedy);
    void warning(std::string_view what, std::string_view remedy);
    void loss(std::string_view what, std::string_view remedy);

    void make_losses_errors(); // --werror=loss

    size_t errors() const { return errors_.count; }
    size_t warnings() const { return warnings_.count; }
    size_t losses() const { return losses_.count; }
    bool failed() const { return errors() != 0 || (losses_are_errors_ && losses() != 0); }
    exit_status status() const; // of a compiler whose files are written unless failed()
    const std::string &loss_list() const { return loss_list_; }

private:
    struct place {
        const source_file *source; // null for none
        source_position where;
    };
    struct kind {
        const char *word;
        const char *further; // what is printed in place of the twenty-first
        size_t count = 0;
    };
    void add(kind &of, place at, std::string_view what, std::string_view remedy);
    void print(const char *word, place at, std::string_view what, std::string_view remedy);
    void add_loss(place at, std::string_view what, std::string_view remedy);

    FILE *stream_;
    kind errors_ = {"error", "further errors are not shown\n"};
    kind warnings_ = {"warning", "further warnings are not shown\n"};
    kind losses_ = {"loss", "further losses are not shown; --losses FILE lists them all\n"};
    bool losses_are_errors_ = false;
    std::string loss_list_;
};

} // namespace kestrion
