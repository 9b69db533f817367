// OPEN EXTEND: records added to an existing document.
#pragma once

#include <cstdint>
#include <string>

#include "gnucobol/status.h"

namespace gnucobol {

// The new records are written as a document of their own, into a file without a name. Its records
// go after those of the old document; what comes out is what writing all of them at once gives.
class Extension {
  public:
    // `folder` is where the file without a name is created. Throws std::runtime_error when that
    // fails.
    explicit Extension(const std::string& folder);
    ~Extension();
    Extension(const Extension&) = delete;
    Extension& operator=(const Extension&) = delete;

    // The name to write the new records to.
    const std::string& name() const { return name_; }

    // An empty document, as this program writes it, has been written there. Copies the old document
    // up to its end tag into `target`, if it begins and ends as the empty one does, except for the
    // date in its comment. Throws std::runtime_error when one of them cannot be read.
    Result begin(const std::string& old_document, int target);
    // The new records have been written: puts them, and the end of the document, into `target`.
    // Throws as begin().
    Result append(int target) const;

  private:
    int descriptor_;
    std::string name_;
    std::string end_;               // of a document: the end tag and what follows
    std::uint64_t begin_size_ = 0;  // of the new document, before its first record
    std::uint64_t old_size_ = 0;    // of the old one, before its end
};

}  // namespace gnucobol
