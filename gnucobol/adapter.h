// Serves the files of a run unit that are XML.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "gnucobol/fcd.h"
#include "gnucobol/open_file.h"

namespace gnucobol {

// A file that a program refers to and has not open.
struct ClosedFile {
    std::string path;        // the name on the disk
    cob_file* program_file;  // null when unknown

    bool operator==(const ClosedFile&) const = default;
};

class Adapter {
  public:
    // The process's adapter; it is never destroyed. Files still open when the process ends are
    // closed then.
    static Adapter& instance();

    // Does an operation and stores its status in the description. False, with nothing done, when
    // the file is none of ours.
    bool serve(Operation operation, FCD3& fcd);

    // Closes all files and reports what could not be stored.
    void close_all();

  private:
    OpenFile* find(FCD3& fcd) const;
    bool serve_closed(Operation operation, FCD3& fcd, cob_file* program_file);
    Result serve_open_file(OpenFile& file, Operation operation, FCD3& fcd);
    Result serve_closed_file(const ClosedFile& file, Operation operation, FCD3& fcd);
    Result open_input(const ClosedFile& file, FCD3& fcd);
    Result open_output(const ClosedFile& file, FCD3& fcd);
    Result keep(std::unique_ptr<OpenFile> file, FCD3& fcd, unsigned char mode);
    Result write(OpenFile& file, FCD3& fcd);
    Result close(OpenFile& file, FCD3& fcd);
    void remove(const OpenFile& file);
    void end_writing(const std::string& path);
    void collect_write_failures();

    std::vector<std::unique_ptr<OpenFile>> files_;
    std::vector<ClosedFile> locked_;  // closed with lock
};

}  // namespace gnucobol
