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

void take_key(char *value) {
    const size_t length = strlen(value);
    if (length >= access_key_size) {
        fprintf(stderr, "Maximum access key length exceeded %d characters\n",
                static_cast<int>(access_key_size - 1));
        leave(status_failure);
    }
    explicit_bzero(key_input, sizeof key_input); // an earlier, longer key
    memcpy(key_input, value, length + 1);
    explicit_bzero(value, length);
}

void take_option(char letter, char *value) {
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
        take_key(value);
        break;
    default:
        usage();
    }
}

} // namespace

namespace kestrion {

void usage() {
    print_message(s_pwusage, nullptr);
    fputs(usage_examples, stderr);
    leave(status_failure);
}

void read_options() {
    for (int i = 1; i < run.argc; i += 2) {
        const char *word = run.argv[i];
        if (word[0] != '-' || strlen(word) != 2 || strchr("edk", word[1]) == nullptr)
            usage();
        if (i + 1 >= run.argc)
            usage();
        take_option(word[1], run.argv[i + 1]);
    }
    if (inputfile_path[0] == '\0' || outputfile_path[0] == '\0')
        usage();
}

} // namespace kestrion
