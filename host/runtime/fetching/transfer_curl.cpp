// Transfers on libcurl.
#include <array>
#include <cstring>

#include "host/runtime/fetching/curl_library.h"
#include "host/runtime/fetching/transfer.h"
#include "host/runtime/library_versions.h"

namespace {

constexpr const char* PROTOCOLS = "http,https";

// Anything but the number of bytes as result ends the transfer.
std::size_t store(char* data, std::size_t size, std::size_t count, void* context) {
    const std::size_t bytes = size * count;
    return static_cast<host::TransferTarget*>(context)->store(data, bytes) ? bytes : 0;
}

CURLcode transfer(const host::CurlLibrary& curl, const char* url, host::TransferTarget* target,
                  char* reason) {
    CURL* handle = curl.easy_init();
    if (handle == nullptr) return CURLE_OUT_OF_MEMORY;
    const bool is_set =
        curl.easy_setopt(handle, CURLOPT_ERRORBUFFER, reason) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_URL, url) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_PROTOCOLS_STR, PROTOCOLS) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, PROTOCOLS) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_MAXREDIRS, host::MOST_REDIRECTIONS) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_FAILONERROR, 1L) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_NOSIGNAL, 1L) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, host::CONNECT_SECONDS) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_TIMEOUT, host::MOST_SECONDS) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, host::STALLED_SECONDS) == CURLE_OK &&
        // A transfer that is announced as too large is not started.
        curl.easy_setopt(handle, CURLOPT_MAXFILESIZE_LARGE,
                         static_cast<curl_off_t>(target->room)) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_WRITEFUNCTION, store) == CURLE_OK &&
        curl.easy_setopt(handle, CURLOPT_WRITEDATA, target) == CURLE_OK;
    const CURLcode result = is_set ? curl.easy_perform(handle) : CURLE_OUT_OF_MEMORY;
    curl.easy_cleanup(handle);
    return result;
}

}  // namespace

const char* host::transfer_library() {
    return "libcurl";
}

std::string host::transfer_document(const char* url, TransferTarget& target) {
    const CurlLibrary* curl = curl_library();
    if (curl == nullptr) return "the library libcurl cannot be loaded; install it";
    std::array<char, CURL_ERROR_SIZE> reason{};
    const CURLcode result = transfer(*curl, url, &target, reason.data());
    if (result == CURLE_OK) return {};
    if (result == CURLE_FILESIZE_EXCEEDED) target.is_too_large = true;
    return reason[0] != '\0' ? reason.data() : "libcurl gives no reason";
}
