// Fetching a document over HTTP into a private temporary file, on libcurl.
#include <array>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>

#include "host/config.h"
#include "host/files.h"
#include "host/runtime/curl_library.h"
#include "host/runtime/fetch.h"
#include "host/runtime/memory_failure.h"
#include "host/runtime/settings.h"
#include "host/runtime/tracked_memory.h"
#include "platform/descriptors.h"
#include "platform/temporary_files.h"

namespace {

constexpr long CONNECT_SECONDS = 30;
constexpr long STALLED_SECONDS = 60;                    // without a byte: the transfer is given up
constexpr long MOST_SECONDS = 3600;                     // for the whole transfer
constexpr const char* LIMIT_NAME = "SXML_FETCH_LIMIT";  // in MiB
constexpr std::int16_t DEFAULT_LIMIT = 1024;
constexpr long MOST_REDIRECTIONS = 10;
constexpr const char* PROTOCOLS = "http,https";
constexpr const char* FILE_STEM = "sxml";

// Where a document goes.
struct Target {
    int descriptor;
    std::uint64_t room;  // bytes that may still come
    int error;           // of the system, when writing failed
};

std::uint64_t largest_document() {
    constexpr std::uint64_t mebibyte = std::uint64_t{1024} * 1024;
    const std::int16_t limit = host_config_number(LIMIT_NAME, DEFAULT_LIMIT);
    // No value takes the limit away: "no" or 0 may be a slip.
    return static_cast<std::uint64_t>(limit > 0 ? limit : DEFAULT_LIMIT) * mebibyte;
}

// Anything but the number of bytes as result ends the transfer.
std::size_t store(char* data, std::size_t size, std::size_t count, void* context) {
    auto* target = static_cast<Target*>(context);
    const std::size_t bytes = size * count;
    if (bytes > target->room) {
        target->room = 0;
        return 0;
    }
    target->room -= bytes;
    target->error = platform::write_whole(target->descriptor, data, bytes);
    return target->error == 0 ? bytes : 0;
}

CURLcode transfer(const host::CurlLibrary& curl, const char* url, Target* target, char* reason) {
    CURL* handle = curl.easy_init();
    if (handle == nullptr) return CURLE_OUT_OF_MEMORY;
    const bool is_set =
        curl.easy_setopt(handle, CURLOPT_ERRORBUFFER, reason) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_URL, url) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_PROTOCOLS_STR, PROTOCOLS) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, PROTOCOLS) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_MAXREDIRS, MOST_REDIRECTIONS) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_FAILONERROR, 1L) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_NOSIGNAL, 1L) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, CONNECT_SECONDS) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_TIMEOUT, MOST_SECONDS) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, STALLED_SECONDS) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_WRITEFUNCTION, store) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_WRITEDATA, target) == CURLE_OK;
    const CURLcode result = is_set ? curl.easy_perform(handle) : CURLE_OUT_OF_MEMORY;
    curl.easy_cleanup(handle);
    return result;
}

// Result: null, or a text that says why the document is not there in full. `reason` has
// CURL_ERROR_SIZE bytes.
const char* fetch(const char* url, int descriptor, char* reason) {
    host::refresh_environment();
    Target target = {descriptor, largest_document(), 0};
    reason[0] = '\0';
    const host::CurlLibrary* curl = host::curl_library();
    if (curl == nullptr) return "the library libcurl cannot be loaded; install it";
    const CURLcode result = transfer(*curl, url, &target, reason);
    if (result == CURLE_OK) return nullptr;
    if (target.error != 0) return std::strerror(target.error);
    if (result == CURLE_WRITE_ERROR) return "it is larger than SXML_FETCH_LIMIT allows";
    return reason[0] != '\0' ? reason : "libcurl gives no reason";
}

bool fetch_into(const char* url, const char* file) {
    const int descriptor = platform::open_to_write(file);
    if (descriptor < 0) return false;
    std::array<char, CURL_ERROR_SIZE> reason{};
    const bool is_complete = fetch(url, descriptor, reason.data()) == nullptr;
    return platform::close_descriptor(descriptor) == 0 && is_complete;
}

}  // namespace

std::string host::fetch_document(const std::string& url, int descriptor) {
    std::array<char, CURL_ERROR_SIZE> reason{};
    const char* problem = fetch(url.c_str(), descriptor, reason.data());
    return problem != nullptr ? problem : "";
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
