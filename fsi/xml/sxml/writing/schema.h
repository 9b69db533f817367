// The XML Schema beside an output file, derived from the record description.
#pragma once

#include "fsi/xml/sxml/xml_file.h"

enum class SchemaResult {
    written,
    no_file,   // no schema name is set, or the file cannot be opened: nothing was written
    no_memory  // the schema file is incomplete
};

// Writes the schema into the file that the settings name.
SchemaResult write_xml_schema(const XmlFile& file);
