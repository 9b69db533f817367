// What fuzz targets that work on files share: when a check fails, they print the input and end.
#pragma once

#include <expat.h>
#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>

namespace fuzz {

class Judge {
  public:
    // Prints to `out`, which must outlive this.
    explicit Judge(std::ostream& out) : out_(out) {}

    // The input of the case that follows; it must live as long.
    void begin(std::string_view input) { input_ = input; }

    // Unless the condition holds, ends the process, printing the failed check and the input.
    void require(bool holds, const char* what, std::string_view detail = {}) const {
        if (holds) return;
        out_ << "not so: " << what << '\n' << detail << "\ninput:\n" << input_ << std::endl;
        std::abort();
    }

    // To Expat alone.
    void require_well_formed(const std::string& text) const {
        const std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser(
            XML_ParserCreate(nullptr), XML_ParserFree);
        require(parser != nullptr, "there is a parser");
        const auto size = static_cast<int>(text.size());
        require(XML_Parse(parser.get(), text.data(), size, 1) == XML_STATUS_OK,
                "the document is well-formed", text);
    }

  private:
    std::ostream& out_;
    std::string_view input_;
};

// A folder for the files of this process, in memory where there is one. It goes with this object.
class Folder {
  public:
    explicit Folder(const Judge& judge) {
        std::string name =
            std::filesystem::exists("/dev/shm") ? "/dev/shm/fuzzXXXXXX" : "/tmp/fuzzXXXXXX";
        judge.require(mkdtemp(name.data()) != nullptr, "there is a folder");
        path_ = name;
    }
    ~Folder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::string operator/(const char* name) const { return path_ / name; }
    std::size_t entries() const {
        const std::filesystem::directory_iterator files(path_);
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }

  private:
    std::filesystem::path path_;
};

}  // namespace fuzz
