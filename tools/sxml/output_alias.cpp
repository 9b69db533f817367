#include "tools/sxml/output_alias.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "tools/sxml/errors.h"

namespace command {

namespace {

std::string comment_name(const std::string& target) {
    std::string name = std::filesystem::path(target).filename().string();
    char previous = '\0';
    for (char& c : name) {
        const bool is_printable = c >= ' ' && c <= '~';
        if (!is_printable || (c == '-' && previous == '-')) c = '_';
        previous = c;
    }
    return name;
}

}  // namespace

OutputAlias::OutputAlias(const AtomicOutput& output)
    : name_(comment_name(output.target())),
      link_(name_, std::filesystem::absolute(output.write_name()).string()),
      previous_folder_(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (previous_folder_ < 0 || chdir(link_.folder().c_str()) != 0) {
        const int error = errno;
        if (previous_folder_ >= 0) close(previous_folder_);
        fail_file(link_.folder(), error);
    }
}

OutputAlias::~OutputAlias() {
    // Only the link was opened from the private folder, so nothing is lost if there is no way back.
    [[maybe_unused]] const int status = fchdir(previous_folder_);
    close(previous_folder_);
}

}  // namespace command
