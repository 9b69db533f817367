// Files that must not survive a failure: removed when the command fails or is interrupted.
#pragma once

#include <string>

namespace command {

// An empty file of a name that nobody else has. Removed by the destructor, and when the process is
// ended by SIGINT, SIGTERM, SIGHUP or SIGPIPE, unless it was renamed.
class TemporaryFile {
  public:
    // Creates it in `folder`, its name made from `stem`, with the permissions that a new file gets.
    // Throws Failure when that is impossible.
    TemporaryFile(const std::string& folder, const std::string& stem);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& name() const { return name_; }
    // Gives it the name `target`, replacing what was there. Throws Failure.
    void rename_to(const std::string& target);

  private:
    std::string name_;
    int slot_ = -1;  // in the list of files that a signal removes; -1 when not in it
};

// A symbolic link `name` to `target`, in a folder of its own that nobody else uses. Both go as a
// TemporaryFile does.
class TemporaryLink {
  public:
    // Throws Failure.
    TemporaryLink(const std::string& name, const std::string& target);
    ~TemporaryLink();
    TemporaryLink(const TemporaryLink&) = delete;
    TemporaryLink& operator=(const TemporaryLink&) = delete;

    const std::string& folder() const { return folder_; }

  private:
    void remove() const;

    std::string folder_;
    std::string link_;
    int link_slot_ = -1;
    int folder_slot_ = -1;
};

// The folder for temporary files: TMPDIR, or /tmp.
std::string temporary_folder();

// The whole contents of a file. Throws Failure.
std::string read_whole_file(const std::string& name);

}  // namespace command
