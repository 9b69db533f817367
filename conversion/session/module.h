// The module, loaded once for the process as any host loads it, and the files it opens.
#pragma once

#include <string>

#include "conversion/problem.h"
#include "host/record_handler.h"
#include "host/runtime/module.h"
#include "records/description.h"

namespace conversion {

// Loads the module at the first call; it serves any number of files at once, each on the thread
// that opened it. The pointer is never null. A problem says why it cannot be loaded.
Result<const host::Module*> xml_module();

// A file that the module has open; closed with host::Module::close.
struct ModuleFile {
    XmlFile* file = nullptr;
    Xfd* xfd = nullptr;  // the module's copy of the description; it is released with the file
};

struct FileToOpen {
    std::string name;              // on the disk
    std::string shown_name;        // in messages; empty: as `name`
    std::int32_t direction = 0;    // XML_OPEN_INPUT or XML_OPEN_OUTPUT
    std::string document_element;  // of a document that is written; empty: the description's name
};

// Opens a file with this description, which need not stay, and this handler, which must. A problem
// for names that cannot be those of document elements.
Result<ModuleFile> open_module_file(const host::Module& module, const FileToOpen& file,
                                    const records::Description& description,
                                    HostRecordHandler& handler);

// Why the file of this name (on the disk) could not be written so far, when it could not; `file` of
// its place is that name. Said once.
Done take_write_failure(const std::string& file);
// The same of whatever file it is.
Done take_write_failure();
// Failures since the last call that were not reported otherwise: memory was exhausted (then
// something of the document may be missing), or a file could not be read (then what was read of it
// looked like all). Said once. take_write_failure() tells of exhausted memory, too.
Done take_hidden_failure();

}  // namespace conversion
