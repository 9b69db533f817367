// Files without a name, which a process and its workers (processes.h) may write together, and bytes
// from one file to another.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace platform {

// Opens an empty file that is removed when no process has it open any more, however the processes
// end. It is in `folder`, or, where that is impossible or `folder` is empty, in the folder for
// temporary files. Result: a descriptor that the caller closes; -1 on failure with the reason in
// errno.
int open_nameless(const std::string& folder);
// A name that opens the file of a descriptor of this process again.
std::string name_of_descriptor(int descriptor);

// Copies the bytes from `begin` to before `end` of a file to a position of another one. The
// positions of both stay. Result: 0 or the error number; EIO when the file is shorter.
int copy_bytes(int from, std::uint64_t begin, std::uint64_t end, int to, std::uint64_t position);

// A file without a name.
class NamelessFile {
  public:
    // Creates an empty one as open_nameless() does. Nothing, with the reason in errno, when that is
    // impossible.
    static std::optional<NamelessFile> create();
    NamelessFile(NamelessFile&& other) noexcept;
    NamelessFile& operator=(NamelessFile&&) = delete;
    ~NamelessFile();

    // What opens it, in this process and in its workers.
    const std::string& name() const { return name_; }
    // In bytes; nothing, with the reason in errno, when it cannot be told.
    std::optional<std::uint64_t> size() const;
    // The last `count` bytes; fewer when the file is shorter. Nothing as size().
    std::optional<std::string> end(std::size_t count) const;
    // As copy_bytes().
    int copy(std::uint64_t begin, std::uint64_t end, int target, std::uint64_t position) const;

  private:
    explicit NamelessFile(int descriptor);

    int descriptor_;  // -1: moved away
    std::string name_;
};

// Opens a file that exists for writing, and keeps what it holds. Result: a descriptor that the
// caller closes; -1 on failure with the reason in errno.
int open_to_write_into(const char* name);
// Writes bytes at a position. Result: 0 or the error number.
int write_at(int descriptor, const char* data, std::size_t size, std::uint64_t position);

}  // namespace platform
