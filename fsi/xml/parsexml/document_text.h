// The texts of a whole document taken together: in which encoding can they be written?
#pragma once

#include "fsi/xml/handlers/xml_parser.h"

// True when every text of the document is ASCII.
bool document_is_ascii(const XmlParser& parser);

// The name of the encoding that the document's texts are in, for the XML declaration; null for
// none. This is the name that the document carries wherever the texts allow it.
const char* written_encoding(const XmlParser& parser);
