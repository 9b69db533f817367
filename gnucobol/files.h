// The documents that the program has open, and what its statements do with them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "gnucobol/document/open_file.h"
#include "gnucobol/layout.h"
#include "gnucobol/status.h"

namespace gnucobol {

class Files {
  public:
    // The process's; never destroyed.
    static Files& instance();

    // The open document of a file; null when there is none.
    OpenFile* find(const cob_file& file) const;

    // OPEN. False, with nothing done, when the file is not a document.
    bool open(const Where& where, cob_file& file, int mode, cob_field* item);
    void close(OpenFile& file, cob_field* item, int option);
    void read(OpenFile& file, cob_field* item, int options);
    void write(OpenFile& file, const Where& where, const cob_field& record, const char* expression,
               cob_field* item);
    // An operation that the document does not have as it is open.
    void refuse(OpenFile& file, cob_field* item, const char* verb, Status status);

    // The end of the program. Result: false when not all documents are complete.
    bool finish(bool is_complete);
    // In a child process that began as a copy of this one, the documents are not open.
    void leave_to_parent();

  private:
    void settle(cob_file& file, const std::string& path, const char* verb, cob_field* item,
                const Result& result);
    // Settles what an operation, a function that gives a Result, gives or throws.
    template <class Operation>
    void attempt(cob_file& file, const std::string& path, const char* verb, cob_field* item,
                 const Operation& operation);
    Result open_document(const std::string& path, const sxml_cob_file& bound, cob_file& file,
                         int mode);
    Result open_input(const std::string& path, const sxml_cob_file& bound, cob_file& file);
    Result open_output(const std::string& path, const sxml_cob_file& bound, cob_file& file);
    Result open_extend(const std::string& path, const sxml_cob_file& bound, cob_file& file);
    Result write_document(const std::string& path, const sxml_cob_file& bound, cob_file& file,
                          PrivateDocument document, bool is_extended);
    static Result finish_output(OpenFile& file, bool is_complete);
    Result keep(std::unique_ptr<OpenFile> file);
    void remove(const OpenFile& file);

    std::vector<std::unique_ptr<OpenFile>> files_;
};

// Whether a file can be a document by what it is called and how it is organized.
bool may_be_document(const cob_file& file);

}  // namespace gnucobol
