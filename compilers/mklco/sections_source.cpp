#include "compilers/mklco/sections_source.h"

#include "compilers/mklco/time_format.h"
#include <kestrion/locale_rec.h>

#include <algorithm>
#include <array>
#include <optional>

namespace kestrion {
namespace {

constexpr size_t most_alternative_digits = 100;
constexpr int64_t source_group_end = 127; // the other way to write -1
constexpr size_t hebrew_month_names = 13; // from Tishri, with Adar I of leap years at index 5

// Keywords whose data the object has no place for and nobody misses.
constexpr std::string_view passed_over[] = {
    "week",     "first_weekday", "first_workday", "cal_direction",
    "timezone", "date_fmt",      "alt_mon",       "ab_alt_mon",
};

// Positions of international amounts, and those of local ones that serve for both.
struct shared_position {
    std::string_view international, local;
};
constexpr shared_position shared_positions[] = {
    {"int_p_cs_precedes", "p_cs_precedes"},   {"int_n_cs_precedes", "n_cs_precedes"},
    {"int_p_sep_by_space", "p_sep_by_space"}, {"int_n_sep_by_space", "n_sep_by_space"},
    {"int_p_sign_posn", "p_sign_posn"},       {"int_n_sign_posn", "n_sign_posn"},
};

// The greatest value of a field, by the end of its keyword; the least is -1, for none.
struct number_range {
    std::string_view ending;
    int64_t greatest;
};
constexpr number_range number_ranges[] = {
    {"frac_digits", 126},
    {"cs_precedes", 1},
    {"sep_by_space", 2},
    {"sign_posn", 4},
};

bool is_format(std::string_view keyword) { return keyword.find("_fmt") != std::string_view::npos; }

class sections_compiler {
public:
    sections_compiler(source_library &library, const locale_source &source, text_encoder &encoder,
                      diagnostics &said, locale_object &object)
        : library_(library), source_(source), encoder_(encoder), said_(said), object_(object) {}

    void read(object_section section);
    void tell_losses();

private:
    struct international_position {
        const shared_position *names;
        int64_t value;
        source_place place;
    };

    void statement(object_section section, const source_statement &statement);
    void set(const object_field &field, const source_statement &statement,
             object_field_value &value);
    void set_texts(const object_field &field, const source_statement &statement,
                   std::vector<size_t> operands, object_field_value &value);
    void set_defaults(const object_field &field, object_field_value &value) const;
    void complete_twelve_hours();
    void check_symbol(const source_statement &statement);
    void set_era_formats();
    size_t text_count(const object_field &field) const;
    std::string era(const source_statement &statement, size_t token);
    std::string text(const source_statement &statement, size_t token, bool format);
    static int64_t number(const source_statement &statement, size_t token);
    static int64_t amount_number(const source_statement &statement);
    static std::vector<int64_t> groups(const source_statement &statement,
                                       const std::vector<size_t> &operands);

    source_library &library_;
    const locale_source &source_;
    text_encoder &encoder_;
    diagnostics &said_;
    locale_object &object_;
    std::vector<international_position> international_;
    source_place mon_separator_;
    bool copied_ = false; // the statement before came from another source
};

// The operands of a statement, between semicolons.
std::vector<size_t> operands_of(const source_statement &statement) {
    std::vector<size_t> operands;
    for (size_t i = 1; i < statement.tokens.size(); ++i) {
        bool separator = statement.tokens[i].kind == token_kind::semicolon;
        if (separator == (i % 2 != 0))
            throw source_error(statement.place(i),
                               separator ? "expected an operand" : "expected a semicolon",
                               "separate the operands by ;");
        if (!separator)
            operands.push_back(i);
    }
    return operands;
}

void sections_compiler::read(object_section section) {
    const char *name = section_name(section);
    copied_ = false;
    library_.for_each_statement(source_, name,
                                [&](const source_statement &s) { statement(section, s); });
    for (size_t i = 0; i < object_field_count; ++i)
        if (object_fields[i].section == section)
            set_defaults(object_fields[i], object_.fields[i]);
    if (section == object_section::time) {
        complete_twelve_hours();
        set_era_formats();
    }
}

// A locale with texts for both halves of the day can write the time by them.
void sections_compiler::complete_twelve_hours() {
    std::string &format = object_.field(object_section::time, "t_fmt_ampm").texts[0];
    const std::vector<std::string> &halves = object_.field(object_section::time, "am_pm").texts;
    if (format.empty() && !halves[0].empty() && !halves[1].empty())
        format = encoder_.encode_ascii("%I:%M:%S %p");
}

void sections_compiler::statement(object_section section, const source_statement &statement) {
    std::string_view keyword = statement.keyword();
    if (copied_ && statement.source == &source_)
        said_.warning(source_.file(), statement.place().position(),
                      std::string(keyword) + " follows a copy",
                      "remove the line or the copy; elsewhere a copy is alone in its category");
    copied_ = statement.source != &source_;
    for (size_t i = 0; i < object_field_count; ++i)
        if (object_fields[i].section == section && object_fields[i].keyword == keyword)
            return set(object_fields[i], statement, object_.fields[i]);
    for (const shared_position &names : shared_positions)
        if (keyword == names.international) {
            international_.push_back({&names, amount_number(statement), statement.place()});
            return;
        }
    if (std::find(std::begin(passed_over), std::end(passed_over), keyword) == std::end(passed_over))
        said_.warning(statement.source->file(), statement.place().position(),
                      "unknown keyword " + std::string(statement.tokens[0].text) + " is ignored",
                      "remove it");
}

int64_t sections_compiler::number(const source_statement &statement, size_t token) {
    if (token >= statement.tokens.size() || statement.tokens[token].kind != token_kind::number)
        throw source_error(statement.place(token), "expected a number",
                           "give a decimal number, or -1 for none");
    return statement.tokens[token].number;
}

// The one operand of a field of LC_MONETARY.
int64_t sections_compiler::amount_number(const source_statement &statement) {
    if (operands_of(statement).size() > 1)
        throw source_error(statement.place(3), "one number too many", "give one");
    int64_t found = number(statement, 1);
    if (found == source_group_end) // the other way to write -1, here as well
        found = -1;
    for (const number_range &range : number_ranges)
        if (statement.keyword().ends_with(range.ending) && (found < -1 || found > range.greatest))
            throw source_error(statement.place(1), "this number is out of range",
                               "give -1 for none, or 0 to " + std::to_string(range.greatest));
    return found;
}

std::string sections_compiler::text(const source_statement &statement, size_t token, bool format) {
    std::vector<text_element> elements = statement.source->elements(statement.tokens[token]);
    const bool empty = elements.empty();
    if (format)
        elements = rewrite_format(*statement.source, elements);
    if (elements.empty() && !empty)
        said_.warning(statement.source->file(), statement.place(token).position(),
                      "nothing is left of this format", "use conversions that the formatter has");
    return encoder_.encode(*statement.source, elements, format ? text_use::format : text_use::name);
}

// The sizes of a source end in one that repeats or in -1; those of the object end in 0 when the
// last one repeats.
std::vector<int64_t> sections_compiler::groups(const source_statement &statement,
                                               const std::vector<size_t> &operands) {
    std::vector<int64_t> sizes;
    for (size_t token : operands) {
        int64_t size = number(statement, token);
        if (size == 0)
            break;
        if (size < -1 || size > source_group_end)
            throw source_error(statement.place(token),
                               "expected the size of a digit group, 1 to 126",
                               "write -1 for no more groups");
        if (size == -1 || size == source_group_end) {
            sizes.push_back(-1);
            return sizes;
        }
        sizes.push_back(size);
    }
    while (sizes.size() > 1 && sizes.back() == sizes[sizes.size() - 2])
        sizes.pop_back();
    if (!sizes.empty())
        sizes.push_back(0);
    if (sizes.size() > size_t{gl_group_limit})
        throw source_error(statement.place(), "too many sizes of digit groups", "give 14 at most");
    return sizes;
}

// How many texts a field has; 0 for a list of any length.
size_t sections_compiler::text_count(const object_field &field) const {
    const bool months = field.kind == field_kind::counted && field.count != 0;
    const bool hebrew = object_.field(object_section::time, "calendar").texts[0] == "hebrew";
    return months && hebrew ? hebrew_month_names : field.count;
}

void sections_compiler::set_texts(const object_field &field, const source_statement &statement,
                                  std::vector<size_t> operands, object_field_value &value) {
    std::string_view keyword = field.keyword;
    if (keyword == "alt_digits" && operands.size() > most_alternative_digits) {
        said_.loss(statement.source->file(),
                   statement.place(operands[most_alternative_digits]).position(),
                   "alternative digits from the hundred-and-first on are left out",
                   "the object holds those of 0 to 99");
        operands.resize(most_alternative_digits);
    }
    const size_t count = text_count(field);
    const bool list = field.kind == field_kind::counted && count == 0;
    if (!list && operands.size() != count)
        throw source_error(
            statement.place(),
            std::string(keyword) + " has " + std::to_string(operands.size()) + " texts",
            "give " + std::to_string(count) +
                (count == hebrew_month_names
                     ? ": the months of the Hebrew calendar from Tishri, Adar I the sixth"
                     : ""));
    value.texts.clear();
    for (size_t token : operands) {
        value.texts.push_back(keyword == "era" ? era(statement, token)
                                               : text(statement, token, is_format(keyword)));
        if (value.texts.back().size() > max_text_length)
            throw source_error(statement.place(token), too_long_text(value.texts.back()),
                               "shorten it");
    }
    if (list && value.texts.size() == 1 && value.texts[0].empty())
        value.texts.clear();
}

// The code of the currency and what separates it from the amount.
void sections_compiler::check_symbol(const source_statement &statement) {
    constexpr size_t symbol_length = 4;
    const size_t token = std::min<size_t>(1, statement.tokens.size() - 1);
    const size_t length = statement.source->elements(statement.tokens[token]).size();
    if (length != 0 && length != symbol_length)
        said_.warning(statement.source->file(), statement.place(token).position(),
                      "expected 4 characters, not " + std::to_string(length),
                      "write the three letters of the currency and a separator");
}

void sections_compiler::set(const object_field &field, const source_statement &statement,
                            object_field_value &value) {
    std::vector<size_t> operands = operands_of(statement);
    std::string_view keyword = field.keyword;
    if (keyword == "mon_thousands_sep")
        mon_separator_ = statement.place();
    if (keyword == "int_curr_symbol")
        check_symbol(statement);
    if (field.kind == field_kind::integer)
        value.numbers = {amount_number(statement)};
    else if (field.kind == field_kind::group)
        value.numbers = groups(statement, operands);
    else if (field.kind != field_kind::line)
        set_texts(field, statement, std::move(operands), value);
}

void sections_compiler::set_defaults(const object_field &field, object_field_value &value) const {
    std::string_view keyword = field.keyword;
    if (field.kind == field_kind::integer) {
        if (value.numbers.empty())
            value.numbers = {-1};
        // An amount without a known layout would come out empty.
        if (value.numbers[0] == -1 && !keyword.ends_with("frac_digits"))
            value.numbers[0] = keyword.ends_with("sep_by_space") ? 0 : 1;
    } else if (field.kind == field_kind::texts ||
               (field.kind == field_kind::counted && field.count != 0)) {
        bool sign = field.section == object_section::numeric && value.texts.empty();
        value.texts.resize(text_count(field));
        if (sign && keyword == "positive_sign")
            value.texts[0] = encoder_.encode_ascii("+");
        if (sign && keyword == "negative_sign")
            value.texts[0] = encoder_.encode_ascii("-");
    }
}

// A date of an era as a number that orders; false for "+*", "-*" and what the runtime takes for
// none.
bool era_date(std::string_view text, int64_t &date) {
    const bool negative = text.starts_with('-');
    std::array<int64_t, 3> part{};
    size_t at = negative ? 1 : 0;
    for (size_t i = 0; i < part.size(); ++i) {
        if (i > 0 && (at == text.size() || text[at++] != '/'))
            return false;
        const size_t first = at, most = i == 0 ? 9 : 2; // digits
        while (at < text.size() && text[at] >= '0' && text[at] <= '9' && at - first < most)
            part[i] = part[i] * 10 + (text[at++] - '0');
        if (at == first)
            return false;
    }
    date = (negative ? -part[0] : part[0]) * 512 + part[1] * 32 + part[2];
    return at == text.size() && part[1] >= 1 && part[1] <= 12 && part[2] >= 1 && part[2] <= 31;
}

// A date with the year counted through. Sources have no year 0: the year before 1 is -1, and the
// runtime's 0.
std::string with_year_0(std::string_view date) {
    if (!date.starts_with('-'))
        return std::string(date);
    std::string shifted(date.substr(1));
    const size_t digits = shifted.find('/');
    const std::string year = std::to_string(std::stoi(shifted) - 1);
    if (shifted.find_first_not_of('0') == digits)
        return shifted; // -0 is 0
    shifted.replace(0, digits, std::string(digits - year.size(), '0') + year);
    return shifted.find_first_not_of('0') == digits ? shifted : "-" + shifted;
}

std::string sections_compiler::era(const source_statement &statement, size_t token) {
    const locale_source &from = *statement.source;
    std::vector<text_element> elements = from.elements(statement.tokens[token]);
    if (elements.empty())
        return {};
    std::array<std::vector<text_element>, 6> fields;
    std::array<std::string, 4> plain; // direction, offset, start and end as ASCII
    size_t at = 0;
    for (const text_element &element : elements) {
        bool character = element.is == text_element::kind::code_point;
        if (character && element.value == ':' && at < 5) {
            ++at;
            continue;
        }
        fields[at].push_back(element);
        if (at < plain.size())
            plain[at] += character && element.value < 0x80 ? static_cast<char>(element.value) : '?';
    }
    int64_t start = 0, end = 0;
    bool open_end = plain[3] == "+*" || plain[3] == "-*";
    bool number =
        plain[1].size() - 1 < 9 && plain[1].find_first_not_of("0123456789") == std::string::npos;
    if (at != 5 || (plain[0] != "+" && plain[0] != "-") || !number || !era_date(plain[2], start) ||
        (!open_end && !era_date(plain[3], end)))
        throw source_error(
            statement.place(token), "this is no era",
            "write \"direction:offset:start:end:name:format\" with dates as year/month/day");
    bool backward = open_end ? plain[3] == "-*" : end < start;
    std::string name = encoder_.encode(from, fields[4], text_use::name);
    std::string format = encoder_.encode(from, rewrite_format(from, fields[5]), text_use::format);
    std::string colon = encoder_.encode_ascii(":");
    std::string text = encoder_.encode_ascii(backward ? "-" : "+");
    const std::string end_text = open_end ? plain[3] : with_year_0(plain[3]);
    for (const std::string &part : {plain[1], with_year_0(plain[2]), end_text})
        text.append(colon).append(encoder_.encode_ascii(part));
    return text.append(colon).append(name).append(colon).append(name).append(colon).append(format);
}

// An era form that the source leaves out is the plain one, so that a format which asks for it still
// says something.
void sections_compiler::set_era_formats() {
    constexpr struct {
        std::string_view era, plain;
    } formats[] = {{"era_d_fmt", "d_fmt"}, {"era_t_fmt", "t_fmt"}, {"era_d_t_fmt", "d_t_fmt"}};
    if (object_.field(object_section::time, "era").texts.empty())
        return;
    for (const auto &format : formats) {
        std::string &text = object_.field(object_section::time, format.era).texts[0];
        if (text.empty())
            text = object_.field(object_section::time, format.plain).texts[0];
    }
}

void sections_compiler::tell_losses() {
    for (const international_position &position : international_) {
        int64_t local = object_.field(object_section::monetary, position.names->local).numbers[0];
        if (position.value != local && position.value != -1)
            said_.loss(*position.place.file, position.place.position(),
                       std::string(position.names->international) + " is left out",
                       "international amounts are laid out as local ones");
    }
    const std::string &separator = object_.field(object_section::numeric, "thousands_sep").texts[0];
    if (mon_separator_.file != nullptr &&
        object_.field(object_section::monetary, "mon_thousands_sep").texts[0] != separator)
        said_.loss(*mon_separator_.file, mon_separator_.position(),
                   "amounts will have the thousands_sep of LC_NUMERIC", "make the two the same");
}

} // namespace

void compile_sections(source_library &library, const locale_source &source, text_encoder &encoder,
                      diagnostics &said, const std::string &calendar, locale_object &object) {
    sections_compiler compiler(library, source, encoder, said, object);
    object.field(object_section::time, "calendar").texts = {calendar};
    for (object_section section : {object_section::numeric, object_section::monetary,
                                   object_section::time, object_section::messages})
        compiler.read(section);
    if (object.field(object_section::numeric, "decimal_point").texts[0].empty())
        said.warning(source.file(), {}, "LC_NUMERIC has no decimal_point",
                     "numbers are written without one; name it");
    compiler.tell_losses();
}

} // namespace kestrion
