#include <cerrno>

#include "fsi/xml/sxml/entries.h"
#include "host/errors.h"
#include "host/files.h"
#include "host/trace.h"

int xml_smake(const char* name, const char* params) {
    *host_file_error() = HOST_FILE_OK;
    if (host_trace_on != 0) {
        host_trace(1, 1, "xml_smake: '%s', '%s'", name, params != nullptr ? params : "NULL");
    }
    HostStream* const stream = host_fopen(name, "w", 1);
    if (stream == nullptr) {
        const int error = errno;
        if (host_trace_on != 0) host_trace(-1, 1, "Leaving, failed to open, error %d\n", error);
        return 0;
    }
    host_fclose(stream);
    if (host_trace_on != 0) host_trace(-1, 1, "Leaving, success");
    return 1;
}
