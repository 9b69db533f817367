#include "tools/sxml/document_check.h"

#include "tools/sxml/record_file.h"

namespace command {

namespace {

documents::ReadDocument reader_of(ByteSource& source) {
    return [&source](char* buffer, std::size_t size) {
        return source.read(reinterpret_cast<std::uint8_t*>(buffer), size);
    };
}

}  // namespace

std::optional<DocumentProblem> check_document(const std::string& file) {
    ByteSource source(file);
    return documents::check_document(reader_of(source));
}

std::string declared_encoding(const std::string& file) {
    ByteSource source(file);
    return documents::declared_encoding(reader_of(source));
}

}  // namespace command
