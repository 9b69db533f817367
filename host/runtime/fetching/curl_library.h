// libcurl, loaded when the first document is fetched: loading it with its dependencies takes longer
// than converting a small file.
#pragma once

#include <curl/curl.h>

namespace host {

struct CurlLibrary {
    decltype(&::curl_easy_init) easy_init;
    decltype(&::curl_easy_setopt) easy_setopt;
    decltype(&::curl_easy_perform) easy_perform;
    decltype(&::curl_easy_cleanup) easy_cleanup;
};

// Null when the library is not there or refuses to start; standard error then says why. The next
// call tries again.
const CurlLibrary* curl_library();

}  // namespace host
