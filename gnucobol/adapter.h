// Serves the files of a run unit that are XML.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "gnucobol/fcd.h"
#include "gnucobol/open_file.h"

namespace gnucobol {

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
    OpenFile* find(const FCD3& fcd) const;
    void learn_program_file();
    Result serve_open_file(OpenFile& file, Operation operation, FCD3& fcd);
    Result serve_closed_file(const std::string& path, Operation operation, FCD3& fcd);
    Result open_input(const std::string& path, FCD3& fcd);
    Result open_output(const std::string& path, FCD3& fcd);
    Result keep(std::unique_ptr<OpenFile> file, FCD3& fcd, unsigned char mode);
    Result write(OpenFile& file, FCD3& fcd);
    Result close(OpenFile& file, FCD3& fcd);
    void collect_write_failures();
    bool is_locked(const FCD3& fcd) const;

    std::vector<std::unique_ptr<OpenFile>> files_;
    OpenFile* last_served_ = nullptr;
    // Files closed with lock: record area and assigned name.
    std::vector<std::pair<const unsigned char*, std::string>> locked_;
};

}  // namespace gnucobol
