#include "tools/sxml/options/layout_source.h"

#include <algorithm>
#include <sstream>
#include <string_view>

#include "conversion/formats/byte_source.h"
#include "platform/files.h"
#include "tools/sxml/failure.h"

namespace command {

namespace {

bool can_be_read_again(const std::string& file) {
    if (file == "-") return false;
    const auto state = platform::state_of(file);
    return !state || state->kind != platform::FileKind::other;
}

// A choice among several files or records is the only error that an option remedies.
std::string remedy_for(const records::Diagnostics& diagnostics, const LayoutOptions& options) {
    const bool is_choice = std::any_of(
        diagnostics.all().begin(), diagnostics.all().end(), [](const records::Diagnostic& one) {
            return one.message.find("choose one") != std::string::npos;
        });
    return is_choice && options.copybook.fd.empty() ? "; choose the FD or record with --fd NAME"
                                                    : "";
}

constexpr std::string_view PROGRAM = "sxml: ";

// "PLACE: KIND: what" in the form of all messages: "sxml: PLACE: what" for an error, "sxml: KIND:
// PLACE: what" for others. Source lines, which are indented, and the mark below stay as they are.
std::string as_message(const std::string& line) {
    if (line.starts_with("    ")) return line;
    for (const std::string kind : {"error: ", "warning: ", "note: "}) {
        const std::size_t at = line.starts_with(kind) ? 0 : line.find(": " + kind);
        if (at == std::string::npos) continue;
        const std::string place = at == 0 ? "" : line.substr(0, at + 2);
        const std::string what = line.substr(place.size() + kind.size());
        return std::string(PROGRAM) + (kind == "error: " ? "" : kind) + place + what;
    }
    return std::string(PROGRAM) + line;
}

void tell(const records::Diagnostics& diagnostics) {
    std::istringstream lines(diagnostics.text());
    std::string text;
    for (std::string line; std::getline(lines, line);) {
        text += (text.empty() ? "" : "\n") + as_message(line);
    }
    if (text.empty()) return;
    if (diagnostics.has_errors()) return say_failure(text.substr(PROGRAM.size()));
    say(text + "\n");
}

}  // namespace

LayoutSource::LayoutSource(const LayoutOptions& options) : options_(options), name_(options.file) {
    if (can_be_read_again(options.file)) return;
    conversion::ByteSource source = value_of(conversion::ByteSource::open(options.file));
    name_ = source.name();
    text_ = value_of(conversion::read_all(source));
}

records::Description LayoutSource::load(records::RecordEncoding encoding, RunFiles& files) const {
    if (options_.file == "-") {
        files.reads("-");
        files.check();  // what has been read already would be missing in the layout
    }
    records::Diagnostics diagnostics;
    records::Description description = load(encoding, diagnostics, true);
    for (const std::string& file : diagnostics.files()) files.reads(file);
    return description;
}

records::Description LayoutSource::load_quietly(records::RecordEncoding encoding) const {
    records::Diagnostics diagnostics;
    return load(encoding, diagnostics, false);
}

records::Description LayoutSource::load(records::RecordEncoding encoding,
                                        records::Diagnostics& diagnostics, bool is_told) const {
    records::LayoutOptions layout = options_.layout;
    layout.name_case = records::configured_name_case();
    layout.encoding = encoding;
    if (encoding == records::RecordEncoding::ebcdic) layout.ebcdic_sign = true;
    std::optional<records::Description> description = compile(layout, diagnostics);
    if (is_told || diagnostics.has_errors()) tell(diagnostics);
    if (!description || diagnostics.has_errors()) {
        fail(name_ + ": there is no usable record layout" + remedy_for(diagnostics, options_));
    }
    if (description->record_length() <= 0) fail(name_ + ": the record has no bytes");
    return std::move(*description);
}

std::optional<records::Description> LayoutSource::compile(const records::LayoutOptions& layout,
                                                          records::Diagnostics& diagnostics) const {
    if (!text_) {
        return records::load_description(options_.file, options_.copybook, layout, diagnostics);
    }
    return records::description_from_text(*text_, name_, options_.copybook, layout, diagnostics);
}

}  // namespace command
