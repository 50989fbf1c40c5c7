// Walking UTF-8 text through a multi table of all its characters, beside the library's mbrlen, and
// reading that table from its text form.

#include "gls/multi/multi_tree.h"
#include <kestrion/multi_file.h>

#include <benchmark/benchmark.h>
#include <locale.h>
#include <string.h>
#include <string>
#include <wchar.h>

namespace {

std::string utf8(uint32_t code) {
    std::string text;
    const auto add = [&](uint32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (code < 0x80) {
        add(code);
    } else if (code < 0x800) {
        add(0xC0 | code >> 6);
        add(0x80 | (code & 63));
    } else if (code < 0x10000) {
        add(0xE0 | code >> 12);
        add(0x80 | (code >> 6 & 63));
        add(0x80 | (code & 63));
    } else {
        add(0xF0 | code >> 18);
        add(0x80 | (code >> 12 & 63));
        add(0x80 | (code >> 6 & 63));
        add(0x80 | (code & 63));
    }
    return text;
}

// All characters up to the last of the planes in use, in classes that change every few characters
// in the alphabets and seldom after them.
multi_arr *utf8_table() {
    const uint16_t none = 0;
    multi_arr *const table = _gl_create_multi(2, 0, &none);
    for (uint32_t code = 0; code < 0x30000; ++code) {
        if (code >= 0xD800 && code < 0xE000)
            continue;
        const uint16_t mask = static_cast<uint16_t>(
            code < 0x3000 ? 0x100 | (code * 2654435761u >> 30) : 0x100 | code >> 13);
        const std::string bytes = utf8(code);
        gl_char_desc desc = {.length = static_cast<int32_t>(bytes.size()), .bytes = {}};
        memcpy(desc.bytes, bytes.data(), bytes.size());
        _gl_insert_desc_multi(&desc, &mask, table);
    }
    _gl_compress_multi(table);
    return table;
}

multi_arr *tree_table() {
    static multi_arr *const table = utf8_table();
    return table;
}

multi_arr *flat_table() {
    static multi_arr *const table = [] {
        multi_arr *const made = utf8_table();
        kestrion::multi_flatten(made);
        return made;
    }();
    return table;
}

struct sample {
    std::string text;
    int64_t characters;
};

// Texts by what they are made of: 0 ASCII, 1 Latin with accents, 2 Japanese.
const sample &text_of(int64_t kind) {
    static const sample *const texts = [] {
        static sample made[3];
        for (uint32_t i = 0; i < 65536; ++i) {
            const uint32_t dice = i * 2654435761u >> 16;
            made[0].text += utf8(0x61 + dice % 26);
            made[1].text += utf8(dice % 5 == 0 ? 0xE0 + dice % 32 : 0x61 + dice % 26);
            made[2].text += utf8(dice % 3 == 0 ? 0x4E00 + dice % 5000 : 0x3041 + dice % 80);
        }
        for (sample &one : made)
            one.characters = 65536;
        return made;
    }();
    return texts[kind];
}

void count(benchmark::State &state) {
    state.SetItemsProcessed(state.iterations() * text_of(state.range(0)).characters);
}

void retrieve(benchmark::State &state, const multi_arr *table) {
    const std::string &text = text_of(state.range(0)).text;
    int32_t word = 0;
    for (auto _ : state) {
        uint32_t masks = 0;
        for (const char *at = text.c_str(); *at != 0;) {
            int32_t used;
            masks |=
                *static_cast<const uint16_t *>(_gl_retrieve_text_multi(at, table, &used, &word));
            at += used;
        }
        benchmark::DoNotOptimize(masks);
    }
    count(state);
}
void retrieve_flat(benchmark::State &state) { retrieve(state, flat_table()); }
void retrieve_tree(benchmark::State &state) { retrieve(state, tree_table()); }
BENCHMARK(retrieve_flat)->DenseRange(0, 2);
BENCHMARK(retrieve_tree)->DenseRange(0, 2);

void peer_mbrlen(benchmark::State &state) {
    setlocale(LC_CTYPE, "C.UTF-8");
    const std::string &text = text_of(state.range(0)).text;
    for (auto _ : state) {
        size_t lengths = 0;
        for (const char *at = text.c_str(); *at != 0;) {
            mbstate_t shift = {};
            const size_t used = mbrlen(at, 4, &shift);
            lengths += used;
            at += used;
        }
        benchmark::DoNotOptimize(lengths);
    }
    count(state);
}
BENCHMARK(peer_mbrlen)->DenseRange(0, 2);

void read_table(benchmark::State &state) {
    char *text = nullptr;
    size_t size = 0;
    FILE *const out = open_memstream(&text, &size);
    _gl_fprintf_multi(out, tree_table(), ub2_writer);
    fclose(out);
    const uint16_t none = 0;
    for (auto _ : state) {
        FILE *const in = fmemopen(text, size, "r");
        multi_arr *const table = _gl_create_multi(2, 0, &none);
        if (_gl_fscanf_multi(in, table, 4, ub2_reader) != 0)
            state.SkipWithError("refused");
        _gl_free_multi(table);
        fclose(in);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(size));
    free(text);
}
BENCHMARK(read_table)->Unit(benchmark::kMillisecond);

void flatten(benchmark::State &state) {
    multi_arr *const table = utf8_table();
    for (auto _ : state)
        benchmark::DoNotOptimize(kestrion::multi_flatten(table));
    _gl_free_multi(table);
}
BENCHMARK(flatten)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
