// Names of items and descriptions in XML.
#pragma once

#include <string>
#include <string_view>

#include "records/description.h"
#include "records/layout/node.h"

namespace records {

constexpr std::size_t MAX_ITEM_NAME = XFD_ITEM_NAME_SIZE - 1;
constexpr std::size_t MAX_DESCRIPTION_NAME = XFD_NAME_SIZE - 1;

// True for a name that stands in every document, DTD and schema: ASCII letters, digits, hyphens,
// underscores and full stops, not starting with one of the last three's signs or a digit, nor with
// "xml" in any case.
bool is_xml_name(std::string_view name);
// The name that the reader gives an element of this name: what names must be like to read back.
std::string as_read(std::string name, NameCase name_case);
// A COBOL name (or a file's) made into one that is_xml_name and reads back unchanged.
std::string xml_name(std::string_view name, NameCase name_case);
// Makes a name no longer than `limit` bytes.
std::string cut_name(std::string name, std::size_t limit);
// Joins two names with the sign that stands between words.
std::string join_names(const std::string& first, const std::string& second, NameCase name_case);

// Gives every item that is to have an element its name, before anything is chosen or hidden.
void set_names(Node& root, const LayoutOptions& options, Diagnostics& diagnostics, int& fillers);

// Makes the names of what is described valid together: a group's name stands once, no field has a
// group's name, fields beside each other differ. `layouts` are the described records. Result: the
// description's name, changed when an item has it, with a warning about the file `source`.
std::string settle_names(const std::vector<std::unique_ptr<Node>>& layouts,
                         const std::string& description_name, const std::string& source,
                         const LayoutOptions& options, Diagnostics& diagnostics);

}  // namespace records
