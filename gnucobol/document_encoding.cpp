#include "gnucobol/document_encoding.h"

#include <iconv.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <optional>

#include "host/config.h"
#include "host/encoding.h"

namespace gnucobol {

namespace {

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

}  // namespace gnucobol
