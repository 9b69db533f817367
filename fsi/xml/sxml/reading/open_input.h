// Opening a document for reading.
#pragma once

#include "fsi/xml/sxml/xml_file.h"

// Opens the document `name` (a file, also under the name with ".xml" added, or an "http:" URL) and
// parses it up to the start of its document element. False with a file error code: 15 when there is
// no such document, else what the parse made of it. The caller releases the file record.
bool start_input(XmlFile& file, const char* name);
