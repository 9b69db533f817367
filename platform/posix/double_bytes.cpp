#include "platform/double_bytes.h"

#include <iconv.h>

#include <cerrno>
#include <cstring>
#include <span>

namespace platform {

namespace {

constexpr char SHIFT_OUT = 0x0E;
constexpr char SHIFT_IN = 0x0F;
constexpr std::int32_t BEGINS_ANOTHER = -2;  // the bytes only begin a character

class Converter {
  public:
    explicit Converter(const std::string& name) : handle_(iconv_open("UTF-32LE", name.c_str())) {}
    ~Converter() {
        if (is_known()) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool is_known() const { return reinterpret_cast<std::intptr_t>(handle_) != -1; }

    // The one character of these bytes, NONE or BEGINS_ANOTHER.
    std::int32_t character(std::span<char> bytes) {
        std::array<char, 16> output{};
        char* from = bytes.data();
        char* to = output.data();
        std::size_t input_left = bytes.size();
        std::size_t output_left = output.size();
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        const std::size_t result = iconv(handle_, &from, &input_left, &to, &output_left);
        if (result == static_cast<std::size_t>(-1) && errno == EINVAL) return BEGINS_ANOTHER;
        std::int32_t code = DoubleByteSet::NONE;
        if (result != 0) return code;
        // Some converters hold a character back that another may be joined to.
        iconv(handle_, nullptr, nullptr, &to, &output_left);
        if (output.size() - output_left == sizeof code) {
            std::memcpy(&code, output.data(), sizeof code);
        }
        return code;
    }

  private:
    iconv_t handle_;
};

std::int32_t pair_of(Converter& converter, std::size_t lead, std::size_t trail, bool has_shifts) {
    std::array<char, 4> bytes = {SHIFT_OUT, static_cast<char>(lead), static_cast<char>(trail),
                                 SHIFT_IN};
    const std::span<char> all(bytes);
    const std::int32_t code = converter.character(has_shifts ? all : all.subspan(1, 2));
    return code < 0 ? DoubleByteSet::NONE : code;
}

}  // namespace

bool find_double_byte_set(const std::string& name, DoubleByteSet& set) {
    Converter converter(name);
    if (!converter.is_known()) return false;
    for (std::size_t byte = 0; byte < set.single.size(); ++byte) {
        char bytes = static_cast<char>(byte);
        set.single[byte] = converter.character({&bytes, 1});
        set.is_lead[byte] = set.single[byte] == BEGINS_ANOTHER;
        if (set.is_lead[byte]) set.single[byte] = DoubleByteSet::NONE;
    }
    constexpr std::size_t EBCDIC_SPACE = 0x40;
    constexpr std::size_t EBCDIC_ZERO = 0xF0;
    set.has_shifts = set.single[EBCDIC_SPACE] == ' ' && set.single[EBCDIC_ZERO] == '0';
    set.pairs.assign(std::size_t{1} << 16, DoubleByteSet::NONE);
    bool has_any = false;
    for (std::size_t lead = EBCDIC_SPACE; lead < 0xFF; ++lead) {
        if (!set.has_shifts && !set.is_lead[lead]) continue;
        for (std::size_t trail = EBCDIC_SPACE; trail < 0xFF; ++trail) {
            const std::int32_t code = pair_of(converter, lead, trail, set.has_shifts);
            set.pairs[lead << 8 | trail] = code;
            has_any = has_any || code >= 0;
        }
    }
    return has_any;
}

}  // namespace platform
