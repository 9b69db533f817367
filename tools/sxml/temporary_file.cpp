#include "tools/sxml/temporary_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

#include "tools/sxml/errors.h"

namespace command {

namespace {

// What the signal handler removes. A slot is in use while `used` is set, and its name is complete
// whenever that is so.
struct Slot {
    volatile std::sig_atomic_t used = 0;
    std::array<char, PATH_MAX> name{};
};
std::array<Slot, 8> slots;

void remove_files_and_die(int signal_number) {
    for (const Slot& slot : slots) {
        if (slot.used != 0) unlink(slot.name.data());
    }
    // Folders, empty by now.
    for (const Slot& slot : slots) {
        if (slot.used != 0) rmdir(slot.name.data());
    }
    // SA_RESETHAND has restored the default action, so this ends the process with the signal.
    raise(signal_number);
}

void install_handler() {
    struct sigaction action = {};
    action.sa_handler = remove_files_and_die;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal_number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        struct sigaction present = {};
        sigaction(signal_number, nullptr, &present);
        // A signal that the parent process had ignored (nohup, say) stays ignored.
        if (present.sa_handler == SIG_DFL) sigaction(signal_number, &action, nullptr);
    }
}

int occupy_slot(const std::string& name) {
    install_handler();
    for (std::size_t i = 0; i < slots.size(); ++i) {
        if (slots[i].used != 0 || name.size() >= slots[i].name.size()) continue;
        std::memcpy(slots[i].name.data(), name.c_str(), name.size() + 1);
        slots[i].used = 1;
        return static_cast<int>(i);
    }
    return -1;
}

void free_slot(int slot) {
    if (slot >= 0) slots[static_cast<std::size_t>(slot)].used = 0;
}

mode_t creation_mask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

}  // namespace

TemporaryFile::TemporaryFile(const std::string& folder, const std::string& stem) {
    constexpr std::size_t LONGEST_STEM = 200;  // leaves room within the 255 bytes of a file name
    name_ = folder + "/." + stem.substr(0, LONGEST_STEM) + ".XXXXXX";
    const int descriptor = mkstemp(name_.data());
    if (descriptor < 0) {
        fail(folder + ": no file can be created here: " + system_error_text(errno));
    }
    slot_ = occupy_slot(name_);
    fchmod(descriptor, 0666 & ~creation_mask());
    close(descriptor);
}

TemporaryFile::~TemporaryFile() {
    if (!name_.empty()) unlink(name_.c_str());
    free_slot(slot_);
}

void TemporaryFile::rename_to(const std::string& target) {
    if (std::rename(name_.c_str(), target.c_str()) != 0) fail_file(target, errno);
    free_slot(slot_);
    slot_ = -1;
    name_.clear();
}

TemporaryLink::TemporaryLink(const std::string& name, const std::string& target)
    : folder_(temporary_folder() + "/sxml.XXXXXX") {
    if (mkdtemp(folder_.data()) == nullptr) {
        fail(temporary_folder() + ": no folder can be created here: " + system_error_text(errno));
    }
    link_ = folder_ + "/" + name;
    folder_slot_ = occupy_slot(folder_);
    link_slot_ = occupy_slot(link_);
    if (symlink(target.c_str(), link_.c_str()) != 0) {
        const int error = errno;
        remove();
        fail_file(link_, error);
    }
}

TemporaryLink::~TemporaryLink() {
    remove();
}

void TemporaryLink::remove() const {
    unlink(link_.c_str());
    rmdir(folder_.c_str());
    free_slot(link_slot_);
    free_slot(folder_slot_);
}

std::string temporary_folder() {
    const char* folder = std::getenv("TMPDIR");
    return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

std::string read_whole_file(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    if (!file) fail_file(name, errno);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace command
