#include "fsi/xml/sxml/entries.h"
#include "host/errors.h"

// Files cannot be opened for input yet, so there is never a record to give.
int xml_sread(XmlFile*, void*) {
    *host_file_error() = HOST_FILE_UNSUPPORTED;
    return 0;
}
