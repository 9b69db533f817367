#include "gnucobol/document_encoding.h"

#include <iconv.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>

#include "host/config.h"
#include "host/encoding.h"

namespace gnucobol {

namespace {

// An XML declaration fits into this.
constexpr std::size_t HEAD_SIZE = 1024;

class Converter {
  public:
    explicit Converter(const std::string& encoding)
        : handle_(iconv_open("UTF-8", encoding.c_str())) {}
    ~Converter() {
        if (is_known()) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // Nothing, with the reason in errno, when there are no such characters or no such encoding.
    std::optional<std::string> utf8_of(std::string text) {
        if (!is_known()) return std::nullopt;
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        std::array<char, 1024> converted{};
        char* from = text.data();
        char* to = converted.data();
        std::size_t input_left = text.size();
        std::size_t output_left = converted.size();
        const std::size_t result = iconv(handle_, &from, &input_left, &to, &output_left);
        if (result == static_cast<std::size_t>(-1)) return std::nullopt;
        return std::string(converted.data(), to);
    }

  private:
    bool is_known() const { return reinterpret_cast<std::intptr_t>(handle_) != -1; }

    iconv_t handle_;
};

}  // namespace

std::string encoding_to_write() {
    const char* const encoding = host_config_string("SXML_ENCODING", nullptr);
    return encoding != nullptr ? encoding : "";
}

bool is_utf8(const std::string& encoding) {
    return encoding.empty() || host_encoding_code(encoding.c_str()) == HOST_ENCODING_UTF8;
}

bool extends_ascii(const std::string& encoding) {
    std::string ascii;
    for (char c = 0x20; c < 0x7F; ++c) ascii += c;
    return Converter(encoding).utf8_of(ascii) == ascii;
}

ByteSet bytes_without_meaning(const std::string& encoding) {
    ByteSet bytes{};
    if (is_utf8(encoding)) return bytes;
    Converter converter(encoding);
    for (std::size_t byte = 0x80; byte < bytes.size(); ++byte) {
        const std::string text(1, static_cast<char>(byte));
        bytes[byte] = !converter.utf8_of(text) && errno == EILSEQ;
    }
    return bytes;
}

bool is_latin1_document(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return true;
    std::ifstream file(path, std::ios::binary);
    if (!file) return true;
    std::string head(HEAD_SIZE, '\0');
    file.read(head.data(), static_cast<std::streamsize>(head.size()));
    const std::string_view declaration = std::string_view(head).substr(0, head.find("?>"));
    const std::size_t at = declaration.find("encoding");
    if (at == std::string_view::npos) return false;
    const std::size_t start = declaration.find_first_of("\"'", at);
    if (start == std::string_view::npos) return false;
    const std::size_t end = declaration.find(declaration[start], start + 1);
    const std::string name(declaration.substr(start + 1, end - start - 1));
    return host_encoding_code(name.c_str()) == HOST_ENCODING_LATIN1;
}

}  // namespace gnucobol
