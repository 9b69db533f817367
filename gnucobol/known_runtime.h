// Whether this library may serve the COBOL runtime of the process, and what happens when not.
#pragma once

#include "gnucobol/fcd.h"

namespace gnucobol {

// True for libcob 3.1, when this library was compiled for it, too: its record of a file is read and
// changed here, and other versions have another one.
bool is_known_runtime();

// Whether the file is a document: sequential, and of a name that is_xml_file takes.
bool is_document(const cob_file& file);
bool is_document(const FCD3& fcd);

// Says on standard error, once, why documents are refused.
void say_refused();

// Ends an operation on a document with file status 30, as the runtime ends a failed one. `status`
// is the program's own item for it; may be null.
void refuse(cob_file& file, cob_field* status);

}  // namespace gnucobol
