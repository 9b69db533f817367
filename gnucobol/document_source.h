// The file that a document is read from or written to.
#pragma once

#include <optional>
#include <string>

namespace gnucobol {

// True for addresses of documents on the web.
bool is_url(const std::string& name);

class DocumentSource {
  public:
    // A file, as it is.
    explicit DocumentSource(std::string file) : file_(std::move(file)) {}
    DocumentSource(DocumentSource&& other) noexcept;
    DocumentSource& operator=(DocumentSource&&) = delete;
    // Removes the copy of a document from the web.
    ~DocumentSource();

    // The document of this name: a file, also with ".xml" added, or a private copy of what is at an
    // address. Nothing when there is none.
    static std::optional<DocumentSource> find(const std::string& name);

    const std::string& file() const { return file_; }

  private:
    std::string file_;
    bool is_copy_ = false;
};

}  // namespace gnucobol
