#include "tests/runtime/scratch.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() {
    std::string name = (fs::temp_directory_path() / "sxml-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no scratch folder");
    path_ = name;
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::size_t ScratchFolder::size() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(path_), fs::directory_iterator()));
}

std::string read_file(const std::string& name) {
    std::ifstream input(name, std::ios::binary);
    std::ostringstream text;
    text << input.rdbuf();
    return text.str();
}

void write_file(const std::string& name, const std::string& text) {
    std::ofstream(name, std::ios::binary) << text;
}

Environment::Environment(const char* name, const char* value) : name_(name) {
    if (const char* before = std::getenv(name); before != nullptr) before_ = before;
    value != nullptr ? setenv(name, value, 1) : unsetenv(name);
}

Environment::~Environment() {
    before_.has_value() ? setenv(name_, before_->c_str(), 1) : unsetenv(name_);
}

Random::Random()
    : seed_(std::random_device()()),
      note_(__FILE__, __LINE__, "seed " + std::to_string(seed_)),
      engine_(seed_) {}
