#include "platform/temporary_files.h"

#include <array>
#include <cerrno>
#include <string_view>

#include "platform/environment.h"
#include "platform/files.h"
#include "platform/random.h"
#include "platform/windows/handles.h"
#include "platform/windows/held_interrupts.h"
#include "platform/windows/system_texts.h"

namespace platform {

namespace {

constexpr int MOST_TRIES = 100;

std::string random_letters() {
    constexpr std::string_view letters =
        "abcdefghijklmnopqrstuvwxyz012345";  // 32: no letter is likelier
    std::array<unsigned char, 8> bytes{};
    draw_random(bytes.data(), bytes.size());
    std::string text;
    for (const unsigned char byte : bytes) text += letters[byte % letters.size()];
    return text;
}

// Calls `make` with names until one is new. Empty, with the reason in errno, when that fails.
template <class Make>
std::string make_new(const std::string& beginning, const Make& make) {
    for (int tries = 0; tries < MOST_TRIES; ++tries) {
        std::string name = beginning + random_letters();
        if (make(name)) return name;
        errno = error_number();
        if (errno != EEXIST) break;
    }
    return {};
}

}  // namespace

std::string temporary_folder() {
    const char* folder = environment_variable("TMPDIR");
    if (folder != nullptr && *folder != '\0') return folder;
    std::array<wchar_t, MAX_PATH + 2> path{};
    const DWORD length = GetTempPathW(static_cast<DWORD>(path.size()), path.data());
    std::string name = narrow({path.data(), length < path.size() ? length : 0});
    if (name.ends_with('\\')) name.pop_back();
    return name;
}

std::optional<TemporaryFile> TemporaryFile::create(const std::string& folder,
                                                   const std::string& stem) {
    constexpr std::size_t LONGEST_STEM = 200;  // leaves room within the 255 units of a file name
    const HeldInterrupts held;
    std::string name =
        make_new(folder + "/." + stem.substr(0, LONGEST_STEM) + ".", [](const std::string& wanted) {
            return FileHandle(wanted, GENERIC_WRITE, CREATE_NEW).is_open();
        });
    if (name.empty()) return std::nullopt;
    try {
        return TemporaryFile(name);
    } catch (...) {
        remove_file(name.c_str());
        throw;
    }
}

std::optional<TemporaryFolder> TemporaryFolder::create() {
    const HeldInterrupts held;
    std::string name = make_new(temporary_folder() + "/sxml.", [](const std::string& wanted) {
        return CreateDirectoryW(wide_file_name(wanted).c_str(), nullptr) != 0;
    });
    if (name.empty()) return std::nullopt;
    try {
        return TemporaryFolder(name);
    } catch (...) {
        remove_empty_folder(name.c_str());
        throw;
    }
}

}  // namespace platform
