// Makes layouts and records up at random, for the command on two systems:
//
//     random_layouts FOLDER NUMBER
//
// writes, for each from 1 to NUMBER, N.cpy, N.dat with three records, and N.options with what the
// command is to be told, a word a line.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "records/copybook.h"
#include "tests/module/random_layout.h"

namespace {

void store(const std::string& name, const std::string& text) {
    std::ofstream(name, std::ios::binary) << text;
}

// A program around the copybook, whose pictures have decimal commas.
std::string program_around(const std::string& copybook) {
    return "       IDENTIFICATION DIVISION.\n       PROGRAM-ID. P.\n"
           "       ENVIRONMENT DIVISION.\n       CONFIGURATION SECTION.\n"
           "       SPECIAL-NAMES.\n           DECIMAL-POINT IS COMMA.\n"
           "       DATA DIVISION.\n       FILE SECTION.\n       FD TRIP.\n" +
           copybook;
}

std::string options_of(const LayoutChoices& choices) {
    const records::LayoutOptions& layout = choices.options;
    std::string words =
        "--set\n4GL_COLUMN_CASE=" + std::to_string(static_cast<int>(layout.name_case)) + "\n";
    if (choices.latin1) words += "--set\nSXML_ENCODING=ISO-8859-1\n";
    if (choices.decimal_comma) words += "--fd\nTRIP\n";
    if (layout.binary_size == records::BinarySize::by_digits_248) words += "--binary-size\n2-4-8\n";
    if (!layout.binary_truncate) words += "--no-truncate\n";
    if (layout.filler) words += "--filler\n";
    if (layout.ebcdic_sign) words += "--ebcdic-sign\n";
    return words;
}

// False, with a message, when the layout cannot be compiled.
bool write_layout(const std::string& stem, std::uint64_t seed) {
    RandomLayout random(seed);
    const LayoutChoices choices = random.choices();
    const std::string copybook = random.copybook();
    records::Diagnostics diagnostics;
    auto source = records::parse_copybook_text(copybook, "random.cpy", {}, diagnostics);
    if (source) source->decimal_point_is_comma = choices.decimal_comma;
    auto description =
        source ? records::compile_description(*source, choices.options, diagnostics) : std::nullopt;
    if (!description) {
        std::fprintf(stderr, "seed %d: %s\n", static_cast<int>(seed), diagnostics.text().c_str());
        return false;
    }
    std::string records;
    for (int i = 0; i < 3; ++i) records += random.record(*description);
    store(stem + ".cpy", choices.decimal_comma ? program_around(copybook) : copybook);
    store(stem + ".dat", records);
    store(stem + ".options", options_of(choices));
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: random_layouts FOLDER NUMBER\n");
        return 2;
    }
    const std::uint64_t number = std::strtoull(argv[2], nullptr, 10);
    for (std::uint64_t seed = 1; seed <= number; ++seed) {
        if (!write_layout(std::string(argv[1]) + "/" + std::to_string(seed), seed)) return 1;
    }
    return 0;
}
