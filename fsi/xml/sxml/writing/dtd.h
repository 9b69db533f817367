// The document type declaration inside an output file, derived from the record description.
#pragma once

#include "fsi/xml/sxml/xml_file.h"

// Writes the declaration. False when memory is exhausted; it is then incomplete.
bool write_xml_dtd(const XmlFile& file);
