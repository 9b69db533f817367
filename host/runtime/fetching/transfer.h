// Getting a document over HTTP: what the system's library for it has to do.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace host {

constexpr long CONNECT_SECONDS = 30;
constexpr long STALLED_SECONDS = 60;  // without a byte: the transfer is given up
constexpr long MOST_SECONDS = 3600;   // for the whole transfer
constexpr long MOST_REDIRECTIONS = 10;

// Where a document goes.
struct TransferTarget {
    int descriptor;
    std::uint64_t room;  // bytes that may still come
    int error = 0;       // of the system, when writing failed
    bool is_too_large = false;

    // Takes the next bytes. False when the transfer is to end.
    bool store(const char* data, std::size_t size);
};

// Gets what an address of HTTP or HTTPS names, redirections of these protocols followed. Result:
// empty, or why the document did not come whole.
std::string transfer_document(const char* url, TransferTarget& target);

}  // namespace host
