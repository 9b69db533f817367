// Runs the COBOL compiler.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/temporary_files.h"

namespace command::cob {

// Runs a program found on PATH. `errors` names a file for its standard error; empty: ours.
// Result: its exit status. Throws Failure when it cannot be run, or when a signal ends it.
int run_program(const std::vector<std::string>& words, const std::string& errors = "");

// The text of a file; empty when there is none. Throws Failure, naming it, when it cannot be read.
std::string text_of(const std::string& file);

// A new folder, readable for this user alone, which goes with this object and all that is in it.
class WorkFolder {
  public:
    // Throws Failure.
    WorkFolder();
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    std::string file(const std::string& name) const { return folder_.name() + "/" + name; }
    // Makes a file in it. Result: its path. Throws Failure, naming it, when that is impossible.
    std::string write(const std::string& name, std::string_view text) const;

  private:
    platform::TemporaryFolder folder_;
};

}  // namespace command::cob
