#include "compilers/mkqem/catalogue_source.h"

#include "compilers/utf8.h"
#include "messages/message_file.h"

#include <charconv>
#include <utility>

namespace kestrion {

namespace {

bool is_blank(char c) { return c == ' ' || c == '\t'; }
bool is_high(char c) { return static_cast<unsigned char>(c) >= 0x80; }
bool is_octal(char c) { return c >= '0' && c <= '7'; }

std::vector<std::string_view> words_of(std::string_view text) {
    std::vector<std::string_view> words;
    for (size_t at = 0; (at = text.find_first_not_of(" \t", at)) != std::string_view::npos;) {
        const size_t end = std::min(text.find_first_of(" \t", at), text.size());
        words.push_back(text.substr(at, end - at));
        at = end;
    }
    return words;
}

// Reads an optional minus and digits that are all of `word`; 64 bits show what 32 cannot hold.
bool read_number(std::string_view word, int64_t &number) {
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc{} && end == word.data() + word.size();
}

constexpr struct {
    char letter, byte;
} letter_escapes[] = {{'n', '\n'}, {'t', '\t'}, {'v', '\v'}, {'b', '\b'},
                      {'r', '\r'}, {'f', '\f'}, {'\\', '\\'}};

class parser {
public:
    parser(catalogue_source &out, code_set target, diagnostics &said)
        : out_(out), target_(target), said_(said) {}

    void parse() {
        if (is_text_file())
            for (go_to(1); line_number_ <= out_.file.line_count(); go_to(line_number_ + 1))
                parse_line();
    }

private:
    source_position here() const { return {line_number_, column_ + 1}; }
    bool at_end() const { return column_ == line_.size(); }

    void go_to(size_t line) {
        line_number_ = line;
        line_ = out_.file.line(line);
        column_ = 0;
    }

    bool error(source_position where, std::string_view what, std::string_view remedy) {
        said_.error(out_.file, where, what, remedy);
        return false;
    }

    // What would make every line fail for one and the same cause.
    bool is_text_file() {
        for (size_t number = 1; number <= out_.file.line_count(); ++number) {
            const std::string_view line = out_.file.line(number);
            if (const size_t at = line.find('\0'); at != std::string_view::npos)
                return error({number, at + 1}, "the file holds a null byte",
                             "save it as plain text in UTF-8 or a single-byte code set");
            if (line.ends_with('\r'))
                return error({number, line.size()},
                             "the line ends in carriage return and line feed",
                             "save the file with line feeds alone");
        }
        return true;
    }

    void parse_line() {
        if (line_.find_first_not_of(" \t") == std::string_view::npos)
            return;
        if (line_[0] != '$')
            parse_message();
        else if (line_.size() > 1 && !is_blank(line_[1]))
            parse_directive();
    }

    void parse_directive() {
        const std::vector<std::string_view> words = words_of(line_);
        if (words[0] == "$quote")
            parse_quote(words);
        else if (words[0] == "$args")
            parse_arguments(words);
        else if (words[0] == "$set")
            parse_set();
        else
            error({line_number_, 1}, "unknown directive " + std::string(words[0]),
                  "directives are $quote, $args and $set; a comment has a blank after the $");
    }

    void parse_quote(const std::vector<std::string_view> &words) {
        if (words.size() > 2 || (words.size() == 2 && (words[1].size() > 1 || words[1] == "\\")))
            error({line_number_, 8}, "expected one character after $quote",
                  "write $quote and one character, or $quote alone to end quoting");
        else
            quote_ = words.size() == 2 ? words[1][0] : '\0';
    }

    // A catalogue has no sets; a source that puts all its messages into one needs no change.
    void parse_set() {
        if (set_line_ != 0)
            error({line_number_, 1},
                  "a catalogue holds one set, and line " + std::to_string(set_line_) + " began it",
                  "give the messages numbers of their own and take this line out");
        set_line_ = line_number_;
    }

    void parse_arguments(const std::vector<std::string_view> &words) {
        const size_t at =
            words.size() < 2 ? line_.size() : static_cast<size_t>(words[1].data() - line_.data());
        const source_position where = {line_number_, at + 1};
        int64_t number = 0;
        if (words.size() < 2 || !read_number(words[1], number) || !std::in_range<int32_t>(number)) {
            error(where, "expected a message number after $args",
                  "write $args, the number and the kinds");
            return;
        }
        const auto declared = parse_signature({words.begin() + 2, words.end()});
        if (!declared)
            error(where, "expected kinds of arguments after the number",
                  "write text, number or any for each argument, or unchecked alone");
        else if (!out_.declarations
                      .try_emplace(static_cast<int32_t>(number),
                                   declared_arguments{where, *declared})
                      .second)
            error(where, "the arguments are declared a second time",
                  "take one of the two lines out");
    }

    void parse_message() {
        const source_position where = here();
        source_message message = {where, {}, {}};
        int32_t number = 0;
        if (!read_message_number(number) || !read_text(message)) {
            skip_message();
            return;
        }
        message.places.push_back(here());
        if (message.text.empty())
            error(message.places.back(), "message " + std::to_string(number) + " has no text",
                  "write a text, or take the line out");
        else if (message.text.size() >= message_length_limit)
            error(where, "the text is longer than 32766 bytes", "shorten it");
        else if (const auto [old, is_new] = out_.messages.try_emplace(number, std::move(message));
                 !is_new)
            error(where,
                  "message " + std::to_string(number) + " is in line " +
                      std::to_string(old->second.where.line) + " already",
                  "give it another number, or take one of the two out");
    }

    bool read_message_number(int32_t &number) {
        const size_t end = std::min(line_.find_first_of(" \t"), line_.size());
        int64_t wide = 0;
        if (!read_number(line_.substr(0, end), wide))
            return error(
                here(), "expected a message number at the start of the line",
                "write a number and a blank; to continue the text above, end its line in a backslash");
        if (!std::in_range<int32_t>(wide))
            return error(here(), "the number does not fit 32 bits",
                         "numbers go from -2147483648 to 2147483647");
        number = static_cast<int32_t>(wide);
        column_ = std::min(end + 1, line_.size());
        return true;
    }

    // Goes to the last line of a message in which something is wrong.
    void skip_message() {
        while (line_number_ < out_.file.line_count() &&
               (line_.size() - (line_.find_last_not_of('\\') + 1)) % 2 == 1)
            go_to(line_number_ + 1);
    }

    bool read_text(source_message &message) {
        const source_position start = here();
        const bool quoted = quote_ != '\0' && !at_end() && line_[column_] == quote_;
        column_ += quoted ? 1 : 0;
        while (!at_end()) {
            if (quoted && line_[column_] == quote_)
                return nothing_follows_quote();
            if (!read_byte(message))
                return false;
        }
        return !quoted || error(start, "the quoted text does not end",
                                "close the quote, or continue the line with a backslash");
    }

    bool nothing_follows_quote() {
        ++column_;
        const size_t at = line_.find_first_not_of(" \t", column_);
        return at == std::string_view::npos ||
               error({line_number_, at + 1}, "unexpected text after the closing quote",
                     "put a backslash before a quote inside the text");
    }

    static void add(source_message &message, source_position where, char byte) {
        message.text += byte;
        message.places.push_back(where);
    }

    bool read_byte(source_message &message) {
        const char c = line_[column_];
        if (c == '\\')
            return read_escape(message);
        if (is_high(c) && target_ != code_set::as_it_is)
            return read_character(message);
        add(message, here(), c);
        ++column_;
        return true;
    }

    bool read_character(source_message &message) {
        uint32_t code = 0;
        const size_t length = decode_utf8(line_.substr(column_), code);
        if (length == 0)
            return error(here(), "this byte does not begin a character of UTF-8",
                         "save the source in UTF-8");
        if (target_ == code_set::utf_8) {
            for (const char c : line_.substr(column_, length))
                add(message, here(), c);
        } else if (code <= 0xFF) {
            add(message, here(), static_cast<char>(code));
        } else {
            said_.loss(out_.file, here(), "8859-1 does not have this character; '?' replaces it",
                       "write it in other characters");
            add(message, here(), '?');
        }
        column_ += length;
        return true;
    }

    bool read_escape(source_message &message) {
        const source_position where = here();
        ++column_;
        if (at_end())
            return continue_line(where);
        const char c = line_[column_];
        if (is_octal(c))
            return read_octal(message, where);
        ++column_;
        for (const auto &[letter, byte] : letter_escapes)
            if (c == letter) {
                add(message, where, byte);
                return true;
            }
        if (c != quote_)
            said_.warning(out_.file, where, "the backslash does not begin an escape and is dropped",
                          "write \\\\ for a backslash");
        --column_;
        return c == '\\' || read_plain(message);
    }

    // The byte after a dropped backslash.
    bool read_plain(source_message &message) {
        if (is_high(line_[column_]) && target_ != code_set::as_it_is)
            return read_character(message);
        add(message, here(), line_[column_++]);
        return true;
    }

    bool read_octal(source_message &message, source_position where) {
        unsigned value = 0;
        for (int digits = 0; digits < 3 && !at_end() && is_octal(line_[column_]); ++digits)
            value = value * 8 + static_cast<unsigned>(line_[column_++] - '0');
        if (value == 0 || value > 255)
            return error(where, "expected an octal number from 1 to 377",
                         "write it as \\1 to \\377");
        add(message, where, static_cast<char>(value));
        return true;
    }

    bool continue_line(source_position where) {
        if (line_number_ == out_.file.line_count())
            return error(where, "the last line is continued", "take the backslash out");
        go_to(line_number_ + 1);
        return true;
    }

    catalogue_source &out_;
    code_set target_;
    diagnostics &said_;
    size_t line_number_ = 0;
    std::string_view line_;
    size_t column_ = 0; // from 0
    char quote_ = '\0'; // 0 for none
    size_t set_line_ = 0;
};

void check_texts(const catalogue_source &source, const catalogue_source &declaring,
                 diagnostics &said) {
    for (const auto &[number, message] : source.messages)
        if (const auto found = find_misfit(message.text, declaring.arguments_of(number)))
            said.error(source.file, message.places[found->offset], found->what, found->remedy);
}

} // namespace

signature catalogue_source::arguments_of(int32_t number) const {
    const auto found = declarations.find(number);
    return found == declarations.end() ? signature{} : found->second.arguments;
}

catalogue_source parse_catalogue(source_file file, code_set target, diagnostics &said) {
    catalogue_source source = {std::move(file), {}, {}};
    const size_t errors_before = said.errors();
    parser(source, target, said).parse();
    if (source.messages.size() > message_count_limit)
        said.error(source.file, {}, "more than 32767 messages", "divide them among catalogues");
    if (source.messages.empty() && said.errors() == errors_before)
        said.error(source.file, {}, "the source holds no message", "write at least one");
    return source;
}

void check_arguments(const catalogue_source &source, diagnostics &said) {
    for (const auto &[number, declared] : source.declarations)
        if (!source.messages.contains(number))
            said.error(source.file, declared.where, "no message has this number",
                       "correct the number, or take the line out");
    check_texts(source, source, said);
}

void check_translation(const catalogue_source &source, const catalogue_source &english,
                       diagnostics &said) {
    for (const auto &[number, declared] : source.declarations)
        said.error(source.file, declared.where,
                   "arguments are declared by the English source alone", "take the line out");
    for (const auto &[number, message] : source.messages)
        if (!english.messages.contains(number))
            said.error(source.file, message.where, "the English source has no such message",
                       "correct the number, or take the message out");
    for (const auto &[number, message] : english.messages)
        if (!source.messages.contains(number))
            said.loss(source.file, {}, "message " + std::to_string(number) + " has no translation",
                      "translate it; the English text is used until then");
    check_texts(source, english, said);
}

} // namespace kestrion
