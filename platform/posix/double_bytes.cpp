#include "platform/double_bytes.h"

#include <unordered_map>

#include "platform/posix/unicode_converter.h"

namespace platform {

namespace {

constexpr char SHIFT_OUT = 0x0E;
constexpr char SHIFT_IN = 0x0F;
constexpr std::size_t EBCDIC_SPACE = 0x40;
constexpr std::size_t EBCDIC_ZERO = 0xF0;

std::int32_t pair_of(UnicodeConverter& converter, std::size_t lead, std::size_t trail,
                     bool has_shifts) {
    const std::array<char, 4> bytes = {SHIFT_OUT, static_cast<char>(lead), static_cast<char>(trail),
                                       SHIFT_IN};
    const std::span<const char> all(bytes);
    return converter.character(has_shifts ? all : all.subspan(1, 2));
}

// The pair by which the system writes a character; nothing when it writes it otherwise.
std::optional<std::size_t> written_pair(TextConverter& writer, std::int32_t code, bool has_shifts) {
    std::array<char, sizeof code> text{};
    std::memcpy(text.data(), &code, sizeof code);
    std::array<char, 16> bytes{};
    const std::size_t start = has_shifts ? 1 : 0;
    const std::optional<std::size_t> size = writer.convert(text, bytes);
    if (size != 2 + 2 * start || (has_shifts && bytes[0] != SHIFT_OUT)) return std::nullopt;
    return std::size_t{static_cast<unsigned char>(bytes[start])} << 8 |
           static_cast<unsigned char>(bytes[start + 1]);
}

// Of several pairs for one character, the one that the system writes stays, or else the lowest.
void find_read_only(TextConverter& writer, DoubleByteSet& set) {
    set.is_read_only.assign(set.pairs.size(), false);
    std::unordered_map<std::int32_t, std::size_t> written;
    for (std::size_t pair = 0; pair < set.pairs.size(); ++pair) {
        const std::int32_t code = set.pairs[pair];
        if (code < 0) continue;
        const auto [known, is_new] = written.emplace(code, pair);
        if (is_new) continue;
        std::size_t lost = pair;
        if (written_pair(writer, code, set.has_shifts) == pair) std::swap(known->second, lost);
        set.is_read_only[lost] = true;
    }
}

}  // namespace

CharacterSetKind find_double_byte_set(const std::string& name, DoubleByteSet& set) {
    const auto failure = [] {
        return errno == ENOMEM ? CharacterSetKind::no_memory : CharacterSetKind::unknown;
    };
    UnicodeConverter converter(name);
    if (!converter.is_known()) return failure();
    TextConverter writer(name.c_str(), "UTF-32LE");
    if (!writer.is_known()) return failure();
    for (std::size_t byte = 0; byte < set.single.size(); ++byte) {
        const char text = static_cast<char>(byte);
        set.single[byte] = converter.character({&text, 1});
        set.is_lead[byte] = set.single[byte] == BEGINS_CHARACTER;
        if (set.is_lead[byte]) set.single[byte] = NO_CHARACTER;
    }
    set.has_shifts = set.single[EBCDIC_SPACE] == ' ' && set.single[EBCDIC_ZERO] == '0';
    set.pairs.assign(std::size_t{1} << 16, NO_CHARACTER);
    bool has_any = false;
    for (std::size_t lead = EBCDIC_SPACE; lead < 0xFF; ++lead) {
        if (!set.has_shifts && !set.is_lead[lead]) continue;
        for (std::size_t trail = EBCDIC_SPACE; trail < 0xFF; ++trail) {
            const std::int32_t code = pair_of(converter, lead, trail, set.has_shifts);
            set.pairs[lead << 8 | trail] = code;
            has_any = has_any || code >= 0;
        }
    }
    if (!has_any) return CharacterSetKind::unknown;
    find_read_only(writer, set);
    return CharacterSetKind::multi_byte;
}

}  // namespace platform
