#include "tools/sxml/document_input.h"

#include <strings.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "host/files.h"
#include "host/memory.h"
#include "tools/sxml/errors.h"
#include "tools/sxml/record_file.h"

namespace command {

namespace {

constexpr const char* COPY_STEM = "sxml-input";
constexpr std::size_t PIECE = std::size_t{1} << 16;

bool is_url(const std::string& source) {
    return strncasecmp(source.c_str(), "http:", 5) == 0;
}

void copy_to(ByteSource& source, const std::string& target) {
    std::FILE* file = std::fopen(target.c_str(), "wb");
    if (file == nullptr) fail_file(target, errno);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> closer(file, &std::fclose);
    std::vector<std::uint8_t> piece(PIECE);
    while (const std::size_t count = source.read(piece.data(), piece.size())) {
        if (std::fwrite(piece.data(), 1, count, file) != count) fail_file(target, errno);
    }
    if (std::fflush(file) != 0) fail_file(target, errno);
}

}  // namespace

DocumentInput::DocumentInput(const std::string& source) : name_(source) {
    if (is_url(source)) {
        fetch(source);
    } else {
        open(source);
    }
}

void DocumentInput::fetch(const std::string& url) {
    char* local = host_fetch_url(url.c_str());
    if (local == nullptr) fail(url + ": the document cannot be fetched, or not in full");
    const std::string fetched = local;
    host_free(local, "tools/sxml/document_input", __LINE__, 0);
    try {
        copy_ = std::make_unique<TemporaryFile>(temporary_folder(), COPY_STEM);
        file_ = copy_->name();
        if (std::rename(fetched.c_str(), file_.c_str()) != 0) fail_file(fetched, errno);
    } catch (...) {
        host_remove_file(fetched.c_str());
        throw;
    }
}

void DocumentInput::open(const std::string& source) {
    ByteSource bytes(source);
    name_ = bytes.name();
    if (source != "-" && bytes.size()) {
        file_ = std::filesystem::absolute(source).string();
        return;
    }
    copy_ = std::make_unique<TemporaryFile>(temporary_folder(), COPY_STEM);
    file_ = copy_->name();
    copy_to(bytes, file_);
}

}  // namespace command
