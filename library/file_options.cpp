#include "library/file_options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "records/option_names.h"

namespace library {

namespace {

using conversion::BlankFill;
using conversion::Done;
using conversion::Problem;
using conversion::RecordFormat;
using conversion::Result;
using records::Choices;

const Choices<bool> YES_OR_NO = {{"no", false}, {"yes", true}};
const Choices<bool> KINDS = {{"document", true}, {"records", false}};
const Choices<BlankFill> FILLS = {{"by-type", BlankFill::by_type},
                                  {"keep", BlankFill::keep},
                                  {"spaces", BlankFill::spaces},
                                  {"zeros", BlankFill::zeros}};

Problem wrong(const std::string& what, const std::string& remedy) {
    Problem problem{conversion::Cause::usage, {}, what, remedy};
    return problem;
}

// Sets `variable` to the choice that `value` names.
template <class Variable, class Value>
Done choose(std::string_view name, std::string_view value, const Choices<Value>& choices,
            Variable& variable) {
    const auto found = choices.find(value);
    if (found != choices.end()) {
        variable = found->second;
        return std::nullopt;
    }
    std::string names;
    for (const auto& choice : choices) names += (names.empty() ? "" : ", ") + choice.first;
    return wrong("the option " + std::string(name) + " cannot be " + std::string(value),
                 "it takes one of " + names);
}

Done choose_format(const std::string& name, FileOptions& options) {
    options.detects_format = name == "auto";
    if (options.detects_format) return std::nullopt;
    Result<RecordFormat> found = RecordFormat::find(name == "lines" ? "line" : name);
    if (!found) return found.problem();
    options.format = *std::move(found);
    return std::nullopt;
}

Done take_number(std::string_view name, const std::string& value, std::uint64_t& number) {
    const char* const end = value.data() + value.size();
    const auto [rest, error] = std::from_chars(value.data(), end, number);
    if (error == std::errc() && rest == end) return std::nullopt;
    return wrong("the option " + std::string(name) + " cannot be " + value,
                 "it takes a number of bytes");
}

Done take_condition(const std::string& value, FileOptions& options) {
    std::optional<records::ItemDirective> directive = records::condition_directive(value);
    if (!directive) {
        return wrong("the option when cannot be " + value,
                     "name the record or item and its condition, as in HEADER: KIND = \"H\"");
    }
    options.copybook.directives.push_back(*std::move(directive));
    return std::nullopt;
}

void take_name(const std::string& value, FileOptions& options) {
    if (std::optional<records::ItemDirective> directive = records::name_directive(value)) {
        options.copybook.directives.push_back(*std::move(directive));
    } else {
        options.layout.name = value;
    }
}

bool is_setting(std::string_view name) {
    return name.starts_with("SXML_") || name.starts_with("4GL_");
}

// The options that take any text. False when it is not one of them.
bool take_text(std::string_view name, const std::string& value, FileOptions& options) {
    if (name == "encoding") {
        options.encoding = value;
    } else if (name == "fd") {
        options.copybook.fd = value;
    } else if (name == "copy-path") {
        options.copybook.copy_path.push_back(value);
    } else if (name == "layout") {
        options.copybook.more_files.push_back(value);
    } else if (name == "name") {
        take_name(value, options);
    } else if (name == "hide") {
        options.copybook.directives.push_back({value, "hide"});
    } else if (name == "record") {
        options.record_path = value;
    } else if (is_setting(name)) {
        options.settings.emplace_back(name, value);
    } else {
        return false;
    }
    return true;
}

// Says how a source becomes a layout: of no effect where the layout is a description file.
bool is_for_sources(std::string_view name) {
    constexpr std::array<std::string_view, 10> NAMES = {
        "fd",  "source-format",   "machine", "byte-order", "binary-size", "national-size",
        "odo", "debugging-lines", "filler",  "no-truncate"};
    return std::find(NAMES.begin(), NAMES.end(), name) != NAMES.end();
}

Done take(std::string_view name, const std::string& value, FileOptions& options) {
    if (is_for_sources(name)) options.copybook.for_sources.emplace_back(name);
    if (take_text(name, value, options)) return std::nullopt;
    if (name == "kind") return choose(name, value, KINDS, options.is_document);
    if (name == "format") return choose_format(value, options);
    if (name == "skip") return take_number(name, value, options.skip);
    if (name == "skip-end") return take_number(name, value, options.skip_end);
    if (name == "strict") return choose(name, value, YES_OR_NO, options.is_strict);
    if (name == "when") return take_condition(value, options);
    if (name == "buffer") return choose(name, value, FILLS, options.fill);
    if (name == "source-format") {
        return choose(name, value, records::SOURCE_FORMATS, options.copybook.format);
    }
    if (name == "machine") return choose(name, value, records::MACHINES, options.layout.machine);
    if (name == "byte-order") {
        return choose(name, value, records::BYTE_ORDERS, options.layout.byte_order);
    }
    if (name == "binary-size") {
        return choose(name, value, records::BINARY_SIZES, options.layout.binary_size);
    }
    if (name == "national-size") {
        return choose(name, value, records::NATIONAL_SIZES, options.layout.national_size);
    }
    if (name == "odo") return choose(name, value, records::MOVING_DATA, options.layout.moving_data);
    if (name == "debugging-lines") {
        return choose(name, value, YES_OR_NO, options.copybook.debugging_lines);
    }
    if (name == "ebcdic-sign") return choose(name, value, YES_OR_NO, options.layout.ebcdic_sign);
    if (name == "filler") return choose(name, value, YES_OR_NO, options.layout.filler);
    if (name == "no-truncate") {
        bool is_off = false;
        Done problem = choose(name, value, YES_OR_NO, is_off);
        options.layout.binary_truncate = !is_off;
        return problem;
    }
    return wrong("there is no option " + std::string(name), "sxml/records.h lists the options");
}

}  // namespace

conversion::Result<FileOptions> read_options(const char* const* options) {
    FileOptions result;
    for (; options != nullptr && *options != nullptr; ++options) {
        const std::string_view text = *options;
        const std::size_t equals = text.find('=');
        if (equals == std::string_view::npos) {
            return wrong("the option " + std::string(text) + " has no value",
                         "write it as NAME=VALUE");
        }
        Done problem = take(text.substr(0, equals), std::string(text.substr(equals + 1)), result);
        if (problem) return *std::move(problem);
    }
    return result;
}

}  // namespace library
