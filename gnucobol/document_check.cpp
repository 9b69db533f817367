#include "gnucobol/document_check.h"

#include <expat.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <vector>

namespace gnucobol {

namespace {

constexpr std::size_t PIECE_SIZE = std::size_t{1} << 16;

}  // namespace

std::string find_damage(const std::string& file) {
    std::error_code error;
    // What comes through a pipe is gone.
    if (!std::filesystem::is_regular_file(file, error)) return {};
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate(nullptr), &XML_ParserFree);
    std::ifstream input(file, std::ios::binary);
    if (!parser || !input) return {};
    std::vector<char> piece(PIECE_SIZE);
    XML_Status status = XML_STATUS_OK;
    while (status == XML_STATUS_OK && input) {
        input.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        status = XML_Parse(parser.get(), piece.data(), static_cast<int>(input.gcount()),
                           input ? XML_FALSE : XML_TRUE);
    }
    if (status == XML_STATUS_OK) return {};
    return "line " + std::to_string(XML_GetCurrentLineNumber(parser.get())) + ", column " +
           std::to_string(XML_GetCurrentColumnNumber(parser.get()) + 1) + ": " +
           XML_ErrorString(XML_GetErrorCode(parser.get()));
}

}  // namespace gnucobol
