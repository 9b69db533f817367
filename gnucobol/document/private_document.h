// The private file that a document is written to until it is complete, and the lock that keeps
// other writers away.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "gnucobol/status.h"

namespace gnucobol {

// Until complete() has succeeded, the previous document stays under its name. The
// private file is called .NAME.part, beside the document; whoever holds its lock is the writer.
// The file of a killed writer is taken over. Where no file can be created in the folder, the
// document itself is locked, and the private file, which has no name, is copied into it at the end.
// Other than regular files (pipes, devices) are written directly and not locked.
class PrivateDocument {
  public:
    // Gets ready to write the document `target`, which may be reached through links. From then on
    // no other writer changes the existing document.
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
    // Replaces the document with what was written, which the system has stored.
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

// Refuses with `in_use` while a writer holds the document, in this process or another, and with the
// reason when that cannot be found out.
Result check_unlocked(const std::string& document);

}  // namespace gnucobol
