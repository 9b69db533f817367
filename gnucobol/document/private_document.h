// The private file that a document is written to until it is complete, and the lock that keeps
// other writers away.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "gnucobol/status.h"

namespace gnucobol {

// Under the document's name there is what was there before until complete() has succeeded. The
// private file is called .NAME.part, beside the document; whoever holds its lock is the writer.
// What a killed writer has left is taken over. Where the folder admits no new file the document
// itself is locked, and the private file, which has no name, is copied into it at the end. What is
// no regular file (a pipe, a device) is written directly and not locked.
class PrivateDocument {
  public:
    // Gets ready to write the document `target`, which may be reached through links. From then on
    // nobody else changes what is there.
    static std::variant<PrivateDocument, Result> begin(const std::string& target);
    PrivateDocument(PrivateDocument&& other) noexcept;
    PrivateDocument& operator=(PrivateDocument&&) = delete;
    // Drops what was written.
    ~PrivateDocument();

    // The name to write to.
    const std::string& name() const { return name_; }
    std::string folder() const;
    // The private file's descriptor; -1 when the target is written directly.
    int descriptor() const { return descriptor_; }
    // Bytes of the document that is there; nothing when there is none.
    std::optional<std::uint64_t> old_size() const { return old_size_; }
    // Puts what was written, and stored by the system, in the place of the document.
    Result complete();
    // In a child process that began as a copy of this one: the file and its lock are the parent's.
    void leave_to_parent();

  private:
    PrivateDocument() = default;
    Result begin_beside();
    Result begin_elsewhere();
    Result take_over_permissions();
    Result copy_into_place();

    std::string target_;  // without links
    std::string name_;
    bool has_name_ = false;  // the private file, to be removed
    std::optional<std::uint64_t> old_size_;
    int descriptor_ = -1;
    int target_lock_ = -1;  // the document itself, when the private file is elsewhere
    int signal_slot_ = -1;
};

// Whether a writer holds the document, in this process or another.
bool is_being_written(const std::string& document);

}  // namespace gnucobol
