#include "fsi/xml/sxml/entries.h"
#include "fsi/xml/sxml/xml_file.h"
#include "fsi/xml/sxml/xml_output.h"
#include "host/errors.h"
#include "host/trace.h"

int xml_sclose(XmlFile* file) {
    *host_file_error() = HOST_FILE_OK;
    if (host_trace_on != 0) host_trace(1, 1, "xml_sclose");
    if (direction_of(file->mode) == XML_OPEN_OUTPUT) {
        write_pieces({file->out, file->out_encoding}, {"</", file->xfd->name, ">\n"});
    }
    free_xml_file(file);
    if (host_trace_on != 0) host_trace(-1, 1, "Leaving");
    return 0;
}
