// LC_COLLATE of locale sources: which order a source describes, and which faults are refused.

#include "compilers/posix/collation_order.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kestrion {
namespace {

source_file file_of(const std::string &body) {
    return {"test", "comment_char %\nescape_char /\nLC_COLLATE\n" + body + "END LC_COLLATE\n"};
}

// Declarations and places that most rows begin with: three symbols and three letters.
constexpr const char *letters = "collating-symbol <A>\ncollating-symbol <B>\ncollating-symbol <C>\n"
                                "<A>\n<B>\n<C>\n"
                                "order_start <LATIN>;forward;backward,position\n"
                                "a <A>;a\nb <B>;b\nc <C>;c\norder_end\n";

// The listed elements in order: symbols by their names, characters as they are, elements in
// brackets, each with the places of its weights.
std::string order_of(const source_file &file, size_t *said = nullptr) {
    const locale_source source(file);
    source_library library({});
    FILE *messages = tmpfile();
    diagnostics warnings(messages);
    collation_order order;
    read_collation_order(library, source, warnings, order);
    if (said != nullptr)
        *said = warnings.warnings();
    fclose(messages);
    const auto name = [](const collation_element &e) {
        return e.characters.size() == 1 ? std::string(1, static_cast<char>(e.characters[0]))
                                        : e.name;
    };
    std::vector<const collation_element *> listed;
    for (const collation_element &e : order.elements)
        if (e.listed)
            listed.push_back(&e);
    std::sort(listed.begin(), listed.end(),
              [](const auto *a, const auto *b) { return a->order < b->order; });
    std::string text;
    for (const collation_element *e : listed) {
        text += text.empty() ? "" : " ";
        text += name(*e);
        for (size_t level = 0; level < e->weights.size(); ++level) {
            text += level == 0 ? "=" : ";";
            for (const collation_element *place : e->weights[level])
                text += name(*place);
        }
    }
    return text;
}

TEST(CollationOrder, PlacesAndWeights) {
    const std::string base = letters;
    const std::string three = "A B C a=A;a b=B;b c=C;c";
    const struct {
        const char *what;
        std::string body;
        std::string order;
    } rows[] = {
        {"as listed", base, three},
        {"without weights", "order_start forward\na\nb\norder_end\n", "a b"},
        {"ignored, several and left out",
         "order_start forward;forward;forward\na IGNORE;\"ab\";\nb ;b\norder_end\n", "a=;ab b=b;b"},
        {"a range", "order_start forward;forward\na\n.. ..;IGNORE\nd\norder_end\n",
         "a b=b; c=c; d"},
        {"a range of symbols", "collating-symbol <s9>..<sB>\n<sA>\n<sB>\n<s9>\n", "sA sB s9"},
        {"a symbol moved", base + "reorder-after <B>\n<A>\nreorder-end\n",
         "B A C a=A;a b=B;b c=C;c"},
        {"a letter moved, with other weights", base + "reorder-after b\na <C>;a\nreorder-end\n",
         "A B C b=B;b a=C;a c=C;c"},
        {"only weights replaced", base + "reorder-after <C>\na <C>;<B>\nreorder-end\n",
         "A B C a=C;B b=B;b c=C;c"},
        {"several moved, from the mark's own place",
         base + "reorder-after <A>\n<C>\n<B>\nreorder-after c\na\nreorder-end\n",
         "A C B b=B;b c=C;c a=A;a"},
        {"a new symbol, declared by its line", base + "reorder-after <A>\n<new>\nreorder-end\n",
         "A new B C a=A;a b=B;b c=C;c"},
        {"an element of raw letters and symbols",
         "collating-element <ch> from \"c<U0068>\"\n" + base +
             "reorder-after c\n<ch> <C>;\"cc\"\nreorder-end\n",
         three + " ch=C;cc"},
        {"an equivalent symbol",
         "collating-symbol <A>\n<A>\nsymbol-equivalence <Alpha> <A>\norder_start forward\na <Alpha>\norder_end\n",
         "A a=A"},
        {"sections moved",
         "order_start <X>;forward\na\norder_end\norder_start <Y>;forward\nb\norder_end\n"
         "order_start <Z>;forward\nc\norder_end\nreorder-sections-after <Z>\n<Y>\n<X>\nreorder-sections-end\n",
         "c b a"},
        {"a branch taken",
         "define N\norder_start forward\nifdef N\na\nelif M\nb\nelse\nc\nendif\norder_end\n", "a"},
        {"a branch after it",
         "define M\nundef M\ndefine M\norder_start forward\nifdef N\na\nelif M\nb\nelse\nc\nendif\norder_end\n",
         "b"},
        {"no branch but the last",
         "order_start forward\nifdef N\na\nelif M\nb\nelse\nc\nendif\norder_end\n", "c"},
        {"a condition inside one that does not hold",
         "order_start forward\nifdef N\nifdef N\na\nelse\nb\nendif\nelse\nc\nendif\norder_end\n",
         "c"},
        {"what is not listed", "order_start forward\na\nUNDEFINED IGNORE\norder_end\n", "a"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        try {
            EXPECT_EQ(order_of(file_of(row.body)), row.order);
        } catch (const source_error &error) {
            ADD_FAILURE() << error.what();
        }
    }
    size_t warnings = 0;
    order_of(file_of(base + "reorder-after <A>\n<new>\nreorder-end\n"), &warnings);
    EXPECT_EQ(warnings, 1u) << "a symbol that nothing declares";
}

TEST(CollationOrder, DirectionsBelongToSections) {
    const source_file file = file_of(letters);
    const locale_source source(file);
    source_library library({});
    diagnostics quiet(nullptr);
    collation_order order;
    read_collation_order(library, source, quiet, order);
    const collation_section *rules = order.find('a')->rules;
    ASSERT_NE(rules, nullptr);
    EXPECT_EQ(rules->name, "LATIN");
    ASSERT_EQ(rules->levels.size(), 2u);
    EXPECT_FALSE(rules->levels[0].backward);
    EXPECT_TRUE(rules->levels[1].backward);
    EXPECT_TRUE(rules->levels[1].position);
    EXPECT_EQ(order.level_count(), 2u);
    EXPECT_EQ(order.find('z'), nullptr);
}

TEST(CollationOrder, FaultsAreRefusedAtTheirPlace) {
    const std::string base = letters;
    const struct {
        std::string body;
        size_t line, column; // in the body
        const char *what;
    } rows[] = {
        {"order_start forward\na <none>\norder_end\n", 2, 3, "not known"},
        {"collating-symbol <A>\norder_start forward\na <A>\norder_end\n", 3, 3, "no place"},
        {"reorder-after <none>\nreorder-end\n", 1, 15, "no place"},
        {base + "reorder-after <C>\n<A>\n<A>\nreorder-end\n", 14, 1, "twice"},
        {"collating-element <e> from \"ab\"\ncollating-element <e> from \"ac\"\n", 2, 19,
         "declared already"},
        {"collating-element <e> from \"a\"\n", 1, 28, "at least two"},
        {"collating-element <e> \"ab\"\n", 1, 1, "expected collating-element"},
        {"collating-symbol <s1>..<t2>\n", 1, 22, "not a range"},
        {"order_start forward\na\n", 1, 1, "not ended"},
        {base + "reorder-after <C>\n<A>\n", 12, 1, "not ended"},
        {"order_start forward\norder_start forward\n", 2, 1, "ordered already"},
        {"order_start sideways\norder_end\n", 1, 13, "expected forward"},
        {"order_end\n", 1, 1, "ends nothing"},
        {"reorder-end\n", 1, 1, "ends nothing"},
        {"ifdef A\n", 1, 1, "no endif"},
        {"else\n", 1, 1, "without an ifdef"},
        {"ifdef A\nelse\nelse\nendif\n", 3, 1, "after an else"},
        {"order_start forward\nb\n..\na\norder_end\n", 3, 1, "ellipsis"},
        {"order_start forward\na\n..\norder_end\n", 3, 1, "ellipsis"},
        {"order_start forward\nab\norder_end\n", 2, 1, "expected a character"},
        {"order_start forward\na 1;1;1;1;1;1;1;1;1\norder_end\n", 2, 3, "more than 8"},
        {"order_start forward\na \"/x41\"\norder_end\n", 2, 4, "byte"},
        {"reorder-sections-after <X>\n", 1, 24, "no section"},
        {base + "reorder-sections-after <LATIN>\n<NONE>\nreorder-sections-end\n", 13, 1,
         "no section"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.body);
        const source_file file = file_of(row.body);
        try {
            order_of(file);
            ADD_FAILURE() << "accepted";
        } catch (const source_error &error) {
            const source_position where = error.where.position();
            EXPECT_NE(std::string(error.what()).find(row.what), std::string::npos) << error.what();
            EXPECT_EQ(where.line, row.line + 3);
            EXPECT_EQ(where.column, row.column);
            EXPECT_FALSE(error.remedy.empty());
        }
    }
}

} // namespace
} // namespace kestrion
