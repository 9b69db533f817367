// What a document's type (its DTD) declares.
#pragma once

#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "conversion/problem.h"
#include "conversion/schemas/particles.h"

namespace conversion {

struct DeclaredAttribute {
    std::string name;
    std::vector<std::string> values;  // of an enumeration
    bool is_required;
    Place place;
};

struct DeclaredElement {
    enum class Kind : std::uint8_t { undeclared, empty, text, elements, mixed, any };
    Kind kind = Kind::undeclared;
    Particles elements{};
    std::vector<DeclaredAttribute> attributes{};
    Place place{};
};

class DocumentType {
  public:
    // Reads what a document's DOCTYPE declares, in itself and in the local files that it names,
    // seen from `shown_name`; `foreign` is a file that counts as the external subset of a document
    // that names none, or is empty. What documents read before have declared stays. A problem when
    // a file is not well-formed, and for content models that nest too deep. Throws std::bad_alloc.
    Done add(const std::string& file, const std::string& shown_name, const std::string& foreign);

    bool is_empty() const { return elements_.empty(); }
    // Null when nothing of this name is declared.
    const DeclaredElement* find(const std::string& name) const;
    // The parts that could not be read, or are on the web, and foreign ones that do not count.
    const std::vector<Problem>& not_read() const { return not_read_; }
    // The files that were read beside the documents.
    const std::set<std::string>& files() const { return files_; }

  private:
    friend class DocumentTypeReader;
    std::unordered_map<std::string, DeclaredElement> elements_;
    std::vector<Problem> not_read_;
    std::set<std::string> files_;
};

}  // namespace conversion
