#include "env/place_variables.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace {

// In the order of their names.
constexpr std::string_view place_variables[] = {
    "AC_PROG",
    "CDR_PERFLOG",
    "COMSPEC",
    "DBEDIT",
    "DBFORM",
    "DBLANG",
    "DBMENU",
    "DBONPLOAD",
    "DBPATH",
    "DBPRINT",
    "DBREMOTECMD",
    "DBSCREENDUMP",
    "DBSCREENDUMPMB",
    "DBSCREENOUT",
    "DBSPACETEMP",
    "DBTEMP",
    "DEBUG_2PCFILE",
    "DUMPDIR",
    "GLSDEBUG",
    "GLSLOG",
    "GL_CV_PATH",
    "GL_PATH",
    "HOME",
    "HOMEDRIVE",
    "HOMEPATH",
    "INTLMSGDIR",
    "JAVA_HOME",
    "KESTRIONBROWSER",
    "KESTRIONCONCSMCFG",
    "KESTRIONCPPMAP",
    "KESTRIONDIR",
    "KESTRIONKEYTAB",
    "KESTRIONSQLHOSTS",
    "LD_LIBRARY_PATH",
    "LIBISI_NAME",
    "LIBPATH",
    "ODBCINI",
    "ONCONFIG",
    "ONLOG",
    "ONLOGOUTPUT",
    "OPENWINHOME",
    "PATH",
    "PLCONFIG",
    "PLOAD_LO_PATH",
    "PSORT_DBTEMP",
    "QVTODBCTRACE",
    "QVTODBCTRACEFILE",
    "QVTOLEDBTRACE",
    "SHELL",
    "SHLIB_PATH",
    "SQEXPLAIN",
    "SQLEXEC",
    "SQLHOSTS",
    "TBCONFIG",
    "TEMP",
    "TERMCAP",
    "TMP",
    "VSMDIR",
    "XAPPLRESDIR",
    "XENVIRONMENT",
};
static_assert(std::is_sorted(std::begin(place_variables), std::end(place_variables)));

} // namespace

namespace kestrion {

bool is_place_variable(const char *name) {
    return std::binary_search(std::begin(place_variables), std::end(place_variables),
                              std::string_view(name));
}

} // namespace kestrion
