// A folder for the files of one test, and whole files read and written.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

// Nobody else has this folder; it goes when the object does.
class ScratchFolder {
  public:
    ScratchFolder() {
        std::random_device random;
        do {
            path_ =
                std::filesystem::temp_directory_path() / ("sxml-test-" + std::to_string(random()));
        } while (!std::filesystem::create_directory(path_));
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::string file(std::string_view name) const { return (path_ / name).string(); }
    // Number of files in it.
    std::size_t size() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_),
                                                      std::filesystem::directory_iterator()));
    }

  private:
    std::filesystem::path path_;
};

// Empty for a file that cannot be read.
inline std::string read_file(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void write_file(const std::string& name, std::string_view text) {
    std::ofstream(name, std::ios::binary) << text;
}
