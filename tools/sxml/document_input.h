// Where a document comes from: a file, standard input, or the web.
#pragma once

#include <memory>
#include <string>

#include "tools/sxml/temporary_file.h"

namespace command {

// A document as a file that can be read more than once. What cannot (standard input, pipes, "http:"
// URLs) is copied into a temporary file, which goes with this object.
class DocumentInput {
  public:
    // `source`: the name of a file, "-" for standard input, or a name that begins with "http:".
    // Throws Failure when the input cannot be had, or not in full.
    explicit DocumentInput(const std::string& source);

    // As it is shown in messages.
    const std::string& name() const { return name_; }
    // A path that is no URL and not "-", whatever the source is called.
    const std::string& file() const { return file_; }

  private:
    void fetch(const std::string& url);
    void open(const std::string& source);

    std::string name_;
    std::string file_;
    std::unique_ptr<TemporaryFile> copy_;
};

}  // namespace command
