// Fetching a document over HTTP into a private temporary file.
#include <cstdio>
#include <cstring>
#include <new>
#include <string>

#include "host/config.h"
#include "host/files.h"
#include "host/runtime/fetching/fetch.h"
#include "host/runtime/fetching/transfer.h"
#include "host/runtime/memory/memory_failure.h"
#include "host/runtime/memory/tracked_memory.h"
#include "host/runtime/settings/settings.h"
#include "platform/descriptors.h"
#include "platform/temporary_files.h"

namespace {

constexpr const char* LIMIT_NAME = "SXML_FETCH_LIMIT";  // in MiB
constexpr std::int16_t DEFAULT_LIMIT = 1024;
constexpr const char* FILE_STEM = "sxml";

std::uint64_t largest_document() {
    constexpr std::uint64_t mebibyte = std::uint64_t{1024} * 1024;
    const std::int16_t limit = host_config_number(LIMIT_NAME, DEFAULT_LIMIT);
    // No value removes the limit: "no" or 0 may be a mistake.
    return static_cast<std::uint64_t>(limit > 0 ? limit : DEFAULT_LIMIT) * mebibyte;
}

bool fetch_into(const char* url, const char* file) {
    const int descriptor = platform::open_to_write(file);
    if (descriptor < 0) return false;
    const bool is_complete = host::fetch_document(url, descriptor).empty();
    return platform::close_descriptor(descriptor) == 0 && is_complete;
}

}  // namespace

bool host::TransferTarget::store(const char* data, std::size_t size) {
    is_too_large = size > room;
    if (is_too_large) return false;
    room -= size;
    error = platform::write_whole(descriptor, data, size);
    return error == 0;
}

std::string host::fetch_document(const std::string& url, int descriptor) {
    refresh_environment();
    TransferTarget target{descriptor, largest_document()};
    std::string reason = transfer_document(url.c_str(), target);
    if (target.error != 0) return std::strerror(target.error);
    if (target.is_too_large) return "it is larger than SXML_FETCH_LIMIT allows";
    return reason;
}

char* host_fetch_url(const char* url) {
    if (url == nullptr) return nullptr;
    try {
        auto file = platform::TemporaryFile::create(platform::temporary_folder(), FILE_STEM);
        if (!file) return nullptr;
        const std::size_t size = file->name().size() + 1;
        auto* name = static_cast<char*>(host::memory::allocate(
            size, {"host/runtime/fetch_url", __LINE__, "temporary file name"}));
        if (name == nullptr) return nullptr;
        std::memcpy(name, file->name().c_str(), size);
        if (fetch_into(url, name)) {
            file->keep();
            return name;
        }
        host::memory::release(name);
        return nullptr;
    } catch (const std::bad_alloc&) {
        host::note_memory_failure();
        return nullptr;
    }
}
