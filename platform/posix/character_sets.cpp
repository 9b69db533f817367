#include "platform/character_sets.h"

#include <iconv.h>

#include <cerrno>
#include <cstring>
#include <optional>

namespace platform {

namespace {

// A converter from a named character set to Unicode.
class Converter {
  public:
    explicit Converter(const std::string& name) : handle_(iconv_open("UTF-32LE", name.c_str())) {}
    ~Converter() {
        if (is_known()) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool is_known() const { return reinterpret_cast<std::intptr_t>(handle_) != -1; }

    // The character of a byte. Nothing when it only begins a character.
    std::optional<std::int32_t> character(std::uint8_t byte) {
        char input = static_cast<char>(byte);
        std::array<char, 16> output{};
        char* from = &input;
        char* to = output.data();
        std::size_t input_left = 1;
        std::size_t output_left = output.size();
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        const std::size_t result = iconv(handle_, &from, &input_left, &to, &output_left);
        if (result == static_cast<std::size_t>(-1) && errno == EINVAL) return std::nullopt;
        std::int32_t code = NO_CHARACTER;
        if (result == 0 && output.size() - output_left == sizeof code) {
            std::memcpy(&code, output.data(), sizeof code);
        }
        return code;
    }

  private:
    iconv_t handle_;
};

}  // namespace

CharacterSetKind find_character_set(const std::string& name, CharacterTable& table) {
    if (find_in_tables(name, table)) return CharacterSetKind::single_byte;
    Converter converter(name);
    if (!converter.is_known()) {
        return errno == ENOMEM ? CharacterSetKind::no_memory : CharacterSetKind::unknown;
    }
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
        const std::optional<std::int32_t> one =
            converter.character(static_cast<std::uint8_t>(byte));
        if (!one) return CharacterSetKind::multi_byte;
        table[byte] = *one;
    }
    return CharacterSetKind::single_byte;
}

}  // namespace platform
