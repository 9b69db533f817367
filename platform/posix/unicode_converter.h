// The system's converter (iconv), for one character or a few at a time.
#pragma once

#include <iconv.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>

#include "platform/character_sets.h"

namespace platform {

// Converts texts of one encoding to another one, each by itself.
class TextConverter {
  public:
    // errno says why when is_known() is false then.
    TextConverter(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
    ~TextConverter() {
        if (is_known()) iconv_close(handle_);
    }
    TextConverter(const TextConverter&) = delete;
    TextConverter& operator=(const TextConverter&) = delete;

    bool is_known() const { return reinterpret_cast<std::intptr_t>(handle_) != -1; }

    // Result: how many bytes `output` begins with; nothing, with errno EINVAL for a text that ends
    // within a character, when it has no such form.
    std::optional<std::size_t> convert(std::span<const char> text, std::span<char> output) {
        char* from = const_cast<char*>(text.data());
        char* to = output.data();
        std::size_t from_left = text.size();
        std::size_t to_left = output.size();
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        const std::size_t result = iconv(handle_, &from, &from_left, &to, &to_left);
        if (result == static_cast<std::size_t>(-1)) return std::nullopt;
        // Some converters hold a character back that another may be joined to.
        iconv(handle_, nullptr, nullptr, &to, &to_left);
        errno = EILSEQ;
        if (result != 0) return std::nullopt;
        return output.size() - to_left;
    }

  private:
    iconv_t handle_;
};

// From a named character set to Unicode.
class UnicodeConverter {
  public:
    explicit UnicodeConverter(const std::string& name) : converter_("UTF-32LE", name.c_str()) {}

    bool is_known() const { return converter_.is_known(); }

    // The one character of these bytes, NO_CHARACTER or BEGINS_CHARACTER.
    std::int32_t character(std::span<const char> bytes) {
        std::array<char, 16> output{};
        std::int32_t code = NO_CHARACTER;
        const std::optional<std::size_t> size = converter_.convert(bytes, output);
        if (!size && errno == EINVAL) return BEGINS_CHARACTER;
        if (size == sizeof code) std::memcpy(&code, output.data(), sizeof code);
        return code;
    }

  private:
    TextConverter converter_;
};

}  // namespace platform
