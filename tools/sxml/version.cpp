#include "tools/sxml/version.h"

#include <expat.h>

#include "host/runtime/library_versions.h"
#include "platform/runtime_version.h"

namespace command {

std::string version_text() {
    const auto line = [](const std::string& name, const std::string& version) {
        return "\n  " + name + " " + version;
    };
    const platform::RuntimeVersion runtime = platform::c_runtime_version();
    std::string expat = XML_ExpatVersion();  // "expat_2.5.0"
    expat.erase(0, expat.find('_') + 1);
    return "sxml " SXML_VERSION_LABEL "\nruns with" + line("Expat", expat) +
           line("PCRE2", host::regex_library_version()) + line(runtime.name, runtime.version) +
           line(host::transfer_library(), "when a web address is fetched");
}

}  // namespace command
