#include "conversion/problem.h"

#include <cerrno>
#include <system_error>

#include "conversion/texts/utf8.h"
#include "platform/files.h"

namespace conversion {

namespace {

std::string in_document(const Place& place) {
    return ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
}

std::string in_records(const Place& place) {
    std::string text;
    const auto add = [&text](const std::string& part) {
        text += (text.empty() ? "" : ", ") + part;
    };
    if (place.record != 0) add("record " + std::to_string(place.record));
    if (!place.field.empty()) add("field " + place.field);
    if (place.byte_offset) add("byte offset " + std::to_string(*place.byte_offset));
    if (place.in_record) text += " (" + std::to_string(*place.in_record) + " in the record)";
    return text;
}

}  // namespace

std::string shown_in_line(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const utf8::Character character = utf8::first_character(text);
        const char32_t code = character.code;
        const bool is_control = code < 0x20 || (code >= 0x7F && code < 0xA0);
        append_utf8(is_control ? U'.' : code, shown);
        text.remove_prefix(character.length);
    }
    return shown;
}

std::string message_of(const Problem& problem) {
    std::string text = problem.place.file;
    if (problem.place.line != 0) text += in_document(problem.place);
    const std::string record = in_records(problem.place);
    if (!record.empty()) text += (text.empty() ? "" : ": ") + record;
    text += (text.empty() ? "" : ": ") + problem.what;
    if (!problem.remedy.empty()) text += "; " + problem.remedy;
    // Those of a layout may have several lines, with the source.
    return problem.cause == Cause::layout ? text : shown_in_line(text);
}

Cause cause_of(int system_error) {
    switch (system_error) {
        case ENOENT:
        case ENOTDIR:
            return Cause::not_found;
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR:
            return Cause::not_permitted;
        case EBUSY:
        case ETXTBSY:
            return Cause::busy;
        case ENOMEM:
            return Cause::no_memory;
        default:
            return platform::means_no_space(system_error) ? Cause::no_space : Cause::input_output;
    }
}

Problem system_problem(const std::string& file, int system_error) {
    Problem problem{cause_of(system_error), {}, {}, {}, system_error};
    problem.place.file = file;
    problem.what = std::error_code(system_error, std::generic_category()).message();
    return problem;
}

}  // namespace conversion
