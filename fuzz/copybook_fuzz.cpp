// Fuzzes the copybook compiler's front: source text, COPY, pictures, clauses and the conditions of
// directives. The first byte chooses the options; one value takes the rest as a condition alone.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "records/copybook.h"

namespace {

constexpr std::uint8_t CONDITION_ONLY = 0x80;

records::CopybookOptions options_of(std::uint8_t choice) {
    records::CopybookOptions options;
    options.format = static_cast<records::SourceFormat>(choice & 3);
    options.debugging_lines = (choice & 4) != 0;
    options.tab_width = (choice & 8) != 0 ? 4 : 8;
    if ((choice & 16) != 0) options.fd = "A";
    return options;
}

// Every message must have a text: walking over all of them finds broken places.
void check(const records::Diagnostics& diagnostics) {
    for (const records::Diagnostic& diagnostic : diagnostics.all()) {
        if (diagnostic.message.empty()) __builtin_trap();
    }
    (void)diagnostics.text();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::uint8_t choice = data[0];
    const std::string_view input(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::string text(input);
    records::CopybookOptions options = options_of(choice);
    if ((choice & CONDITION_ONLY) != 0) {
        text = "*> sxml: when " + text + "\n01 a.\n  05 b pic x.\n  88 c value 1.\n";
        options = {};
        options.format = records::SourceFormat::free;
    }
    records::Diagnostics diagnostics;
    // No such folder: COPY finds nothing but what has an absolute name.
    (void)records::parse_copybook_text(text, "/nowhere/fuzz.cpy", options, diagnostics);
    check(diagnostics);
    return 0;
}
