// What the name of a file stands for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace platform {

// Tells whether two names are one file: through links, and whatever way a name takes.
struct FileIdentity {
    std::uint64_t device;
    std::uint64_t file;
    bool operator==(const FileIdentity&) const = default;
};

enum class FileKind : std::uint8_t { regular, folder, other };  // other: a pipe, a device, a socket

struct FileState {
    FileKind kind;
    FileIdentity identity;
    std::uint64_t size;  // of a regular file, bytes
};

// What is there, links followed; nothing, with the reason in errno, when there is nothing, or when
// it cannot be looked at.
std::optional<FileState> state_of(const std::string& name);
std::optional<FileState> state_of(int descriptor);

// Cuts a file to this length. Result: 0 or the error number.
int cut_file(int descriptor, std::uint64_t length);
// Removes a file that may be there.
void remove_file(const std::string& name);

}  // namespace platform
