#include "host/runtime/library_files.h"

#include <dlfcn.h>
#include <unistd.h>

namespace host {

namespace {

std::string folder_of_this_library() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&library_file), &info) == 0 ||
        info.dli_fname == nullptr) {
        return ".";
    }
    const std::string file = info.dli_fname;
    const std::size_t slash = file.rfind('/');
    return slash == std::string::npos ? "." : file.substr(0, slash);
}

}  // namespace

std::string library_file(const std::string& name) {
    static const std::string folder = folder_of_this_library();
    std::string beside = folder + "/" + name;
    std::string installed = folder + "/sxml/" + name;
    return access(beside.c_str(), F_OK) != 0 && access(installed.c_str(), F_OK) == 0 ? installed
                                                                                     : beside;
}

}  // namespace host
