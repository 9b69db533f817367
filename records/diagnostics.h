// Errors and warnings about source text, reported like a compiler does.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace records {

// A place in a source text. Lines and columns count from 1.
struct Place {
    std::shared_ptr<const std::string> file;  // name as opened; null when there is no file
    int line = 0;
    int column = 0;
    std::string text;  // the source line (its beginning, when it is very long)
    std::shared_ptr<const Place> copied_from;  // the COPY statement that brought `file` in, or null
};

enum class Severity { error, warning, note };

struct Diagnostic {
    Severity severity = Severity::error;
    Place place;
    std::string message;
};

class Diagnostics {
  public:
    // Each adds notes for the COPY statements that the place was reached through.
    void error(Place place, std::string message);
    void warning(Place place, std::string message);
    void note(Place place, std::string message);

    // Notes a file that was read: the source, or a text that was copied into it.
    void add_file(const std::string& name) { files_.push_back(name); }
    const std::vector<std::string>& files() const { return files_; }

    bool has_errors() const { return errors_ > 0; }
    const std::vector<Diagnostic>& all() const { return all_; }
    // "file:line:column: error: message", the source line and a caret below it, for each; texts
    // without a place are "error: message". Errors past the hundredth are only counted, and so are
    // warnings.
    std::string text() const;

  private:
    void add(Severity severity, Place place, std::string message);

    std::vector<Diagnostic> all_;
    std::vector<std::string> files_;
    int errors_ = 0;
    int warnings_ = 0;
};

}  // namespace records
