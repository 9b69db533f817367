// Fetching a document over HTTP into a private temporary file, on libcurl.
#include <curl/curl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/files.h"
#include "host/runtime/descriptors.h"
#include "host/runtime/tracked_memory.h"

namespace {

constexpr long CONNECT_SECONDS = 30;
constexpr long STALLED_SECONDS = 60;  // without a byte: the transfer is given up
constexpr long MOST_REDIRECTIONS = 10;
constexpr const char* PROTOCOLS = "http,https";
constexpr const char* FILE_PATTERN = "/sxml-XXXXXX";

// A tracked block with the pattern of a temporary file's name; null when memory is exhausted.
char* temporary_name() {
    const char* folder = std::getenv("TMPDIR");
    if (folder == nullptr || *folder == '\0') folder = "/tmp";
    const std::size_t size = std::strlen(folder) + std::strlen(FILE_PATTERN) + 1;
    auto* name = static_cast<char*>(
        host::memory::allocate(size, {"host/runtime/fetch_url", __LINE__, "temporary file name"}));
    if (name != nullptr) std::snprintf(name, size, "%s%s", folder, FILE_PATTERN);
    return name;
}

std::size_t store(char* data, std::size_t size, std::size_t count, void* descriptor) {
    const std::size_t bytes = size * count;
    return host::write_whole(*static_cast<int*>(descriptor), data, bytes) == 0 ? bytes : 0;
}

bool transfer(const char* url, int descriptor) {
    static const bool is_ready = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    CURL* handle = is_ready ? curl_easy_init() : nullptr;
    if (handle == nullptr) return false;
    const bool is_set =
        curl_easy_setopt(handle, CURLOPT_URL, url) == CURLE_OK &&
        curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, PROTOCOLS) == CURLE_OK &&
        curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, PROTOCOLS) == CURLE_OK &&
        curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L) == CURLE_OK &&
        curl_easy_setopt(handle, CURLOPT_MAXREDIRS, MOST_REDIRECTIONS) == CURLE_OK &&
        curl_easy_setopt(handle, CURLOPT_FAILONERROR, 1L) == CURLE_OK &&
        curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L) == CURLE_OK &&
        curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, CONNECT_SECONDS) == CURLE_OK &&
        curl_easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L) == CURLE_OK &&
        curl_easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, STALLED_SECONDS) == CURLE_OK &&
        curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, store) == CURLE_OK &&
        curl_easy_setopt(handle, CURLOPT_WRITEDATA, &descriptor) == CURLE_OK;
    const bool is_done = is_set && curl_easy_perform(handle) == CURLE_OK;
    curl_easy_cleanup(handle);
    return is_done;
}

}  // namespace

char* host_fetch_url(const char* url) {
    if (url == nullptr) return nullptr;
    char* name = temporary_name();
    if (name == nullptr) return nullptr;
    const int descriptor = mkstemp(name);  // readable and writable for the owner alone
    if (descriptor < 0) {
        host::memory::release(name);
        return nullptr;
    }
    const bool is_complete = transfer(url, descriptor);
    if (close(descriptor) == 0 && is_complete) return name;
    unlink(name);
    host::memory::release(name);
    return nullptr;
}
