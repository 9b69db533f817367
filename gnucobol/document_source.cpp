#include "gnucobol/document_source.h"

#include <strings.h>

#include <filesystem>
#include <utility>

#include "host/files.h"
#include "host/memory.h"

namespace gnucobol {

bool is_url(const std::string& name) {
    return strncasecmp(name.c_str(), "http:", 5) == 0 ||
           strncasecmp(name.c_str(), "https:", 6) == 0;
}

DocumentSource::DocumentSource(DocumentSource&& other) noexcept
    : file_(std::move(other.file_)), is_copy_(std::exchange(other.is_copy_, false)) {}

DocumentSource::~DocumentSource() {
    std::error_code error;
    if (is_copy_) std::filesystem::remove(file_, error);
}

std::optional<DocumentSource> DocumentSource::find(const std::string& name) {
    if (is_url(name)) {
        char* const copy = host_fetch_url(name.c_str());
        if (copy == nullptr) return std::nullopt;
        DocumentSource source{std::string(copy)};
        source.is_copy_ = true;
        host_free(copy, "gnucobol", __LINE__, 0);
        return source;
    }
    std::error_code error;
    for (const std::string& file : {name, name + ".xml"}) {
        if (std::filesystem::exists(file, error)) return DocumentSource(file);
    }
    return std::nullopt;
}

}  // namespace gnucobol
