// Hostile input: an error or success in linear time, never a crash. The sizes here keep the suite
// fast; with SXML_FULL_SIZES set the large ones run, and figures are printed.
#include <expat.h>

#include <ctime>
#include <functional>

#include "host/runtime/trace_control.h"
#include "tests/parser/parser_test.h"

namespace {

bool full_sizes() {
    return std::getenv("SXML_FULL_SIZES") != nullptr;
}

// A text of `count` bytes, made of copies of `unit`.
std::string filled(std::size_t count, std::string_view unit) {
    std::string text;
    text.reserve(count + unit.size());
    while (text.size() < count) text += unit;
    return text;
}

class Hostile : public ParserTest {
  protected:
    // Parses whole and record by record. Result: the seconds of processor time both took together.
    double seconds(const std::string& path, const std::string& what,
                   const std::function<void(std::uint32_t)>& check) const {
        const std::clock_t start = std::clock();
        const std::uint32_t whole = xml.xml_open_file(path.c_str(), WHOLE, 0);
        check(whole);
        if (whole) xml.xml_free_parser(whole);
        const std::uint32_t parser = xml.xml_open_file(path.c_str(), EVERYTHING, 0);
        while (parser && file_error() == HOST_FILE_OK && xml.SxmlParser_parse_record(parser)) {
        }
        if (parser) xml.xml_free_parser(parser);
        const double taken = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        if (full_sizes())
            std::printf("%s: %zu bytes, whole and by record %.2f s of processor time\n",
                        what.c_str(), static_cast<std::size_t>(std::filesystem::file_size(path)),
                        taken);
        return taken;
    }

    // Twice the size may take twice the time, and some more.
    void expect_linear(const std::string& what, std::size_t size,
                       const std::function<std::string(std::size_t)>& document,
                       const std::function<void(std::uint32_t)>& check) const {
        SCOPED_TRACE(what);
        // Small reads make up for small documents: what is looked at again shows all the same.
        if (full_sizes())
            size *= 100;
        else
            host::limit_read_size(64);
        const double one = seconds(file_with(document(size)), what, check);
        const double four = seconds(file_with(document(4 * size)), what, check);
        EXPECT_LT(four, 12 * one + 0.2) << one << " s, then " << four << " s";
    }
};

TEST_F(Hostile, TakesLinearTimeForWhateverIsLong) {
    const auto is_read = [](std::uint32_t parser) { EXPECT_NE(parser, 0U); };
    expect_linear(
        "attribute full of >", 250'000,
        [](std::size_t n) { return "<a><r k='" + filled(n, "x>") + "'/><r/></a>"; }, is_read);
    expect_linear(
        "long attribute", 250'000,
        [](std::size_t n) { return "<a><r k='" + filled(n, "x") + "'/><r/></a>"; }, is_read);
    expect_linear(
        "comment", 250'000,
        [](std::size_t n) { return "<a><!--" + filled(n, "> - ") + "--><r/></a>"; }, is_read);
    expect_linear(
        "tag that never ends", 250'000, [](std::size_t n) { return "<a><r k='" + filled(n, "x>"); },
        is_read);
    expect_linear(
        "text", 500'000,
        [](std::size_t n) { return "<a><r>" + filled(n, "text > text\n") + "</r></a>"; }, is_read);
    expect_linear(
        "never closed", 100'000, [](std::size_t n) { return "<a>" + filled(n, "<r>1</r><r/>\n"); },
        is_read);
}

TEST_F(Hostile, DeepTreesAreReadWrittenAndReleased) {
    const std::size_t depth = full_sizes() ? 1'000'000 : 20'000;
    const std::string path = file_with(filled(3 * depth, "<e>") + filled(4 * depth, "</e>"));
    const std::string out = scratch_.file("out.xml");
    seconds(path, "nested elements", [&](std::uint32_t parser) {
        ASSERT_NE(parser, 0U);
        if (full_sizes()) return;  // indentation alone makes such a file huge
        EXPECT_EQ(xml.xml_write_document(parser, out.c_str()), 1);
    });
}

TEST_F(Hostile, ManyAttributesAreKeptInOrder) {
    std::string tag = "<a";
    for (int i = 0; i < 100'000; ++i)
        tag += " k" + std::to_string(i) + "='" + std::to_string(i) + "'";
    seconds(file_with(tag + "/>"), "100,000 attributes", [&](std::uint32_t parser) {
        const std::uint32_t root = xml.xml_parser_root(parser);
        ASSERT_EQ(xml.xml_attribute_count(root), 100'000U);
        EXPECT_STREQ(xml.xml_attribute_value(root, 99'999), "99999");
    });
}

TEST_F(Hostile, EntityBombsEndAsExpatsError) {
    std::string document = "<!DOCTYPE a [<!ENTITY e0 '0123456789'>";
    for (int i = 1; i < 30; ++i) {
        const std::string inner = "&e" + std::to_string(i - 1) + ";";
        document += "<!ENTITY e" + std::to_string(i) + " '" + filled(40, inner) + "'>";
    }
    document += "]><a><r>&e29;</r></a>";
    seconds(file_with(document), "entity bomb", [&](std::uint32_t parser) {
        EXPECT_EQ(parser, 0U);
        EXPECT_EQ(file_error(), HOST_FILE_XML);
        EXPECT_EQ(*host_error_subcode(), XML_ERROR_AMPLIFICATION_LIMIT_BREACH);
    });
}

// A document whose DOCTYPE declaration holds what `part` gives for 1 to `count`, and uses entity
// `used` in an attribute and a text.
std::string with_declarations(int count, const std::function<std::string(int)>& part,
                              const std::string& used = "lt") {
    std::string document = "<!DOCTYPE a [<!ENTITY e0 'x'>";
    for (int i = 1; i <= count; ++i) document += part(i);
    return document + "]><a k='&" + used + ";'>&" + used + ";</a>";
}

std::string entity(int number, const std::string& text) {
    return "<!ENTITY e" + std::to_string(number) + " '" + text + "'>";
}

std::string reference(int number, const std::string& ampersand = "&") {
    return ampersand + "e" + std::to_string(number) + ";";
}

// Expat follows an entity inside an entity by recursion.
TEST_F(Hostile, EntitiesNestNoDeeperThanTheStack) {
    const auto backwards = [](int i) { return entity(i, reference(i - 1)); };
    const auto in_any_order = [](int i) { return entity(2000 - i, reference(1999 - i)); };
    const auto hidden = [](int i) { return entity(i, reference(i - 1, "&#x26;")); };
    const auto split = [](int i) {
        return entity(i,
                      std::string(1024 - static_cast<std::size_t>(i % 9), '-') + reference(i - 1));
    };
    const auto in_a_default = [](int i) {
        return entity(i, reference(i - 1)) + (i % 1000 == 0 ? "<!ATTLIST a d" + std::to_string(i) +
                                                                  " CDATA '" + reference(i) + "'>"
                                                            : "");
    };
    struct Case {
        const char* what;
        std::string document;
        bool is_read;
    };
    const Case cases[] = {
        {"chain", with_declarations(2000, backwards, "e2000"), true},
        {"chain with one too many", with_declarations(2001, backwards, "e7"), false},
        {"long chain", with_declarations(20'000, backwards, "e20000"), false},
        {"chain from its start", with_declarations(1999, in_any_order, "e1998"), true},
        {"hidden references", with_declarations(2001, hidden, "e7"), false},
        {"long texts", with_declarations(2001, split, "e7"), false},
        {"in attribute defaults", with_declarations(12'000, in_a_default), false},
        {"circle",
         with_declarations(2001, [](int i) { return entity(i, reference(i % 2001 + 1)); }), false},
        {"comments", with_declarations(2001, [](int) { return "<!-- & -->"; }), true},
        {"instructions", with_declarations(2001, [](int) { return "<?p &x;?>"; }), true},
        {"attribute defaults",
         with_declarations(
             2001,
             [](int i) { return "<!ATTLIST f k" + std::to_string(i) + " CDATA 'A&amp;B&e0;'>"; }),
         true},
        {"characters",
         with_declarations(
             2500, [](int i) { return entity(i, "&#233;"); }, "e9"),
         true},
        {"predefined",
         with_declarations(
             2500, [](int i) { return entity(i, "&amp;&lt;"); }, "e9"),
         true},
        {"undeclared", with_declarations(2500, [](int i) { return entity(i, "&none;"); }), true},
        {"system names",
         with_declarations(2500,
                           [](int i) {
                               return "<!ENTITY e" + std::to_string(i) + " SYSTEM '" +
                                      reference(i - 1) + "'>";
                           }),
         true},
        {"flat",
         with_declarations(
             9000, [](int i) { return entity(i, reference(0)); }, "e9"),
         true},
        {"short chains",
         with_declarations(
             9000, [](int i) { return entity(i, i % 100 ? reference(i - 1) : "x"); }, "e99"),
         true},
    };
    constexpr std::uint32_t ELEMENTS = XMLOPT_ELEMENTS | XMLOPT_PARSE_WHOLE;
    constexpr std::uint32_t choices[] = {XMLOPT_DOCTYPE, XMLOPT_ENTITY_DECLS, XMLOPT_DEFAULT};
    for (const Case& c : cases) {
        for (std::uint32_t choice = 0; choice < 8; ++choice) {
            std::uint32_t options = ELEMENTS;
            for (unsigned bit = 0; bit < 3; ++bit)
                if (choice >> bit & 1U) options |= choices[bit];
            for (const char* declaration : {"", "<?xml version='1.0' encoding='ISO-8859-1'?>"}) {
                const std::uint32_t parser = open(declaration + c.document, options);
                EXPECT_EQ(parser != 0, c.is_read) << c.what << std::hex << options;
                if (parser) {
                    xml.xml_free_parser(parser);
                    continue;
                }
                EXPECT_EQ(file_error(), HOST_FILE_XML) << c.what;
                EXPECT_EQ(*host_error_subcode(), XML_ERROR_ABORTED) << c.what;
                EXPECT_STREQ(*host_error_text(), "entities nest more than 2,000 deep") << c.what;
            }
        }
    }
}

TEST_F(Hostile, ContentModelsOfAnyDepthAreTraced) {
    const std::size_t depth = 3000;
    const std::string document =
        "<!DOCTYPE a [<!ELEMENT a " + filled(depth, "(") + "b" + filled(depth, ")") + ">]><a/>";
    const std::string trace = scratch_.file("trace");
    ASSERT_TRUE(host::set_trace(10, trace));
    const std::uint32_t parser = open(document, WHOLE | XMLOPT_ELEMENT_DECLS);
    host::set_trace(0, "");
    EXPECT_NE(xml.xml_parser_models(parser), nullptr);
    xml.xml_free_parser(parser);
    const std::string text = file_text(trace);
    const auto count = [&](std::string_view words) {
        std::size_t n = 0;
        for (auto at = text.find(words); at != std::string::npos; at = text.find(words, at + 1))
            ++n;
        return n;
    };
    EXPECT_EQ(count("Dumping content model"), 100U);
    EXPECT_EQ(count("Done with model"), 100U);
}

}  // namespace
