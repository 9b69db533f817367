// Hostile and damaged documents, through the file interface: complete records are delivered, the
// code shows the error, time and memory are proportional to the document's size, and nothing stays
// allocated. With SXML_FULL_SIZES set the documents are fifty times as large.
#include <expat.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <functional>

#include "host/runtime/memory/memory_report.h"
#include "host/runtime/streams.h"
#include "tests/module/module_fixture.h"

namespace {

using Results = std::vector<ReadResult>;
constexpr std::size_t RECORD_SIZE = 4;

// Records of a field `a` of two bytes and a table of two `b` of one. The condition, which no field
// is under, is there to be tested.
XfdBuilder small_records() {
    XfdBuilder builder("f");
    builder.group(1, "r");
    builder.text(2, "a", 0, 2);
    for (int i = 1; i <= 2; ++i) {
        builder.text(2, "b", 1 + i, 1);
        builder.occurrence({{i, 2}});
    }
    builder.condition(0, '?', 0);
    return builder;
}

std::string repeated(std::size_t count, std::string_view unit) {
    std::string text;
    text.reserve(count * unit.size());
    for (std::size_t i = 0; i < count; ++i) text += unit;
    return text;
}

// Units that differ in their number: "#" stands for it.
std::string numbered(std::size_t count, std::string_view unit) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        for (const char c : unit) {
            if (c == '#') {
                text += std::to_string(i);
            } else {
                text += c;
            }
        }
    }
    return text;
}

const std::string ONE = "<r><a>1</a></r>";
const std::string TWO = "<r><a>2</a></r>";
const ReadResult FIRST = {3, 0, "1 .."};
const ReadResult SECOND = {3, 0, "2 .."};
const ReadResult BARE = {1, 0, "...."};  // a record without data
const ReadResult END = {0, 8, "...."};
const ReadResult BROKEN = {0, 19, "...."};

ReadResult with_code(ReadResult result, int code) {
    result.code = code;
    return result;
}

struct HostileCase {
    const char* name;
    std::size_t size;  // handed to `document`, and four times as much
    std::function<std::string(std::size_t)> document;
    Results expected;
    std::uint64_t memory;           // most live bytes for each byte of the document
    std::uint64_t fixed = 524'288;  // and whatever the document's size
};

// Entities make up to 8 MiB of text before Expat asks how much of it the document holds.
constexpr std::uint64_t EXPANDED = 16'777'216;

void PrintTo(const HostileCase& one, std::ostream* out) {
    *out << one.name;
}

class HostileDocumentTest : public ModuleTest, public testing::WithParamInterface<HostileCase> {
  protected:
    double seconds(const std::string& document) {
        XfdBuilder builder = small_records();
        forget_live_bytes();
        const std::clock_t start = std::clock();
        const Results results = records(builder.xfd(), document, RECORD_SIZE);
        const double taken = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        EXPECT_EQ(results, GetParam().expected);
        EXPECT_LE(most_live_bytes(), GetParam().fixed + GetParam().memory * document.size())
            << document.size() << " bytes";
        return taken;
    }
};

// Twice the size may take twice the time, and some more.
TEST_P(HostileDocumentTest, TakesLinearTimeAndMemory) {
    const std::size_t size = GetParam().size * (std::getenv("SXML_FULL_SIZES") != nullptr ? 50 : 1);
    const double small = seconds(GetParam().document(size));
    const double large = seconds(GetParam().document(4 * size));
    EXPECT_LT(large, 12 * small + 0.2) << small << " s, then " << large << " s";
}

std::string in_file(const std::string& contents) {
    return "<f>" + contents + "</f>";
}

std::string bomb(std::size_t levels) {
    std::string document = "<!DOCTYPE f [<!ENTITY e0 '0123456789'>";
    for (std::size_t i = 1; i < levels; ++i) {
        document += "<!ENTITY e" + std::to_string(i) + " '" +
                    repeated(10, "&e" + std::to_string(i - 1) + ";") + "'>";
    }
    return document + "]><f>" + ONE + "<r><a>&e" + std::to_string(levels - 1) + ";</a></r></f>";
}

// The last entity is the first one at the end of n references.
std::string entity_chain(std::size_t n) {
    std::string document = "<!DOCTYPE f [<!ENTITY e0 '7'>";
    for (std::size_t i = 1; i <= n; ++i) {
        document += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";'>";
    }
    return document + "]><f>" + ONE + "<r><a>&e" + std::to_string(n) + ";</a></r></f>";
}

const HostileCase HOSTILE[] = {
    {"deep in a record",
     20'000,
     [](std::size_t n) {
         return in_file(ONE + "<r><a>2</a>" + repeated(n, "<e>") + repeated(n, "</e>") + "</r>" +
                        ONE);
     },
     {FIRST, SECOND, FIRST, END},
     400},
    {"deep, never closed",
     20'000,
     [](std::size_t n) { return "<f>" + ONE + "<r><a>2</a>" + repeated(n, "<e>"); },
     {FIRST, with_code(SECOND, 8), END},
     400},
    {"deep from the document element on",
     20'000,
     [](std::size_t n) { return repeated(n, "<e>") + "<a>1</a>" + repeated(n, "</e>"); },
     {FIRST, END},
     400},
    {"deep, each element with a late brother",
     5'000,
     [](std::size_t n) {
         return in_file("<r><a>1</a>" + repeated(n, "<e>") + repeated(n, "</e><e/>") + "</r>" +
                        TWO);
     },
     {FIRST, SECOND, END},
     400},
    {"deep, each element with an early brother",
     5'000,
     [](std::size_t n) {
         return in_file("<r><a>1</a>" + repeated(n, "<e/><e>") + repeated(n, "</e>") + "</r>" +
                        TWO);
     },
     {FIRST, SECOND, END},
     400},
    {"long text in a field",
     200'000,
     [](std::size_t n) { return in_file("<r><a>" + repeated(n, "x>") + "</a></r>" + ONE); },
     {{3, 0, "x>.."}, FIRST, END},
     8},
    {"long text beside the fields",
     200'000,
     [](std::size_t n) { return in_file("<r>" + repeated(n, "x\n") + "<a>1</a></r>" + TWO); },
     {FIRST, SECOND, END},
     8},
    {"long text between the records",
     200'000,
     [](std::size_t n) { return in_file(ONE + repeated(n, "x ") + TWO); },
     {FIRST, SECOND, END},
     8},
    {"white space between the records",
     200'000,
     [](std::size_t n) { return in_file(ONE + repeated(n, " \n") + TWO); },
     {FIRST, SECOND, END},
     8},
    {"white space only",
     200'000,
     [](std::size_t n) { return repeated(n, " \n"); },
     {{0, 8, "(not opened)"}},
     0},
    {"long name of a field's neighbour",
     200'000,
     [](std::size_t n) {
         const std::string name = repeated(n, "n");
         return in_file("<r><" + name + ">2</" + name + "><a>1</a></r>" + TWO);
     },
     {FIRST, SECOND, END},
     16},
    {"long name of a record",
     200'000,
     [](std::size_t n) {
         const std::string name = repeated(n, "n");
         return in_file("<" + name + "><a>1</a></" + name + ">" + TWO);
     },
     {FIRST, SECOND, END},
     16},
    {"name that never ends",
     200'000,
     [](std::size_t n) { return "<f>" + ONE + "<" + repeated(n, "n"); },
     {FIRST, END},
     16},
    {"many attributes",
     10'000,
     [](std::size_t n) {
         return in_file("<r" + numbered(n, " k#='#'") + "><a" + numbered(n, " k#='v'") +
                        ">1</a></r>" + TWO);
     },
     {FIRST, SECOND, END},
     100},
    {"long attribute",
     200'000,
     [](std::size_t n) { return in_file("<r k='" + repeated(n, "x>") + "'><a>1</a></r>" + TWO); },
     {FIRST, SECOND, END},
     16},
    {"comments between the records",
     100'000,
     [](std::size_t n) { return in_file(ONE + repeated(n, "<!-->-->") + TWO); },
     {FIRST, SECOND, END},
     0},
    {"instructions between the records",
     100'000,
     [](std::size_t n) { return in_file(ONE + repeated(n, "<?p >?>") + TWO); },
     {FIRST, SECOND, END},
     0},
    {"comments in a record",
     100'000,
     [](std::size_t n) { return in_file("<r>" + repeated(n, "<!---->") + "<a>1</a></r>" + TWO); },
     {FIRST, SECOND, END},
     0},
    {"comments before the document element",
     100'000,
     [](std::size_t n) { return repeated(n, "<!---->\n") + in_file(ONE); },
     {FIRST, END},
     0},
    {"long comment",
     200'000,
     [](std::size_t n) { return in_file(ONE + "<!--" + repeated(n, "> ") + "-->" + TWO); },
     {FIRST, SECOND, END},
     4},
    {"many fields of one name",
     20'000,
     [](std::size_t n) { return in_file("<r>" + repeated(n, "<b>7</b>") + "</r>" + TWO); },
     {{5, 0, "..77"}, SECOND, END},
     100},
    {"many names",
     20'000,
     [](std::size_t n) { return in_file("<r><a>1</a>" + numbered(n, "<x#/>") + "</r>" + TWO); },
     {FIRST, SECOND, END},
     400},
    {"declarations",
     5'000,
     [](std::size_t n) {
         return "<!DOCTYPE f [" + numbered(n, "<!ELEMENT x# (y#, z*)><!ENTITY e# '#'>") + "]>" +
                in_file(ONE + "<r><a>&e7;</a></r>");
     },
     {FIRST, {3, 0, "7 .."}, END},
     100},
    {"deep content model",
     2'000,
     [](std::size_t n) {
         return "<!DOCTYPE f [<!ELEMENT f " + repeated(n, "(") + "r" + repeated(n, ")") + ">]>" +
                in_file(ONE);
     },
     {FIRST, END},
     400},
    {"entity bomb", 9, bomb, {FIRST, with_code({3, 0, "01.."}, 19), BROKEN}, 100, EXPANDED},
    {"one long entity, often",
     10'000,
     [](std::size_t n) {
         return "<!DOCTYPE f [<!ENTITY e '" + repeated(n, "x") + "'>]><f>" + ONE + "<r>" +
                repeated(n, "&e;") + "</r></f>";
     },
     {FIRST, with_code(BARE, 19), BROKEN},
     100,
     EXPANDED},
    {"entity that holds itself",
     1,
     [](std::size_t) { return "<!DOCTYPE f [<!ENTITY e '&e;'>]><f>" + ONE + "<r>&e;</r></f>"; },
     {FIRST, with_code(BARE, 19), BROKEN},
     0},
    {"chain of entities",
     500,
     [](std::size_t n) { return entity_chain(std::min<std::size_t>(n, 2000)); },
     {FIRST, {3, 0, "7 .."}, END},
     200},
    {"chain of entities that is too long",
     50'000,
     [](std::size_t n) { return entity_chain(std::min<std::size_t>(n, 500'000)); },
     {{0, 19, "(not opened)"}},
     0},
};

INSTANTIATE_TEST_SUITE_P(All, HostileDocumentTest, testing::ValuesIn(HOSTILE),
                         [](const auto& instance) {
                             std::string name = instance.param.name;
                             for (char& c : name) {
                                 if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
                             }
                             return name;
                         });

using LargeRecordTest = ModuleTest;

// The records of a document take as long to read after a large record as before it.
TEST_F(LargeRecordTest, DoesNotSlowDownThoseBehindIt) {
    const std::string large = "<r>" + repeated(1'000'000, "<b/>") + "</r>";
    const std::string small = repeated(25'000, "<r>" + repeated(17, "<b/>") + "</r>");
    const auto seconds = [this](const std::string& document) {
        XfdBuilder builder = small_records();
        const std::clock_t start = std::clock();
        EXPECT_EQ(records(builder.xfd(), in_file(document), RECORD_SIZE).size(), 25'002U);
        return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    };
    const double before = seconds(small + large);
    const double after = seconds(large + small);
    EXPECT_LT(after, 3 * before + 0.2) << before << " s, then " << after << " s";
}

using DamagedDocumentTest = ModuleTest;

// What Expat alone makes of a document: where it stops, and which records were complete by then.
class Judge {
  public:
    explicit Judge(const std::string& document) {
        XML_Parser expat = XML_ParserCreate(nullptr);
        XML_SetUserData(expat, this);
        XML_SetElementHandler(
            expat,
            [](void* self, const char*, const char**) { ++static_cast<Judge*>(self)->depth_; },
            [](void* self, const char*) { static_cast<Judge*>(self)->end_element(); });
        const auto length = static_cast<int>(document.size());
        const bool read = XML_Parse(expat, document.data(), length, 0) == XML_STATUS_OK;
        is_open_ = depth_ > 0 || is_over_;
        // Anything after the document element is ignored, and an early end is not an error.
        code_ = read || is_over_ ? HOST_FILE_END : HOST_FILE_XML;
        final_code_ = read ? HOST_FILE_END : HOST_FILE_XML;
        if (!read || XML_Parse(expat, "", 0, 1) != XML_STATUS_OK)
            final_subcode_ = XML_GetErrorCode(expat);
        XML_ParserFree(expat);
    }
    // The codes of all reads; that of the open when it fails.
    std::vector<int> codes() const {
        if (!is_open_) return {code_};
        std::vector<int> codes(complete_, HOST_FILE_OK);
        if (depth_ > 1) codes.push_back(code_);
        codes.push_back(code_);
        return codes;
    }
    std::size_t complete() const { return complete_; }
    // What reading on to the end of the input tells: code and subcode.
    std::pair<int, int> outcome() const { return {final_code_, final_subcode_}; }

  private:
    void end_element() {
        if (depth_-- == 2) ++complete_;
        if (depth_ == 0) is_over_ = true;
    }

    int depth_ = 0;
    std::size_t complete_ = 0;
    bool is_over_ = false;
    bool is_open_ = false;
    int code_ = 0;
    int final_code_ = 0;
    int final_subcode_ = 0;
};

const std::string SMALL_DOCUMENT =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE f [<!ELEMENT f (r)*><!ENTITY e "
    "\"4\">\n<!ATTLIST r k CDATA #IMPLIED>]><!-- c -->\n<f>\n <r k='>'><a>1</a>\n <b>2</b>"
    "<b>3</b>\n </r>\n<?p i?><r/>\n<r><b/><a>&e;&#x41;</a></r> <!-- d --> <r><a><![CDATA[<]]>"
    "\xC3\xA9</a></r>\n</f>\n<!-- e -->";

// Reads a document to the end of its input.
std::pair<int, int> outcome(const host::Module& module, const std::string& name) {
    XmlFile* const file = module.open(name.c_str(), XML_OPEN_INPUT);
    std::vector<char> record(RECORD_SIZE);
    while (module.read(file, record.data()) > 0) continue;
    const bool is_complete = module.read_to_end(file, record.data());
    const std::pair<int, int> result = {*host_file_error(), *host_error_subcode()};
    const bool is_told = result.first == HOST_FILE_END && result.second == 0;
    EXPECT_EQ(is_complete, is_told);
    module.close(file);
    return result;
}

// A document cut off, or changed, at each of its bytes: Expat alone tells how many records are
// complete and whether the end is an early or a wrong one.
TEST_F(DamagedDocumentTest, EveryByteCutOrChanged) {
    XfdBuilder builder = small_records();
    const Results whole = records(builder.xfd(), SMALL_DOCUMENT, RECORD_SIZE);
    ASSERT_EQ(whole, (Results{{5, 0, "1 23"}, BARE, {3, 0, "4A.."}, {3, 0, "<\xC3.."}, END}));
    std::size_t at = 0;
    const auto expect = [&](const std::string& document, const std::string& what) {
        const Judge judge(document);
        const Results results = records(builder.xfd(), document, RECORD_SIZE);
        std::vector<int> codes;
        for (const ReadResult& result : results) codes.push_back(result.code);
        ASSERT_EQ(codes, judge.codes()) << what << " at " << at << "\n" << document;
        if (results[0].record != "(not opened)") {
            ASSERT_EQ(outcome(module(), path("in.xml")), judge.outcome()) << what << " at " << at;
        }
        const std::size_t untouched = Judge(SMALL_DOCUMENT.substr(0, at)).complete();
        for (std::size_t i = 0; i < untouched; ++i) {
            ASSERT_EQ(results[i], whole[i]) << what << " at " << at;
        }
        ASSERT_TRUE(host::live_blocks().empty()) << what << " at " << at;
    };
    for (; at < SMALL_DOCUMENT.size(); ++at) {
        host::limit_read_size(at % 8);  // 0: whole buffers
        expect(SMALL_DOCUMENT.substr(0, at), "cut");
        std::string changed = SMALL_DOCUMENT;
        for (const char byte : {'\0', '<', '>', '&', '"', '/', ' ', 'a', '\x80', '\xFF'}) {
            changed[at] = byte;
            expect(changed, "changed to " + std::to_string(static_cast<int>(byte)));
        }
        expect(std::string(SMALL_DOCUMENT).erase(at, 1), "left out");
    }
    host::limit_read_size(0);
}

TEST_F(DamagedDocumentTest, EncodingsThatAreNotAsDeclared) {
    struct Case {
        const char* what;
        std::string document;
        Results expected;
    };
    const auto declared = [](const char* encoding, const std::string& contents) {
        return std::string("<?xml version='1.0' encoding='") + encoding + "'?>" + in_file(contents);
    };
    const Results refused = {{0, 19, "(not opened)"}};
    const std::string accent = "<r><a>\xE9</a></r>";
    const Case cases[] = {
        {"no UTF-16 in truth", declared("UTF-16", ONE), refused},
        {"unknown", declared("x-none", ONE), refused},
        {"not a name", declared("", ONE), refused},
        {"UTF-8 after another mark", "\xFE\xFF" + declared("UTF-8", ONE), refused},
        {"ISO-8859-1 as UTF-8",
         declared("UTF-8", ONE + accent + TWO),
         {FIRST, with_code(BARE, 19), BROKEN}},
        {"ISO-8859-1 as ASCII",
         declared("US-ASCII", ONE + accent + TWO),
         {FIRST, with_code(BARE, 19), BROKEN}},
        {"UTF-8 as ISO-8859-1",
         declared("ISO-8859-1", "<r><a>\xC3\xA9</a></r>"),
         {{3, 0, "\xC3\xA9.."}, END}},
        {"half a character of UTF-16",
         std::string("\xFF\xFE<\0f\0>\0<\0r\0>\0<", 14),
         {with_code(BARE, 8), END}},
        {"a NUL byte",
         in_file(ONE + std::string("<r><a>2\0</a></r>", 16)),
         {FIRST, with_code(SECOND, 19), BROKEN}},
    };
    XfdBuilder builder = small_records();
    for (const Case& c : cases) {
        EXPECT_EQ(records(builder.xfd(), c.document, RECORD_SIZE), c.expected) << c.what;
    }
}

}  // namespace
