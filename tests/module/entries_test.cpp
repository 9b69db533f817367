// The small entries: table layout, start-up, host functions, version, forwarders.
#include <expat.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "host/config.h"
#include "tests/module/module_fixture.h"

namespace {

using EntriesTest = ModuleTest;

template <typename Entry>
Entry* entry(const host::Module& module, DispatchSlot slot) {
    return reinterpret_cast<Entry*>(module.slot(slot));
}

void dummy_function() {}

TEST_F(EntriesTest, FillsExactlyTheSlotsThatItProvides) {
    auto* const get_table =
        reinterpret_cast<GetDispatchTableFunction*>(module().symbol("GetDispatchTable"));
    EXPECT_EQ(get_table(nullptr), 1);
    HostEntry* const* table = nullptr;
    ASSERT_EQ(get_table(&table), 0);
    const auto provided = [](std::size_t slot) {
        return slot <= 1 || slot == 17 || slot == 25 || slot == 26 || (slot >= 44 && slot <= 53);
    };
    for (std::size_t slot = 0; slot < DISPATCH_SLOT_COUNT; ++slot) {
        EXPECT_EQ(table[slot] != nullptr, provided(slot)) << slot;
    }
}

TEST_F(EntriesTest, AsksForTheHostFunctionsThatAreMissing) {
    std::istringstream list(
        "QTrace Q4DBFromPath Q4FlattenName Q4XFDFree Q4ParseXFD Q4MatchFDInfotoXFD "
        "Q4FreeTable Q4MatchDBColstoXFD Q4TestCOBOLCond Q4ConvertDateTime Q4TestData "
        "Q4TestDatap Q4CheckExtraWhere Q4ParseErrorFile Q4DefineSuffixes "
        "Q4RemoveSuffix Q4FillWhereMagic Q4MatchDBKeystoXFD Q4FindColumn "
        "Q4make_sql_name Q4fill_nines Q4build_key Q4free_string Q4TransactionTrace "
        "Q4CurTrace Qconvert QconvertData cvt_8_decimal f_rename f_remove f_copy "
        "w_message_box i_open i_close i_info i_write i_start i_next i_read i_delete");
    const std::vector<std::string> names(std::istream_iterator<std::string>(list), {});
    ASSERT_EQ(names.size(), 40U);
    auto* const set = entry<XmlSetHostFunctionEntry>(module(), SLOT_SET_HOST_FUNCTION);
    EXPECT_EQ(set("qtrace", dummy_function), nullptr);
    EXPECT_EQ(set("no_such_function", dummy_function), nullptr);
    EXPECT_EQ(set(nullptr, nullptr), nullptr);  // the loader has handed everything over

    std::vector<HostFunction*> functions;
    for (const std::string& name : names) {
        const void* const before = set(name.c_str(), nullptr);
        EXPECT_NE(before, nullptr) << name;
        functions.push_back(reinterpret_cast<HostFunction*>(const_cast<void*>(before)));
    }
    for (std::size_t i = 0; i < functions.size(); ++i) {
        EXPECT_EQ(static_cast<const char*>(set(nullptr, dummy_function)), names[i]);
        EXPECT_EQ(set(names[i].c_str(), functions[i]), nullptr);
    }
    EXPECT_EQ(set(nullptr, nullptr), nullptr);
}

TEST_F(EntriesTest, TellsItsVersion) {
    unsigned char tag[5] = {0, 0, 0, 0x55, 0x55};
    char expat_version[64] = {};
    std::string label(22, '#');
    auto* const version_info = entry<XmlVersionInfoEntry>(module(), SLOT_VERSION_INFO);
    EXPECT_EQ(version_info(tag, expat_version, label.data()), 1);
    EXPECT_EQ(std::string(tag, tag + 5), std::string("XML\0\x55", 5));
    EXPECT_STREQ(expat_version, XML_ExpatVersion());
    std::string expected = SXML_VERSION_LABEL;
    expected.resize(21);
    EXPECT_EQ(label, expected + "#");
}

TEST_F(EntriesTest, AnswersInitialisationWithThree) {
    std::int32_t version = 0;
    EXPECT_EQ(entry<XmlInitEntry>(module(), SLOT_INIT)(nullptr, &version), 1);
    EXPECT_EQ(version, 3);
    EXPECT_EQ(entry<XmlRegisterSettingsEntry>(module(), SLOT_REGISTER_SETTINGS)(), 10);
    EXPECT_EQ(host_config_choice("SXML_CREATE_STYLE", 0), 1);
    EXPECT_EQ(host_config_flag("SXML_EXACT_TABLE_MATCH", 0), 1);
    EXPECT_EQ(host_config_flag("SXML_IGNORE_EMPTY_DATA", 1), 0);
    set("SXML_CREATE_STYLE", "schema");
    EXPECT_EQ(host_config_choice("SXML_CREATE_STYLE", 0), 2);
}

TEST_F(EntriesTest, ReportsWhatIsNotSupported) {
    EXPECT_EQ(entry<XmlUnsupportedEntry>(module(), SLOT_UNSUPPORTED_A)(), 0);
    EXPECT_EQ(*host_file_error(), HOST_FILE_UNSUPPORTED);
    *host_file_error() = HOST_FILE_OK;
    EXPECT_EQ(entry<XmlUnsupportedEntry>(module(), SLOT_UNSUPPORTED_B)(), -1);
    EXPECT_EQ(*host_file_error(), HOST_FILE_UNSUPPORTED);
}

TEST_F(EntriesTest, HandsFileOperationsOn) {
    const std::string first = path("first");
    const std::string second = path("second");
    const std::string third = path("third");
    std::ofstream(first) << "text";
    *host_file_error() = HOST_FILE_XML;
    EXPECT_EQ(entry<XmlRenameEntry>(module(), SLOT_RENAME)(first.c_str(), second.c_str()), 1);
    EXPECT_EQ(*host_file_error(), HOST_FILE_OK);
    EXPECT_EQ(entry<XmlCopyEntry>(module(), SLOT_COPY)(second.c_str(), third.c_str()), 1);
    EXPECT_EQ(read(third), "text");
    EXPECT_EQ(entry<XmlRemoveEntry>(module(), SLOT_REMOVE)(second.c_str()), 1);
    EXPECT_FALSE(std::filesystem::exists(second));
    EXPECT_EQ(entry<XmlRemoveEntry>(module(), SLOT_REMOVE)(second.c_str()), 0);
}

}  // namespace
