// The frame of every compiler: command line, exit status, and the writing of its files.
//
// A compiler describes itself in one record and has one function that turns sources into the bytes
// of its output files. The frame does the rest, so that all of them behave alike:
//
//     std::vector<output_file> compile(const compiler_run &run, diagnostics &said);
//     int main(int argc, char **argv) {
//         return compiler_main(argc, argv, {.name = "mkx", .synopsis = "-o FILE SOURCE",
//                                           .summary = "...", .compile = compile});
//     }
//
// Options that all have: -o/--output FILE, --losses FILE, --werror=loss, -h/--help, --version.
// Short and long options may come before and after the sources.

#pragma once

#include "compilers/diagnostics.h"
#include "compilers/output_file.h"

#include <functional>
#include <string>
#include <vector>

namespace kestrion {

// An option of one compiler's own: --name, and -letter when letter is not 0.
struct compiler_option {
    const char *name;
    char letter;
    const char *value_name;                            // null: the option takes no value
    const char *help;                                  // one line
    std::function<void(const std::string &value)> set; // may throw usage_error
};

// What the command line says.
struct compiler_run {
    std::vector<std::string> sources; // in their order
    std::string output;               // of -o; empty when it was not given
    std::string losses;               // of --losses; empty: no list is written
};

struct compiler {
    const char *name;     // "mkqem"
    const char *synopsis; // follows the name in the usage line
    const char *summary;  // one sentence
    size_t least_sources = 1;
    size_t most_sources = 1;
    std::vector<compiler_option> options = {};
    // Turns the sources into files, which the frame writes unless something failed, with the list
    // of losses before them. What is wrong with a source goes to `said`. May throw usage_error when
    // options do not go together, and compiler_failure.
    std::function<std::vector<output_file>(const compiler_run &run, diagnostics &said)> compile;
};

// Runs a compiler and returns the number of its exit_status. Diagnostics go to `messages`.
int compiler_main(int argc, char **argv, const compiler &self, FILE *messages = stderr);

} // namespace kestrion
