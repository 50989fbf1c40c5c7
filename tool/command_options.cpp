#include "tool/command_options.h"

#include "passwords/message_texts.h"
#include "tool/command_run.h"

#include <stdio.h>
#include <string.h>

namespace {

using namespace kestrion;

constexpr char sealed_name[] = "/etc/passwd_file";

constexpr char usage_examples[] =
    "\tExample: pwsealtool -k <access_key> -e <input_filename>\n"
    "      Encrypts <input_filename> and creates the encrypted file $KESTRIONDIR/etc/passwd_file\n"
    "\tExample: pwsealtool -k <access_key> -d <output_filename>\n"
    "      Decrypts the file $KESTRIONDIR/etc/passwd_file and saves the decrypted output in "
    "<output_filename>\n";

// `other` becomes the path of the sealed file.
void take_file_name(const char *value, char *path, char *other) {
    const size_t length = strlen(value);
    if (length >= file_name_size)
        error("file name (%s) too long\n", value);
    memcpy(path, value, length + 1);
    if (strlen(qvtxdir) + sizeof sealed_name > file_name_size)
        error("file name (%s%s) too long\n", qvtxdir, sealed_name);
    snprintf(other, file_name_size, "%s%s", qvtxdir, sealed_name);
}

// Place in the arguments of a key that is too long; 0 for none.
constinit int too_long_key = 0;

bool is_option(const char *word) {
    return word[0] == '-' && strlen(word) == 2 && strchr("edk", word[1]) != nullptr;
}

// `place` is that of the value in the arguments.
void check_key(int place) {
    if (place != too_long_key)
        return;
    fprintf(stderr, "Maximum access key length exceeded %d characters\n",
            static_cast<int>(access_key_size - 1));
    leave(status_failure);
}

void take_option(char letter, int place) {
    char *value = run.argv[place];
    switch (letter) {
    case 'e':
        op_mode = OP_ENCRYPT;
        take_file_name(value, inputfile_path, outputfile_path);
        break;
    case 'd':
        op_mode = OP_DECRYPT;
        take_file_name(value, outputfile_path, inputfile_path);
        break;
    case 'k':
        check_key(place);
        break;
    default:
        usage();
    }
}

} // namespace

namespace kestrion {

// Follows the reading of the options below, which ends at the first word that is not one and at a
// key that is too long. What looks like a key after that place is blanked as well.
void take_keys(int argc, char **argv) {
    int place = 2;
    for (; place < argc && is_option(argv[place - 1]) && too_long_key == 0; place += 2) {
        if (argv[place - 1][1] != 'k')
            continue;
        const size_t length = strlen(argv[place]);
        if (length < access_key_size)
            memcpy(key_input, argv[place], length + 1);
        else
            too_long_key = place;
        explicit_bzero(argv[place], length);
    }
    for (int rest = argc - 1; rest >= place; --rest) // from the end, since a value may be "-k"
        if (strcmp(argv[rest - 1], "-k") == 0)
            explicit_bzero(argv[rest], strlen(argv[rest]));
}

void usage() {
    print_message(s_pwusage, nullptr);
    fputs(usage_examples, stderr);
    leave(status_failure);
}

void read_options() {
    for (int i = 1; i < run.argc; i += 2) {
        const char *word = run.argv[i];
        if (!is_option(word) || i + 1 >= run.argc)
            usage();
        take_option(word[1], i + 1);
    }
    if (inputfile_path[0] == '\0' || outputfile_path[0] == '\0')
        usage();
}

} // namespace kestrion
