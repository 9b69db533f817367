#include "gnucobol/document_check.h"

#include <filesystem>
#include <fstream>

#include "conversion/documents/document_check.h"
#include "host/encoding.h"

namespace gnucobol {

namespace {

// Not open when the file cannot be read again.
std::ifstream open_again(const std::string& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) return {};
    return std::ifstream(file, std::ios::binary);
}

documents::ReadDocument reader_of(std::ifstream& input) {
    return [&input](char* buffer, std::size_t size) {
        input.read(buffer, static_cast<std::streamsize>(size));
        return static_cast<std::size_t>(input.gcount());
    };
}

}  // namespace

std::string find_damage(const std::string& file) {
    std::ifstream input = open_again(file);
    if (!input.is_open()) return {};
    const auto problem = documents::check_document(reader_of(input));
    if (!problem) return {};
    return "line " + std::to_string(problem->line) + ", column " + std::to_string(problem->column) +
           ": " + problem->text;
}

bool is_latin1_document(const std::string& file) {
    std::ifstream input = open_again(file);
    if (!input.is_open()) return true;
    const std::string name = documents::declared_encoding(reader_of(input));
    return host_encoding_code(name.c_str()) == HOST_ENCODING_LATIN1;
}

}  // namespace gnucobol
