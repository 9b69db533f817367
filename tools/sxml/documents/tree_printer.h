// An element tree as readable text.
#pragma once

#include <string>
#include <string_view>

#include "conversion/formats/byte_sink.h"
#include "tools/sxml/documents/parsed_document.h"

namespace command {

// Prints a line for each element to standard output: indentation, name, occurrence numbers,
// attributes, value.
class TreePrinter {
  public:
    enum class Texts { shortened, full };

    TreePrinter(const ParsedDocument& document, Texts texts);
    // Throws Failure when it cannot be written.
    void print();

  private:
    void print_element(std::uint32_t element, std::size_t level);
    void add_numbers(std::uint32_t element);
    void add_attributes(std::uint32_t element);
    void add_quoted(std::string_view text);
    void add_text(std::string_view text);
    void flush();

    conversion::ByteSink output_;
    const XmlApi& api_;
    std::uint32_t root_;
    bool latin1_;  // the texts are in ISO-8859-1, else in UTF-8
    bool shorten_;
    std::string lines_;
};

}  // namespace command
