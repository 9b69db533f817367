// What the tests of the parser API share.
#pragma once

#include <string>
#include <string_view>

#include "host/errors.h"
#include "host/runtime/streams.h"
#include "tests/elements/element_test.h"
#include "tests/support/scratch_folder.h"

// Everything a document can be asked for, entities expanded.
constexpr std::uint32_t EVERYTHING =
    XMLOPT_ELEMENTS | XMLOPT_CHARACTER_DATA | XMLOPT_PROCESSING_INSTRUCTIONS | XMLOPT_COMMENTS |
    XMLOPT_CDATA | XMLOPT_EXTERNAL_ENTITIES | XMLOPT_UNKNOWN_ENCODING | XMLOPT_DOCTYPE |
    XMLOPT_ELEMENT_HASH | XMLOPT_XML_DECL;
constexpr std::uint32_t WHOLE = EVERYTHING | XMLOPT_PARSE_WHOLE;

inline std::int16_t file_error() {
    return *host_file_error();
}

inline std::int32_t parser_error() {
    std::int32_t code = -1;
    api().xml_last_error(&code);
    return code;
}

inline std::string text_or_null(const char* text) {
    return text ? text : "(null)";
}

// Every test starts with no live block of the module and must leave none, and has a folder of its
// own.
class ParserTest : public ElementTest {
  protected:
    void TearDown() override {
        host::limit_read_size(0);
        ElementTest::TearDown();
    }

    std::string file_with(std::string_view bytes, const std::string& name = "in.xml") const {
        std::string path = scratch_.file(name);
        write_file(path, bytes);
        return path;
    }

    // Opens a document given as bytes, from a file.
    std::uint32_t open(std::string_view bytes, std::uint32_t options) const {
        return xml.xml_open_file(file_with(bytes).c_str(), options, 0);
    }

    const ScratchFolder scratch_;
    const std::filesystem::path& folder = scratch_.path();
};
