#include "gnucobol/report.h"

#include <cstdio>

#include "host/config.h"

namespace gnucobol {

namespace {

// Statuses from here on tell of errors.
constexpr unsigned FIRST_ERROR = 30;

const char* meaning_of(Status status) {
    switch (status) {
        case Status::done:
            return "done";
        case Status::doubtful_data:
            return "a number in the document has no value that the field can hold";
        case Status::optional_missing:
            return "the optional file was not there";
        case Status::no_reel:
            return "a document has no reels";
        case Status::at_end:
            return "at end";
        case Status::permanent_error:
            return "the operation failed";
        case Status::no_space:
            return "there is no space left";
        case Status::not_found:
            return "there is no such file";
        case Status::not_permitted:
            return "an XML file cannot be used like this";
        case Status::locked:
            return "the file was closed with lock";
        case Status::attributes_differ:
            return "the record description does not fit the program";
        case Status::already_open:
            return "the file is open already";
        case Status::not_open:
            return "the file is not open";
        case Status::wrong_length:
            return "the record is shorter than the file's records may be";
        case Status::read_after_end:
            return "there is no record to read any more";
        case Status::not_open_for_input:
            return "the file is not open for input";
        case Status::not_open_for_output:
            return "the file is not open for output";
        case Status::not_open_for_update:
            return "the file is not open for update";
    }
    return "";
}

}  // namespace

void report_warning(const std::string& file, const std::string& warning) {
    if (host_config_flag("SXML_VERBOSE", 0) == 0) return;
    std::fprintf(stderr, "sxml: %s: warning: %s\n", file.c_str(), warning.c_str());
}

void report(const std::string& file, Operation operation, Status status,
            const std::string& reason) {
    const auto number = static_cast<unsigned>(status);
    if (number < FIRST_ERROR && host_config_flag("SXML_VERBOSE", 0) == 0) return;
    std::fprintf(stderr, "sxml: %s: %s: file status %02u: %s\n", file.c_str(), verb_of(operation),
                 number, reason.empty() ? meaning_of(status) : reason.c_str());
}

}  // namespace gnucobol
