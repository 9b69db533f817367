// Files and folders for a single run: nobody else may read them, their names are unpredictable, and
// they are removed with their objects or when a signal ends the process (interrupts.h).
#pragma once

#include <optional>
#include <string>

#include "platform/interrupts.h"

namespace platform {

// The folder for temporary files: TMPDIR where it may be trusted (environment.h), else the
// system's.
std::string temporary_folder();

class TemporaryFile {
  public:
    // Creates an empty file in `folder`: a dot, `stem`, a dot and random letters. Nothing, with the
    // reason in errno, when that is impossible.
    static std::optional<TemporaryFile> create(const std::string& folder, const std::string& stem);
    TemporaryFile(TemporaryFile&& other) noexcept;
    TemporaryFile& operator=(TemporaryFile&&) = delete;
    ~TemporaryFile();

    const std::string& name() const { return name_; }
    // From now on it is a file like others, which its user removes. Result: its name.
    std::string keep();
    // Gives it this name, in the place of what was there. Result: 0 or the error number.
    int rename_to(const std::string& target);

  private:
    explicit TemporaryFile(std::string name);

    std::string name_;  // empty: it is no longer a temporary file
    RemovedOnInterrupt removed_;
};

class TemporaryFolder {
  public:
    // Creates a folder in temporary_folder(). The files in it must be gone before it goes. Nothing,
    // with the reason in errno, when that is impossible.
    static std::optional<TemporaryFolder> create();
    TemporaryFolder(TemporaryFolder&& other) noexcept;
    TemporaryFolder& operator=(TemporaryFolder&&) = delete;
    ~TemporaryFolder();

    const std::string& name() const { return name_; }

  private:
    explicit TemporaryFolder(std::string name);

    std::string name_;
    RemovedOnInterrupt removed_;
};

}  // namespace platform
