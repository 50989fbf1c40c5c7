// The derived tables against the routine that they replace, on random tables and texts.

#include "gls/conversion/conversion_objects.h"
#include "gls/multi/multi_reference.h"
#include "support/guarded_bytes.h"
#include <kestrion/conversion.h>

#include <random>

namespace {

using generator = std::mt19937;

struct random_pair {
    conversion_entries entries;
    std::vector<std::string> sources;
};

// Characters of up to `longest` bytes whose trail bytes lie in one quarter or all over.
random_pair random_entries(generator &random, unsigned longest, unsigned widest) {
    random_pair pair;
    const bool ascii = random() % 2 != 0;
    for (int b = 0; ascii && b < 128; ++b)
        pair.entries[std::string(1, static_cast<char>(b))] =
            std::string(b == 0 ? "\x19" : "\x11") + static_cast<char>(b);
    const bool quarter = random() % 2 != 0;
    for (int i = 0; i < 400; ++i) {
        std::string source(random() % longest + 1, '\0');
        for (size_t k = 0; k < source.size(); ++k)
            source[k] =
                static_cast<char>(k != 0 && quarter ? 0x80 + random() % 64 : random() % 255 + 1);
        bool clash = false;
        for (const auto &[other, datum] : pair.entries)
            clash = clash || are_prefixes(source, other);
        if (clash)
            continue;
        const unsigned count =
            longest == 1 && widest == 1 ? 1 : static_cast<unsigned>(random() % (widest + 1));
        std::string datum(1, static_cast<char>(16 | (random() % 8 == 0 ? 32 : 0) | count));
        for (unsigned k = 0; k < count; ++k)
            datum += static_cast<char>(random());
        if (random() % 60 == 0)
            datum.assign(1, '\0');
        if (random() % 200 == 0)
            datum[0] = static_cast<char>(datum[0] | CV_TERMINATOR);
        pair.entries[source] = datum;
    }
    for (const auto &[source, datum] : pair.entries)
        pair.sources.push_back(source);
    return pair;
}

std::string random_text(generator &random, const random_pair &pair) {
    std::string text;
    const size_t characters = random() % 150;
    const bool sound = random() % 3 != 0;
    while (text.size() < characters) {
        const std::string &source = pair.sources[random() % pair.sources.size()];
        if (sound && (pair.entries.at(source)[0] & ~7) == 0)
            continue;
        text += random() % 3 == 0 ? std::string(random() % 20, 'e') : source;
        if (!sound && random() % 50 == 0)
            text += static_cast<char>(random());
    }
    return text;
}

TEST(ConversionFast, AnswersAreThoseOfThePlainRoutine) {
    generator random(7);
    const char *const lengths[] = {"1 1 0 0 1 1", "1 3 0 0 1 1", "1 3 0 0 1 2",
                                   "1 2 0 0 1 3", "1 4 0 0 1 4", "1 4 0 0 1 3"};
    int made = 0;
    int whole = 0;
    for (int round = 0; round < 120; ++round) {
        const char *line = lengths[random() % std::size(lengths)];
        const random_pair pair = random_entries(random, static_cast<unsigned>(line[10] - '0'),
                                                static_cast<unsigned>(line[2] - '0'));
        loaded_object loaded(object_lines{.lengths = line, .normal = pair.entries}.text());
        ASSERT_EQ(loaded.result, 0);
        made += loaded.cv->fast != nullptr;
        for (int i = 0; i < 150; ++i) {
            const std::string bytes = random_text(random, pair);
            const auto room = static_cast<int32_t>(random() % 400);
            const bool terminated = random() % 4 == 0;
            guarded_bytes guarded(terminated ? bytes + '\0' : bytes);
            const auto run = [&](bool measuring) {
                const char *source = guarded.data();
                auto length = static_cast<int32_t>(bytes.size());
                guarded_bytes out(std::string(static_cast<size_t>(room), '\0'));
                char *target = measuring ? nullptr : out.data();
                conversion_result r = {};
                r.room = room;
                loaded.cv->cv_err = 0;
                r.result = gl_miconv(loaded.cv, &source, terminated ? nullptr : &length, &target,
                                     &r.room, &r.lossy);
                r.error = loaded.cv->cv_err;
                r.used = source - guarded.data();
                if (!measuring)
                    r.text.assign(out.data(), target);
                return r;
            };
            const conversion_result stored = run(false);
            const conversion_result measured = run(true);
            void *tables = std::exchange(loaded.cv->fast, nullptr);
            ASSERT_EQ(stored, run(false)) << "round " << round << " text " << i;
            ASSERT_EQ(measured, run(true));
            loaded.cv->fast = tables;
            whole += stored.result == 0 && bytes.size() > 40;
        }
    }
    EXPECT_GT(made, 100) << "pairs with derived tables";
    EXPECT_GT(whole, 2000) << "texts that were long and converted whole";
}

// A single-byte text may be converted where it lies.
TEST(ConversionFast, InPlaceGivesTheSame) {
    conversion_entries entries;
    for (int b = 0; b < 256; ++b)
        entries[std::string(1, static_cast<char>(b))] =
            std::string("\x11") + static_cast<char>(255 - b);
    for (const char *lengths : {"1 1 0 0 1 1", "1 2 0 0 1 1"}) {
        loaded_object loaded(object_lines{.lengths = lengths, .normal = entries}.text());
        std::string text;
        for (int b = 0; b < 200; ++b)
            text += static_cast<char>(b);
        const std::string wanted = convert(loaded.cv, text).text;
        const char *source = text.data();
        char *target = text.data();
        auto length = static_cast<int32_t>(text.size());
        int32_t room = length, lossy;
        EXPECT_EQ(gl_miconv(loaded.cv, &source, &length, &target, &room, &lossy), 0);
        EXPECT_EQ(text, wanted);
    }
}

} // namespace
