// The files that names refer to.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

namespace platform {

// Identifies a file: names of one file give equal identities, through links and on any path.
struct FileIdentity {
    std::uint64_t device;  // 0: not known, which standard streams of Windows may have
    std::uint64_t file;
    // Where a device is not known, the number of the file decides: better one output is refused
    // than an input lost.
    bool operator==(const FileIdentity& other) const {
        return file == other.file && (device == other.device || device == 0 || other.device == 0);
    }
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
// Opens a file to be written at its end, as it is; what is written is never changed. Null on
// failure with the reason in errno. Closed with std::fclose.
std::FILE* open_to_append(const std::string& name);
// Cuts an open file to nothing. Result: 0 or the error number.
int empty_file(std::FILE* file);
// True for the error numbers that say that a file cannot take more: disk, quota or limit reached.
bool means_no_space(int error);
// Removes a file. Result: 0 or the error number.
int remove_file(const char* name);
// Removes a folder that is empty. Result: 0 or the error number.
int remove_empty_folder(const char* name);
// Gives a file another name, in the place of what has that name. Result: 0 or the error number.
int rename_file(const char* old_name, const char* new_name);
// Gives an open file the permissions that another one has. Result: 0 or the error number.
int copy_permissions(int from, int to);
// Has what a file holds written to the disk. Result: 0, also where the file system cannot do this,
// or the error number.
int flush_file(const std::string& name);
// Has the names in a folder written to the disk, as far as the system can.
void flush_folder(const std::string& name);
// Takes all that is written to it, and holds nothing.
const char* null_device();

}  // namespace platform
