// Every shipped conversion beside the C library's iconv for the same pair: each character of the
// source code set, and random text there and back.

#include "gls/conversion/conversion_objects.h"
#include <kestrion/code_set_registry.h>
#include <kestrion/conversion.h>

#include <fstream>
#include <iconv.h>
#include <random>
#include <sstream>

namespace {

struct code_set {
    std::string number; // four hexadecimal digits
    std::string charmap;
};

struct shipped_list {
    std::map<std::string, code_set> sets;
    std::vector<std::pair<std::string, std::string>> directions; // from, to

    shipped_list() {
        std::ifstream list(KESTRION_SOURCE_DIR "/locales/conversions");
        for (std::string line; std::getline(list, line);) {
            std::istringstream words(line);
            std::string kind, name, other = "utf8";
            words >> kind >> name;
            if (kind == "code_set")
                words >> sets[name].number >> sets[name].charmap;
            else if (kind == "pair")
                words >> other;
            if ((kind == "code_set" || kind == "pair") && name != other) {
                directions.emplace_back(name, other);
                directions.emplace_back(other, name);
            }
        }
    }
};

struct opened {
    opened(const code_set &from, const code_set &to) {
        const std::string path = KESTRION_BUILD_DIR "/gls/cv9/" + from.number + to.number + ".cvo";
        EXPECT_EQ(gl_iconv_open1(&cv, path.c_str()), 0) << path;
    }
    ~opened() { gl_cv_unload(cv); }
    cv_rec *cv = nullptr;
};

class c_library {
public:
    c_library(const std::string &from, const std::string &to)
        : cd_(iconv_open(to.c_str(), from.c_str())) {}
    ~c_library() { iconv_close(cd_); }

    // The conversion of a text; false when it does not convert whole and exactly.
    bool convert(std::string text, std::string &out) {
        char *source = text.data();
        size_t length = text.size();
        char buffer[4096];
        char *target = buffer;
        size_t room = sizeof buffer;
        iconv(cd_, nullptr, nullptr, nullptr, nullptr);
        const bool converted = iconv(cd_, &source, &length, &target, &room) == 0 && length == 0;
        iconv(cd_, nullptr, nullptr, &target, &room);
        out.assign(buffer, target);
        return converted;
    }

private:
    iconv_t cd_;
};

std::string utf8(uint32_t c) {
    const auto tail = [&](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3f)); };
    if (c < 0x80)
        return {static_cast<char>(c)};
    if (c < 0x800)
        return {static_cast<char>(0xc0 | c >> 6), tail(0)};
    if (c < 0x10000)
        return {static_cast<char>(0xe0 | c >> 12), tail(6), tail(0)};
    return {static_cast<char>(0xf0 | c >> 18), tail(12), tail(6), tail(0)};
}

// All characters that the C library finds in a code set, each by its bytes.
std::vector<std::string> characters_of(const std::string &charmap) {
    std::vector<std::string> found;
    if (charmap == "UTF-8") {
        for (uint32_t c = 0; c <= 0x10ffff; ++c)
            if (c < 0xd800 || c > 0xdfff)
                found.push_back(utf8(c));
        return found;
    }
    c_library reader(charmap, "UTF-32LE");
    std::string ignored;
    std::string leads;
    for (int b = 0; b < 256; ++b) {
        const std::string one(1, static_cast<char>(b));
        if (reader.convert(one, ignored))
            found.push_back(one);
        else
            leads += one;
    }
    for (const char lead : leads)
        for (int b = 0; b < 256; ++b) {
            std::string two{lead, static_cast<char>(b)};
            if (reader.convert(two, ignored))
                found.push_back(two);
            else if (lead == '\x8f')
                for (int c = 0xa1; c < 0xff; ++c)
                    if (reader.convert(two + static_cast<char>(c), ignored))
                        found.push_back(two + static_cast<char>(c));
        }
    return found;
}

std::string hex(const std::string &bytes) {
    std::string text;
    for (const char c : bytes)
        for (const int shift : {4, 0})
            text += "0123456789abcdef"[static_cast<unsigned char>(c) >> shift & 15];
    return text;
}

// The C library converts between these by a table that also turns simplified characters into
// traditional ones: another text, not another code. Through UTF-8 it keeps to the characters.
bool compared_through_utf8(const std::string &from, const std::string &to) {
    return (from == "gb" && to == "big5") || (from == "big5" && to == "gb");
}

// Characters of which the C library makes nothing at all, and reports no error: language tags, which
// we refuse like any other character that the target lacks.
bool dropped_by_c_library(const std::string &utf8_character) {
    return utf8_character >= utf8(0xe0000) && utf8_character <= utf8(0xe007f) &&
           utf8_character.size() == 4;
}

class peer_conversion {
public:
    peer_conversion(const shipped_list &list, const std::string &from, const std::string &to)
        : through_utf8_(compared_through_utf8(from, to)),
          first_(list.sets.at(from).charmap, through_utf8_ ? "UTF-8" : list.sets.at(to).charmap),
          second_("UTF-8", list.sets.at(to).charmap) {}

    bool convert(const std::string &text, std::string &out) {
        return first_.convert(text, out) && (!through_utf8_ || second_.convert(out, out));
    }

private:
    bool through_utf8_;
    c_library first_;
    c_library second_;
};

TEST(ShippedConversions, EveryCharacterConvertsAsInTheCLibrary) {
    const shipped_list list;
    std::map<std::string, std::vector<std::string>> characters;
    for (const auto &[name, set] : list.sets)
        characters[name] = characters_of(set.charmap);
    EXPECT_GE(list.directions.size(), 38u);
    for (const auto &[from, to] : list.directions) {
        opened pair(list.sets.at(from), list.sets.at(to));
        peer_conversion peer(list, from, to);
        int compared = 0;
        for (const std::string &character : characters[from]) {
            std::string wanted;
            const bool dropped = from == "utf8" && dropped_by_c_library(character);
            const bool converts = peer.convert(character, wanted) && !dropped;
            const conversion_result r = convert(pair.cv, character, 8);
            EXPECT_EQ(r.result == 0, converts) << from << " to " << to << " " << hex(character);
            if (converts) {
                EXPECT_EQ(hex(r.text), hex(wanted))
                    << from << " to " << to << " " << hex(character);
            } else {
                EXPECT_EQ(r.error, 1) << from << " to " << to << " " << hex(character);
            }
            compared += converts;
        }
        EXPECT_GT(compared, 96) << from << " to " << to;
    }
}

TEST(ShippedConversions, AreNamedByTheRegistrysNumbers) {
    for (const auto &[name, set] : shipped_list().sets)
        EXPECT_EQ(gl_cs_name2cs_num(nullptr, name.c_str(), KESTRION_SOURCE_DIR "/locales/registry"),
                  std::stoi(set.number, nullptr, 16))
            << name;
}

// Exact characters come back as they were; the text is long enough for the derived tables, and is
// also converted in two pieces, cut at every byte, and with little room.
TEST(ShippedConversions, RandomTextComesBackWholeAndInPieces) {
    const shipped_list list;
    std::mt19937 random(1907);
    for (const auto &[from, to] : list.directions) {
        if (from == "utf8")
            continue; // as the way back
        opened there(list.sets.at(from), list.sets.at(to));
        opened back(list.sets.at(to), list.sets.at(from));
        std::vector<std::string> exact;
        for (const std::string &character : characters_of(list.sets.at(from).charmap)) {
            const conversion_result r = convert(there.cv, character, 8);
            if (r.result == 0 && r.lossy == 0 && convert(back.cv, r.text, 8).text == character)
                exact.push_back(character);
        }
        ASSERT_GT(exact.size(), 96u) << from << " to " << to;
        std::string text, wanted;
        peer_conversion peer(list, from, to);
        for (int i = 0; i < 60; ++i)
            text += i % 20 < 10 ? "a" : exact[random() % exact.size()];
        ASSERT_TRUE(peer.convert(text, wanted));
        ASSERT_EQ(convert(there.cv, text).text, wanted) << from << " to " << to;
        EXPECT_EQ(convert(back.cv, wanted).text, text);
        const auto enough = gl_cv_outbuflen(there.cv, static_cast<int32_t>(text.size()));
        EXPECT_EQ(convert(there.cv, text, enough).text, wanted);
        for (size_t cut = 0; cut <= text.size(); ++cut)
            for (const int32_t room : {4, 17, 40, 1000})
                ASSERT_EQ(in_pieces(there.cv, text, cut, room), wanted) << cut << " " << room;
    }
}

} // namespace
