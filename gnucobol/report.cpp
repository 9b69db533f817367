#include "gnucobol/report.h"

#include <cstdint>
#include <cstdio>
#include <map>
#include <new>

#include "host/config.h"
#include "host/runtime/memory/memory_report.h"

namespace gnucobol {

namespace {

// Statuses from here on tell of errors.
constexpr unsigned FIRST_ERROR = 30;
constexpr std::uint64_t PRINTED_AT_MOST = 10;

// How often each message came, by file and kind.
std::map<std::string, std::map<std::string, std::uint64_t>>& counts() {
    static auto* const all = new std::map<std::string, std::map<std::string, std::uint64_t>>;
    return *all;
}

bool is_verbose = false;
bool has_printed = false;  // counts() is there; asking for it takes no memory any more

// Whether a message of this kind is still printed for the file. Counts it.
bool is_printed(const std::string& file, const std::string& kind) {
    std::map<std::string, std::uint64_t>& of_file = counts()[file];
    has_printed = true;
    return ++of_file[kind] <= PRINTED_AT_MOST || is_verbose;
}

void print(const std::string& file, const std::string& kind, const std::string& text) {
    if (!is_printed(file, kind)) return;
    std::fprintf(stderr, "sxml: %s: %s\n", file.c_str(), text.c_str());
}

// Within the same limit, over all files.
void print_exhausted_memory(const char* file, const char* verb, unsigned status) {
    static std::uint64_t printed = 0;
    if (++printed > PRINTED_AT_MOST && !is_verbose) return;
    std::fprintf(stderr, "sxml: %s: %s: file status %02u: %s\n", file, verb, status,
                 host::memory_problem());
}

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
        case Status::attributes_differ:
            return "the record description does not fit the program";
        case Status::in_use:
            return "another program, or another file of this one, is writing it";
        case Status::already_open:
            return "the file is open already";
        case Status::wrong_length:
            return "the record does not have a length that the file's records may have";
        case Status::read_after_end:
            return "there is no further record to read";
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

void refresh_report_settings() {
    const char* const value = host_config_string("SXML_VERBOSE", nullptr);
    is_verbose = value != nullptr && *value != '\0' && host_config_flag("SXML_VERBOSE", 0) != 0;
}

void report(const std::string& file, const char* verb, const Result& result) {
    const auto number = static_cast<unsigned>(result.status);
    if (number < FIRST_ERROR && result.reason.empty() && !is_verbose) return;
    try {
        const std::string digits = (number < 10 ? "0" : "") + std::to_string(number);
        print(file, std::string(verb) + digits,
              std::string(verb) + ": file status " + digits + ": " +
                  (result.reason.empty() ? meaning_of(result.status) : result.reason));
    } catch (const std::bad_alloc&) {
        print_exhausted_memory(file.c_str(), verb, number);
    }
}

void report_failure(const char* file, const char* verb, const std::exception& failure) {
    if (dynamic_cast<const std::bad_alloc*>(&failure) == nullptr) {
        try {
            return report(file, verb, {Status::permanent_error, failure.what()});
        } catch (const std::bad_alloc&) {
            // Told below.
        }
    }
    print_exhausted_memory(file, verb, static_cast<unsigned>(Status::permanent_error));
}

void report_warning(const std::string& file, const std::string& warning) {
    if (!is_printed(file, "warning")) return;
    std::fprintf(stderr, "sxml: warning: %s: %s\n", file.c_str(), warning.c_str());
}

void report_data(const std::string& file, const std::string& kind, const std::string& text) {
    print(file, "READ " + kind, "READ: " + text);
}

void sum_up_reports(const std::string& file) {
    if (!has_printed) return;
    const auto found = counts().find(file);
    if (found == counts().end()) return;
    std::uint64_t untold = 0;
    for (const auto& [kind, count] : found->second) {
        if (count > PRINTED_AT_MOST) untold += count - PRINTED_AT_MOST;
    }
    if (untold > 0 && !is_verbose) {
        std::fprintf(stderr, "sxml: %s: %llu more messages of these kinds\n", file.c_str(),
                     static_cast<unsigned long long>(untold));
    }
    counts().erase(found);
}

}  // namespace gnucobol
