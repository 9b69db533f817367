// The entries for whole files: make, close, remove, rename, copy.

#include <cerrno>

#include "fsi/xml/sxml/entries.h"
#include "fsi/xml/sxml/host_functions.h"
#include "fsi/xml/sxml/writing/xml_output.h"
#include "fsi/xml/sxml/xml_file.h"
#include "host/errors.h"
#include "host/files.h"
#include "host/trace.h"

int xml_smake(const char* name, const char* params) {
    *host_file_error() = HOST_FILE_OK;
    if (host_trace_on != 0) {
        host_trace(1, HOST_TRACE_ENTRIES, "xml_smake: '%s', '%s'", name,
                   params != nullptr ? params : "NULL");
    }
    HostStream* const stream = host_fopen(name, "w", 1);
    if (stream == nullptr) {
        const int error = errno;
        if (host_trace_on != 0)
            host_trace(-1, HOST_TRACE_ENTRIES, "Leaving, failed to open, error %d\n", error);
        return 0;
    }
    host_fclose(stream);
    if (host_trace_on != 0) host_trace(-1, HOST_TRACE_ENTRIES, "Leaving, success");
    return 1;
}

int xml_sclose(XmlFile* file) {
    *host_file_error() = HOST_FILE_OK;
    if (host_trace_on != 0) host_trace(1, HOST_TRACE_ENTRIES, "xml_sclose");
    if (direction_of(file->mode) == XML_OPEN_OUTPUT) {
        write_pieces({file->out, file->out_encoding}, {"</", file->xfd->name, ">\n"});
    }
    free_xml_file(file);
    if (host_trace_on != 0) host_trace(-1, HOST_TRACE_ENTRIES, "Leaving");
    return 0;
}

int xml_sremove(const char* name) {
    *host_file_error() = HOST_FILE_OK;
    return host_functions::remove_file()(name);
}

int xml_srename(const char* old_name, const char* new_name) {
    *host_file_error() = HOST_FILE_OK;
    return host_functions::rename_file()(old_name, new_name);
}

int xml_scopy(const char* source, const char* target) {
    *host_file_error() = HOST_FILE_OK;
    return host_functions::copy_file()(source, target);
}
