// Functions of the host that it hands over by name. The host must have set the ones below before
// the first file operation that needs them; a function not set yet is null.
#pragma once

#include "host/dispatch_table.h"
#include "host/record_description.h"

namespace host_functions {

Q4ParseXFDFunction* parse_xfd();
Q4XFDFreeFunction* free_xfd();
Q4TestCOBOLCondFunction* test_condition();
QconvertFunction* convert();
XmlRemoveEntry* remove_file();
XmlRenameEntry* rename_file();
XmlCopyEntry* copy_file();

}  // namespace host_functions
