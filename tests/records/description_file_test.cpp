// Description files: out and in again, damaged ones, and how they are found.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/files.h"
#include "host/runtime/settings/settings.h"
#include "platform/paths.h"
#include "tests/records/layout_fixture.h"
#include "tests/support/scratch_folder.h"

namespace {

using namespace records;
using layout_tests::described;
using layout_tests::module_view;
namespace fs = std::filesystem;

constexpr const char* RICH =
    "*> sxml: when T = 'A' OR N > 12\n01 A-REC.\n 05 T PIC X.\n 05 N PIC 9(2).\n 05 FILLER PIC X.\n"
    " 05 S PIC S99PPP SIGN TRAILING SEPARATE.\n 05 F COMP-1.\n*> sxml: hex\n 05 P POINTER.\n"
    " 05 B PIC 9(4) COMP BLANK WHEN ZERO.\n 05 L OCCURS 1 TO 3 DEPENDING ON N.\n 10 K PIC X.\n"
    " 10 M PIC X(2) OCCURS 2.\n*> sxml: when T2 NUMERIC\n01 B-REC.\n 05 T2 PIC X.\n"
    " 05 X PIC X(20).\n01 C-REC PIC X(40).\n";

Description reread(const std::string& json, const LayoutOptions& options = {}) {
    Diagnostics diagnostics;
    auto description = description_from_json(json, "orders.xfd", options, diagnostics);
    EXPECT_TRUE(description) << diagnostics.text();
    if (!description) throw std::runtime_error("does not read");
    return std::move(*description);
}

std::string problems(const std::string& json) {
    Diagnostics diagnostics;
    const auto description = description_from_json(json, "orders.xfd", {}, diagnostics);
    EXPECT_EQ(description.has_value(), !diagnostics.has_errors());
    return diagnostics.text();
}

std::string replaced(std::string text, const std::string& what, const std::string& with) {
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return at == std::string::npos ? text : text.replace(at, what.size(), with);
}

TEST(DescriptionFile, OutAndInAgain) {
    const char* const copybooks[] = {
        RICH,
        "01 R.\n 05 E OCCURS 2.\n 10 T PIC X.\n*> sxml: when T = X'00' AND NOT T = ALL 'q'\n"
        " 10 V PIC 9.\n*> sxml: when T = SPACES\n 10 W REDEFINES V PIC X."};
    for (const char* copybook : copybooks) {
        const Description first = described(copybook);
        const std::string json = description_to_json(first);
        const Description second = reread(json);
        EXPECT_EQ(module_view(first.xfd()), module_view(second.xfd()));
        EXPECT_EQ(description_to_json(second), json);
        EXPECT_EQ(first.rows().size(), second.rows().size());
        EXPECT_EQ(first.min_record_length(), second.min_record_length());
        for (int n = 1; n <= first.xfd().condition_count; ++n) {
            EXPECT_EQ(first.condition_text(n), second.condition_text(n));
        }
    }
}

TEST(DescriptionFile, TakesTheOptionsOfItsReader) {
    LayoutOptions options;
    options.name_case = NameCase::unchanged;
    const std::string json = description_to_json(described("01 R-1.\n 05 A-B PIC 9.", options));
    options.name_case = NameCase::underscores;
    options.name = "MY-FILE";
    EXPECT_STREQ(reread(json, options).xfd().items[1].name, "A_B");
    EXPECT_STREQ(reread(json, options).xfd().name, "MY_FILE");
    options.encoding = RecordEncoding::ebcdic;
    EXPECT_NE(description_to_json(reread(json, options)).find("\"ebcdic_text\""),
              std::string::npos);
}

TEST(DescriptionFile, DamageIsNamed) {
    const std::string good = description_to_json(
        described("01 R.\n 05 T PIC X.\n 05 L OCCURS 3.\n 10 K PIC X(2).\n*> sxml: when K = 'AB'\n"
                  " 10 N PIC 9(2).\n"));
    const std::string long_name = "\"name\": \"" + std::string(500, 'n') + "\"";
    const struct {
        const char* what;
        const char* with;
        const char* message;
    } cases[] = {
        {"\"version\": 1", "\"version\": 2", "version must be a whole number from 1 to 1"},
        {"sxml record description", "other", "format must be"},
        {"\"name\": \"orders\"", "\"name\": 7", "name must be a text"},
        {"\"name\": \"orders\"", "\"name\": \"r\"", "name is also the name of an item"},
        {"\"name\": \"orders\"", "\"name\": \"1r\"", "name must be a name of letters"},
        {"\"name\": \"orders\"", long_name.c_str(), "name must be a name of letters"},
        {"\"record_length\": 13", "\"record_length\": -1", "record_length must be a whole number"},
        {"\"record_length\": 13", "\"record_length\": 12",
         "records[0].items[1].offset and length end at byte 13"},
        {"\"length\":1,", "\"length\":-4,", "records[0].items[0].length must be a whole number"},
        {"\"length\":1,", "\"length\":1e9,", "records[0].items[0].length must be a whole number"},
        {"\"offset\":0,\"length\":1,", "\"offset\":13,\"length\":1,",
         "records[0].items[0].offset and length end at byte 14"},
        {"\"count\":3", "\"count\":99999", "records[0].items[1].occurs.count"},
        {"\"stride\":4}", "\"stride\":0}", "stride must be a whole number"},
        {"\"type\":\"alphanumeric\"", "\"type\":\"bogus\"", ".type must be one of: "},
        {"\"digits\":2", "\"digits\":200", "records[0].items[1].items[1].digits must be"},
        {"\"condition\":1", "\"condition\":2", "condition must be a whole number from 0 to 1"},
        {"\"tables\": [", "\"tables\": 4, \"x\": [", "unknown key"},
        {"\"name\":\"k\"", "\"name\":\"1k\"", "items[0].name must be a name"},
        {"\"name\":\"k\"", "\"name\":\"l\"", "items[0].name is used already"},
        {"\"name\":\"r\",", "", "records must have an element with a name"},
        {"\"items\": [", "\"items\": 5, \"flags\": [", "must be an array"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.with);
        // Conditions are written with blanks left out; the cases name keys as they stand there.
        const std::string what = good.find(each.what) == std::string::npos
                                     ? replaced(each.what, ": ", ":")
                                     : std::string(each.what);
        const std::string said = problems(replaced(good, what, each.with));
        EXPECT_NE(said.find(each.message), std::string::npos) << said;
        EXPECT_NE(said.find("orders.xfd"), std::string::npos) << said;
    }
    EXPECT_NE(problems("").find("no valid JSON"), std::string::npos);
    EXPECT_NE(problems("[]").find("must be an object"), std::string::npos);
    EXPECT_NE(problems(std::string(1'000'000, '[')).find("no valid JSON"), std::string::npos);
}

TEST(DescriptionFile, DeepNestingAndMillionsOfItemsAreRefused) {
    const std::string head =
        R"({"format": "sxml record description", "version": 1, "name": "f", "record_length": 99,)";
    const std::string field = R"({"name": "a", "offset": 0, "length": 1, "type": "text"})";
    std::string deep = field;
    for (int i = 0; i < 100; ++i) {
        deep = R"({"offset": 0, "length": 1, "items": [)" + deep + "]}";
    }
    EXPECT_NE(problems(head + R"("records": [)" + deep + "]}").find("nested more than"),
              std::string::npos);
    std::string many = R"({"name": "t", "offset": 0, "length": 1, "occurs": {"count": 10000,)"
                       R"( "stride": 1}, "items": [)" +
                       field + "]}";
    many = R"({"name": "r", "offset": 0, "length": 1, "items": [)" + many + "]}";
    EXPECT_NE(problems(head + R"("records": [)" + many + "]}").find("past the record's 99"),
              std::string::npos);
    std::string test = R"({"class": "numeric", "left": {"item": "A", "offset": 0, "length": 1,)"
                       R"( "type": "text"}})";
    for (int i = 0; i < 200; ++i) test = R"({"not": )" + test + "}";
    EXPECT_NE(problems(head + R"("conditions": [{"test": )" + test + R"(}], "records": [)" +
                       R"({"name": "r", "offset": 0, "length": 1, "items": [)" + field + "]}]}")
                  .find("is nested too deep"),
              std::string::npos);
}

// Every cut and every changed byte of a good file gives a description or a complaint.
TEST(DescriptionFile, AnyDamageIsSurvived) {
    const std::string good = description_to_json(described(RICH));
    for (std::size_t i = 0; i + 1 < good.size(); i += 11) {
        EXPECT_NE(problems(good.substr(0, i)), "");
        for (const char with : {'9', '-', '"'}) {
            std::string changed = good;
            changed[i] = with;
            problems(changed);
        }
    }
}

class Lookup : public testing::Test {
  protected:
    Lookup() {
        fs::create_directories(folder_ / "data");
        fs::create_directories(folder_ / "layouts");
    }
    ~Lookup() override { host::set_config("SXML_PATH", std::nullopt); }

    void write(const std::string& name, const std::string& text) {
        std::ofstream(folder_ / name) << text;
    }
    // The file's own name: where letter case does not count, it is found under another.
    std::string found(const std::string& data_file) {
        const std::string file = find_description_file((folder_ / data_file).string());
        if (file.empty()) return file;
        for (const auto& entry : fs::recursive_directory_iterator(folder_)) {
            if (fs::equivalent(entry, file))
                return entry.path().lexically_relative(folder_).generic_string();
        }
        return "not in the folder: " + file;
    }

    ScratchFolder scratch_;
    const fs::path folder_ = scratch_.path();
};

TEST_F(Lookup, SuffixesFoldersAndLetterCase) {
    EXPECT_EQ(found("data/orders.xml"), "");
    write("data/ORDERS.CBL", "");
    EXPECT_EQ(found("data/orders.xml"), "data/ORDERS.CBL");
    write("data/orders.xml.cpy", "");
    EXPECT_EQ(found("data/orders.xml"), "data/orders.xml.cpy");
    write("data/orders.Xfd", "");
    EXPECT_EQ(found("data/orders.xml"), "data/orders.Xfd");
    write("layouts/orders.cpy", "");
    const std::string folders = folder_.string() + "/nowhere" + platform::FOLDER_LIST_SEPARATOR +
                                folder_.string() + "/layouts";
    ASSERT_TRUE(host::set_config("SXML_PATH", folders));
    EXPECT_EQ(found("data/orders.xml"), "layouts/orders.cpy");
}

// As the module asks: under the host's name for the data file, then without ".xml".
TEST_F(Lookup, NamesWithTwoSuffixesKeepTheirOwnDescription) {
    const std::string item = ".\n           05 A PIC X.\n";
    const auto document = [&](const char* data_file) {
        const std::string name = (folder_ / data_file).string();
        Xfd* xfd = Q4ParseXFD(host_xfd_name(name.c_str()), 14, 30);
        std::string record = xfd != nullptr ? xfd->items[0].name : "none";
        if (xfd != nullptr) Q4XFDFree(xfd);
        return record;
    };
    write("data/orders.cpy", "       01 PLAIN" + item);
    EXPECT_EQ(document("data/orders.v2.xml"), "none");
    EXPECT_EQ(document("data/orders.v2"), "plain");
    write("data/ORDERS.V2.CBL", "       01 SECOND" + item);
    EXPECT_EQ(document("data/orders.v2.xml"), "second");
    EXPECT_EQ(document("data/orders.xml"), "plain");
    write("layouts/orders.xfd", "damaged");
    ASSERT_TRUE(host::set_config("SXML_PATH", (folder_ / "layouts").string()));
    EXPECT_EQ(document("data/orders.xml"), "none");
    const std::string file = fs::path("layouts/orders.xfd").make_preferred().string();
    EXPECT_NE(last_description_error().find(file), std::string::npos);
}

TEST_F(Lookup, TheModuleGetsItsOwnCopy) {
    const std::string data = (folder_ / "data" / "orders").string();
    EXPECT_EQ(Q4ParseXFD(data.c_str(), 14, 30), nullptr);
    EXPECT_NE(last_description_error().find("no record description for"), std::string::npos);
    write("data/orders.cpy", "       01 R.\n           05 A PIC Q.\n");
    EXPECT_EQ(Q4ParseXFD(data.c_str(), 14, 30), nullptr);
    EXPECT_NE(last_description_error().find("orders.cpy:2:"), std::string::npos);
    write("data/orders.cpy", "       01 R.\n           05 A PIC X.\n");
    Xfd* first = Q4ParseXFD(data.c_str(), 14, 30);
    Xfd* second = Q4ParseXFD(data.c_str(), 14, 30);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(last_description_error(), "");
    EXPECT_NE(first->items, second->items);
    EXPECT_STREQ(first->name, "orders");
    Q4XFDFree(first);
    Q4XFDFree(second);

    const Description bound = described(RICH);
    bind_description(&bound);
    Xfd* copy = Q4ParseXFD("anything", 14, 30);
    bind_description(nullptr);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(module_view(*copy), module_view(bound.xfd()));
    const std::string record(static_cast<std::size_t>(bound.record_length()), 'A');
    EXPECT_EQ(Q4TestCOBOLCond(copy, 1, record.data()), 1);
    EXPECT_EQ(copy->conditions[0].is_true & 1, 1);
    EXPECT_EQ(bound.xfd().conditions[0].is_true & 1, 0);
    Q4XFDFree(copy);
}

}  // namespace
