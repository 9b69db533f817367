#include "host/runtime/library_files.h"

#include <array>

#include "platform/files.h"
#include "platform/libraries.h"

namespace host {

namespace {

std::string folder_of_this_library() {
    constexpr std::size_t LONGEST_PATH = 4096;
    std::array<char, LONGEST_PATH> folder{};
    const void* here = reinterpret_cast<const void*>(&library_file);
    return platform_folder_of_code(here, folder.data(), folder.size()) != 0 ? folder.data() : ".";
}

}  // namespace

std::string library_file(const std::string& name) {
    static const std::string folder = folder_of_this_library();
    std::string beside = folder + "/" + name;
    std::string installed = folder + "/sxml/" + name;
    return !platform::state_of(beside) && platform::state_of(installed) ? installed : beside;
}

}  // namespace host
