// The built-in table of code sets, which serves where the registry file can't be used.
//
// Numbers are part of file names and stored data: never renumber.

#include <kestrion/code_set_registry.h>

#include "base/ascii_class.h"

#include <iterator>
#include <string_view>

// clang-format off
constexpr gls_registry_row gls_canned_registry[] = {
    // name                number
    {"ascii",          0x016C},
    {"c",              0x0333},
    {"posix",          0x0333},
    {"unitedstates",   0x01B5},
    {"cp437",          0x01B5},
    {"8859-1",         0x0333},
    {"latin-1",        0x0333},
    {"korhstextsbcs",  0x0341},
    {"ccsid833",       0x0341},
    {"korhstdbcs",     0x0342},
    {"ccsid834",       0x0342},
    {"tchhstdbcs",     0x0343},
    {"ccsid835",       0x0343},
    {"schhstextsbcs",  0x0344},
    {"ccsid836",       0x0344},
    {"schhstdbcs",     0x0345},
    {"ccsid837",       0x0345},
    {"pc-latin-1",     0x0352},
    {"pc-latin-2",     0x0354},
    {"pc-data-hebrew", 0x0358},
    {"pc-hebrew-saa",  0x0358},
    {"pc-cyrillic",    0x0362},
    {"cis-1",          0x0362},
    {"pc866",          0x0362},
    {"8859-2",         0x0390},
    {"latin-2",        0x0390},
    {"cyrillic-8bit",  0x0393},
    {"ccsid932",       0x03A4},
    {"sjis-s",         0x03A4},
    {"pc-sjis",        0x03A4},
    {"korhstmxexsbcs", 0x03A5},
    {"csid933",        0x03A5},
    {"schmxexsbcs",    0x03A7},
    {"ccsid935",       0x03A7},
    {"tchhstmxexsbcs", 0x03A9},
    {"ccsid937",       0x03A9},
    {"tchhstexsbcs",   0x7025},
    {"ccsid28709",     0x740D},
    {"8859-3",         0xE002},
    {"latin-3",        0xE002},
    {"8859-4",         0xE003},
    {"latin-4",        0xE003},
    {"8859-5",         0x0393},
    {"latin-cyrillic", 0x0393},
    {"8859-6",         0x0441},
    {"latin-arabic",   0x0441},
    {"8859-7",         0x032D},
    {"latin-greek",    0x032D},
    {"8859-8",         0x0394},
    {"latin-hebrew",   0x0394},
    {"8859-9",         0x0398},
    {"latin-5",        0x0398},
    {"iso-7-german",   0x03F3},
    {"646de",          0x03F3},
    {"iso-7-danish",   0x03F9},
    {"pc1046",         0x0416},
    {"arabic-pc",      0x0416},
    {"unicode",        0xE005},
    {"east-europe",    0x04E2},
    {"cp1250",         0x04E2},
    {"pc-slavic",      0x04E3},
    {"cp1251",         0x04E3},
    {"west-europe",    0x04E4},
    {"cp1252",         0x04E4},
    {"pc-greek",       0x04E5},
    {"cp1253",         0x04E5},
    {"pc-latin5",      0x04E6},
    {"cp1254",         0x04E6},
    {"pc-turkish",     0x04E6},
    {"pc-hebrew",      0x04E7},
    {"cp1255",         0x04E7},
    {"pc-arabic",      0x04E8},
    {"cp1256",         0x04E8},
    {"sjis",           0xE006},
    {"shift-jis",      0xE006},
    {"ujis",           0xE007},
    {"eucjp",          0x13BA},
    {"big5",           0xE008},
    {"big-5",          0xE008},
    {"sbig5",          0xE009},
    {"shift-big-5",    0xE009},
    {"ccdc",           0xE00A},
    {"cccii",          0xE00B},
    {"greek",          0x02E1},
    {"greek",          0x02E1},
    {"ksc",            0xE00C},
    {"ks5601",         0xE00C},
    {"cp949",          0xE00C},
    {"gb",             0xE00D},
    {"gb2312-80",      0xE00D},
    {"ebcdic",         0x0025},
    {"ebcdic-us",      0x0025},
    {"chngcase",       0xE00E},
    {"banga",          0xE00F},
    {"shift1",         0xE010},
    {"rot13",          0xE011},
    {"swap0to9",       0xE012},
    {"pcwin",          0xE013},
    {"qacvtest",       0xE015},
    {"swap09-nl",      0xE016},
    {"qa-unix-client", 0xE017},
    {"qa-unix-server", 0xE018},
    {"qa-win-client",  0xE019},
    {"guobiao2312",    0xE00D},
    {"mik",            0xE01A},
    {"utf8",           0xE01C},
    {"thai",           0xE01D},
    {"thai620",        0xE01D},
    {"sopstw",         0xE01E},
    {"euctw",          0xE01F},
    {"cns",            0xE01F},
    {"cns-extended",   0xE022},
    {"eucxtw",         0xE022},
    {"tst",            0xE020},
    {"qa-win-950",     0xE021},
    {"qa-win-932",     0xE023},
    {"koi-8",          0xE026},
    {"csk",            0xE027},
    {"mazovia",        0xE028},
    {"maz",            0xE028},
    {"roman8",         0xE029},
    {"qa-win-unicode", 0xE02A},
    {"qa-unix-big5",   0xE02B},
    {nullptr,              0},
};
// clang-format on

namespace {

// "greek" is here twice; look-ups are in order, and the first of equal names wins.
static_assert(std::size(gls_canned_registry) == 123 + 1);

using kestrion::is_ascii_upper;

constexpr bool rows_are_well_formed() {
    for (size_t i = 0; i + 1 < std::size(gls_canned_registry); ++i) {
        const std::string_view name = gls_canned_registry[i].name;
        if (name.empty() || name.size() >= gl_code_set_name_size ||
            gls_canned_registry[i].number > 0xFFFF)
            return false;
        for (const char c : name) {
            if (is_ascii_upper(c))
                return false;
        }
    }
    return true;
}
static_assert(rows_are_well_formed());

} // namespace
