// Names of files: from what a program assigns to the name on the disk, and which of them are XML.
#pragma once

#include <string>

#include "gnucobol/runtime.h"

namespace gnucobol {

// The name that a file is assigned to, before the runtime's mapping.
std::string assigned_name(const cob_file& file);

// The name on the disk, found as the COBOL runtime finds it for its own files: environment
// variables DD_name, dd_name and name, $name in the parts of a path, the runtime's folder for
// files. URLs stay as they are.
std::string mapped_name(const std::string& assigned);

// True for names that end in ".xml" (any letter case) and for those that one of the patterns in
// SXML_FILES (separated by colons; *, ? and [] as in a shell) fits, whole or without the folder.
bool is_xml_file(const std::string& mapped);

// The name without folder and without its last suffix.
std::string stem_of(const std::string& name);

}  // namespace gnucobol
