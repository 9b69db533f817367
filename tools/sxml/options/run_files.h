// Which files a run reads and which it writes: no output is an input, and no two are one file.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "conversion/documents/document_source.h"
#include "platform/files.h"

namespace command {

class RunFiles {
  public:
    // Knows of the settings file and of the trace, which the environment names. Throws Failure when
    // there is no such settings file. To be made before the module is loaded, which reads it.
    RunFiles();

    // "-" is standard input. Addresses on the web and what does not exist do not matter.
    void reads(const std::string& name);
    // A document that was asked for by `name`: standard input itself for "-", else the file found.
    void reads_document(const std::string& name, const conversion::DocumentSource& source);
    // "-" is standard output.
    void writes(const std::string& name);
    // Throws Failure (wrong usage), naming both, when an output is a file that is read, or when two
    // outputs are one file; and when standard input or output would be used twice. To be called
    // before any output is opened.
    void check() const;

  private:
    struct File {
        std::string name;  // for messages
        std::string path;  // where it is, or will be
        // Of a regular file that exists. Pipes and devices can be read and written.
        std::optional<platform::FileIdentity> identity;
    };
    static void check_stream(const std::vector<File>& files, const std::string& use);
    static bool are_one(const File& first, const File& second);

    std::vector<File> inputs_;
    std::vector<File> outputs_;
};

}  // namespace command
