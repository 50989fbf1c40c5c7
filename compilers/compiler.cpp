#include "compilers/compiler.h"

#include "compilers/input_files.h"

#include <errno.h>
#include <exception>
#include <getopt.h>
#include <string.h>

namespace kestrion {

namespace {

constexpr const char *version_text = KESTRION_VERSION;

struct parsed_line {
    compiler_run run;
    bool losses_are_errors = false;
    bool help = false;
    bool version = false;
};

// The options of a compiler with those that all have in front.
std::vector<compiler_option> all_options(const compiler &self, parsed_line &line) {
    std::vector<compiler_option> options = {
        {"output", 'o', "FILE", "write to FILE, whole or not at all",
         [&](const std::string &value) { line.run.output = value; }},
        {"losses", 0, "FILE", "list in FILE what the output could not hold",
         [&](const std::string &value) { line.run.losses = value; }},
        {"werror", 0, "loss", "take a loss for an error: nothing is written",
         [&](const std::string &value) {
             if (value != "loss")
                 throw usage_error("--werror takes the word loss, not '" + value + "'");
             line.losses_are_errors = true;
         }},
        {"help", 'h', nullptr, "print this and end",
         [&](const std::string &) { line.help = true; }},
        {"version", 0, nullptr, "print the version and end",
         [&](const std::string &) { line.version = true; }},
    };
    options.insert(options.end(), self.options.begin(), self.options.end());
    return options;
}

void print_usage(const compiler &self, const std::vector<compiler_option> &options, FILE *stream) {
    fprintf(stream, "usage: %s %s\n%s\n\n", self.name, self.synopsis, self.summary);
    for (const compiler_option &option : options) {
        std::string left =
            option.letter != 0 ? std::string("  -") + option.letter + ", --" : "      --";
        left += option.name;
        if (option.value_name != nullptr)
            left += std::string("=") + option.value_name;
        fprintf(stream, "%-30s %s\n", left.c_str(), option.help);
    }
    fprintf(stream, "\nExit status: 0 written, 1 written with warnings or losses, 2 bad command "
                    "line,\n4 nothing written.\n");
}

// getopt_long's answer for a long option without a letter; above every character.
constexpr int first_long_value = 1000;

void parse(int argc, char **argv, const compiler &self, const std::vector<compiler_option> &options,
           parsed_line &line) {
    std::string letters = ":";
    std::vector<option> table;
    for (const compiler_option &own : options) {
        const int takes = own.value_name != nullptr ? required_argument : no_argument;
        table.push_back(
            {own.name, takes, nullptr, first_long_value + static_cast<int>(table.size())});
        if (own.letter != 0)
            letters +=
                own.value_name != nullptr ? std::string{own.letter, ':'} : std::string{own.letter};
    }
    table.push_back({});
    opterr = 0;
    optind = 0; // starts afresh: a process may parse more than one command line
    for (int c; (c = getopt_long(argc, argv, letters.c_str(), table.data(), nullptr)) != -1;) {
        if (c == ':')
            throw usage_error(std::string("option '") + argv[optind - 1] + "' needs a value");
        const compiler_option *found = nullptr;
        for (size_t i = 0; i < options.size(); ++i)
            if (c == first_long_value + static_cast<int>(i) || (c != 0 && c == options[i].letter))
                found = &options[i];
        if (found == nullptr) // a letter may follow others in its word
            throw usage_error("option '" +
                              (optopt > 0 && optopt < first_long_value
                                   ? std::string{'-', static_cast<char>(optopt)}
                                   : std::string(argv[optind - 1])) +
                              "' is unknown");
        found->set(optarg != nullptr ? optarg : "");
    }
    line.run.sources.assign(argv + optind, argv + argc);
    if (line.help || line.version)
        return;
    if (line.run.sources.size() < self.least_sources)
        throw usage_error("no source is named");
    if (line.run.sources.size() > self.most_sources)
        throw usage_error("'" + line.run.sources[self.most_sources] + "' is one source too many");
}

exit_status compile_and_write(const compiler &self, const parsed_line &line, FILE *messages) {
    diagnostics said(messages);
    if (line.losses_are_errors)
        said.make_losses_errors();
    std::vector<output_file> files = self.compile(line.run, said);
    if (said.failed())
        return said.status();
    if (!line.run.losses.empty())
        files.insert(files.begin(), {line.run.losses, said.loss_list()});
    write_output_files(files);
    return said.status();
}

exit_status run_compiler(int argc, char **argv, const compiler &self, FILE *messages) {
    parsed_line line;
    const std::vector<compiler_option> options = all_options(self, line);
    forget_input_files();
    try {
        parse(argc, argv, self, options, line);
        if (line.help)
            print_usage(self, options, stdout);
        else if (line.version)
            printf("%s %s\n", self.name, version_text);
        else
            return compile_and_write(self, line, messages);
        if (fflush(stdout) != 0)
            throw compiler_failure(std::string("cannot write the standard output: ") +
                                   strerror(errno));
        return exit_status::written;
    } catch (const usage_error &error) {
        fprintf(messages, "%s: %s\nusage: %s %s\nsee '%s --help'\n", self.name, error.what(),
                self.name, self.synopsis, self.name);
        return exit_status::usage;
    } catch (const std::exception &error) {
        fprintf(messages, "%s: %s\n", self.name, error.what());
        return exit_status::nothing_written;
    }
}

} // namespace

int compiler_main(int argc, char **argv, const compiler &self, FILE *messages) {
    return static_cast<int>(run_compiler(argc, argv, self, messages));
}

} // namespace kestrion
