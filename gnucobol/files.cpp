#include "gnucobol/files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <new>
#include <optional>
#include <utility>
#include <variant>

#include "gnucobol/ending.h"
#include "gnucobol/file_name.h"
#include "gnucobol/report.h"
#include "gnucobol/signals.h"
#include "gnucobol/termination.h"
#include "gnucobol/trusted_settings.h"
#include "host/config.h"
#include "host/runtime/memory/memory_failure.h"
#include "host/runtime/settings/settings.h"

int sxml_cob_documents = 0;

namespace gnucobol {

namespace {

bool is_opened(const Result& result) {
    return result.status == Status::done || result.status == Status::optional_missing;
}

const char* verb_of_open(int mode) {
    switch (mode) {
        case COB_OPEN_INPUT:
            return "OPEN INPUT";
        case COB_OPEN_OUTPUT:
            return "OPEN OUTPUT";
        case COB_OPEN_EXTEND:
            return "OPEN EXTEND";
        default:
            return "OPEN I-O";
    }
}

// Why an existing file cannot be read.
std::optional<Result> obstacle_to_reading(const std::string& path) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) return std::nullopt;
    if (S_ISDIR(info.st_mode)) return refusal(EISDIR);
    if (access(path.c_str(), R_OK) != 0) return refusal(errno);
    return std::nullopt;
}

// What the program's texts are in: what SXML_ENCODING says, UTF-8 unless set. A problem when no
// document can be written in it: markup goes out in ASCII and text as the program holds it.
std::variant<conversion::CharacterSet, Result> characters_to_write() {
    const char* const setting = host_config_string("SXML_ENCODING", nullptr);
    const std::string encoding = setting == nullptr || *setting == '\0' ? "utf-8" : setting;
    conversion::Result<conversion::CharacterSet> found = conversion::CharacterSet::find(encoding);
    if (found && !found->is_ebcdic()) return *std::move(found);
    return Result{Status::permanent_error,
                  "SXML_ENCODING: " + encoding +
                      " is not known or does not extend ASCII; UTF-8 and ISO-8859-1 do"};
}

// A layout that was not bound into the program may have other records.
std::optional<Result> length_difference(const cob_file& file, const FileLayout& layout) {
    const auto described = static_cast<std::size_t>(layout.description.record_length());
    if (described == file.record_max || (layout.is_bound && described < file.record_max)) {
        return std::nullopt;
    }
    return Result{Status::attributes_differ,
                  "the program's records have " + std::to_string(file.record_max) +
                      " bytes, those of " + layout.origin + " have " + std::to_string(described)};
}

bool finish_files(bool is_complete) {
    return Files::instance().finish(is_complete);
}

void leave_files_to_parent() {
    Files::instance().leave_to_parent();
}

bool is_there(const std::string& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0;
}

}  // namespace

bool may_be_document(const cob_file& file) {
    return file.organization <= COB_ORG_LINE_SEQUENTIAL && COB_FILE_SPECIAL(&file) == 0 &&
           is_xml_file(mapped_name(assigned_name(file)));
}

Files& Files::instance() {
    static auto* const files = new Files;
    return *files;
}

OpenFile* Files::find(const cob_file& file) const {
    for (const auto& each : files_) {
        if (&each->file() == &file) return each.get();
    }
    return nullptr;
}

void Files::settle(cob_file& file, const std::string& path, const char* verb, cob_field* item,
                   const Result& result) {
    set_status(file, item, result.status);
    report(path, verb, result);
}

template <class Operation>
void Files::attempt(cob_file& file, const std::string& path, const char* verb, cob_field* item,
                    const Operation& operation) {
    try {
        settle(file, path, verb, item, operation());
    } catch (const std::exception& failure) {
        set_status(file, item, Status::permanent_error);
        report_failure(path.c_str(), verb, failure);
    }
}

bool Files::open(const Where& where, cob_file& file, int mode, cob_field* item) {
    if (OpenFile* const open = find(file)) {
        settle(file, open->path(), verb_of_open(mode), item, {Status::already_open, {}});
        return true;
    }
    // The runtime tells of its own open and locked files.
    if (file.open_mode != COB_OPEN_CLOSED) return false;
    host::refresh_environment();
    refresh_report_settings();
    const bool is_possible = may_be_document(file);
    // Settings that could not be read say nothing.
    if (host::take_memory_failure()) throw std::bad_alloc();
    if (!is_possible) return false;
    const sxml_cob_file* const bound = find_bound_file(where, file);
    if (bound == nullptr || (bound->description == nullptr && bound->has_reports == 0))
        return false;
    const std::string path = mapped_name(assigned_name(file));
    attempt(file, path, verb_of_open(mode), item, [&] {
        const TerminationTold told;
        return open_document(path, *bound, file, mode);
    });
    return true;
}

Result Files::open_document(const std::string& path, const sxml_cob_file& bound, cob_file& file,
                            int mode) {
    if (bound.has_reports != 0) {
        return {Status::not_permitted,
                "the Report Writer makes pages, no records; give the file another name"};
    }
    watch_signals();
    watch_ending({finish_files, leave_files_to_parent});
    switch (mode) {
        case COB_OPEN_INPUT:
            return open_input(path, bound, file);
        case COB_OPEN_OUTPUT:
            return open_output(path, bound, file);
        case COB_OPEN_EXTEND:
            return open_extend(path, bound, file);
        default:
            return {Status::not_permitted, "records of a document are not changed in place"};
    }
}

Result Files::open_input(const std::string& path, const sxml_cob_file& bound, cob_file& file) {
    if (conversion::is_url(path) && !may_fetch()) {
        return {Status::not_permitted, "fetching is forbidden; SXML_NETWORK=yes allows it"};
    }
    // Also when nothing is there yet.
    if (!conversion::is_url(path)) {
        Result unlocked = check_unlocked(path);
        if (unlocked.status != Status::done) return unlocked;
    }
    // A pipe is read as it is.
    auto found =
        conversion::DocumentSource::open(path, conversion::DocumentSource::Pipes::as_they_are);
    if (!found) {
        const conversion::Problem& problem = found.problem();
        if (problem.cause != conversion::Cause::not_found) {
            Result result = refusal(problem.system_error);
            result.reason = problem.what;
            return result;
        }
        if (file.flag_optional == 0) return {Status::not_found, {}};
        return keep(std::make_unique<OpenFile>(path, file));
    }
    std::optional<conversion::DocumentSource> source(*std::move(found));
    if (auto obstacle = obstacle_to_reading(source->file())) return *obstacle;
    FileLayout layout = find_layout(path, bound);
    if (auto difference = length_difference(file, layout)) return *difference;
    return keep(std::make_unique<OpenFile>(path, file, std::move(layout), std::move(*source)));
}

Result Files::open_output(const std::string& path, const sxml_cob_file& bound, cob_file& file) {
    if (conversion::is_url(path)) return {Status::not_permitted, "a web address is only read"};
    auto document = PrivateDocument::begin(path);
    if (const auto* const refused = std::get_if<Result>(&document)) return *refused;
    return write_document(path, bound, file, std::get<PrivateDocument>(std::move(document)), false);
}

Result Files::open_extend(const std::string& path, const sxml_cob_file& bound, cob_file& file) {
    if (conversion::is_url(path)) return {Status::not_permitted, "a web address is only read"};
    auto begun = PrivateDocument::begin(path);
    if (const auto* const refused = std::get_if<Result>(&begun)) {
        const bool is_missing =
            refused->status != Status::in_use && file.flag_optional == 0 && !is_there(path);
        return is_missing ? Result{Status::not_found, {}} : *refused;
    }
    auto& document = std::get<PrivateDocument>(begun);
    if (document.descriptor() < 0) {
        return {Status::not_permitted, "records are only added to a regular file"};
    }
    const std::optional<std::uint64_t> old_size = document.old_size();
    if (!old_size && file.flag_optional == 0) return {Status::not_found, {}};
    Result result =
        write_document(path, bound, file, std::move(document), old_size.value_or(0) > 0);
    if (result.status == Status::done && !old_size) result.status = Status::optional_missing;
    return result;
}

// Opens a document that has been begun, with the records of the one that is there or without.
Result Files::write_document(const std::string& path, const sxml_cob_file& bound, cob_file& file,
                             PrivateDocument document, bool is_extended) {
    FileLayout layout = find_layout(path, bound);
    if (auto difference = length_difference(file, layout)) return *difference;
    auto chosen = characters_to_write();
    if (const auto* const refused = std::get_if<Result>(&chosen)) return *refused;
    auto& characters = std::get<conversion::CharacterSet>(chosen);
    std::unique_ptr<Extension> extension;
    if (is_extended) {
        extension = std::make_unique<Extension>(document.folder());
        Result result = write_empty_document(layout, characters, extension->name());
        if (result.status == Status::done) result = extension->begin(path, document.descriptor());
        if (result.status != Status::done) return result;
    }
    return keep(std::make_unique<OpenFile>(path, file, std::move(layout), std::move(characters),
                                           std::move(document), std::move(extension)));
}

Result Files::keep(std::unique_ptr<OpenFile> file) {
    Result result = file->opening();
    if (!is_opened(result)) return result;
    files_.push_back(std::move(file));
    sxml_cob_documents = static_cast<int>(files_.size());
    return result;
}

void Files::remove(const OpenFile& file) {
    std::erase_if(files_, [&file](const auto& each) { return each.get() == &file; });
    sxml_cob_documents = static_cast<int>(files_.size());
}

void Files::close(OpenFile& file, cob_field* item, int option) {
    cob_file& program_file = file.file();
    if (option == COB_CLOSE_UNIT || option == COB_CLOSE_UNIT_REMOVAL) {
        settle(program_file, file.path(), "CLOSE", item, {Status::no_reel, {}});
        return;
    }
    attempt(program_file, file.path(), "CLOSE", item, [&] {
        Result result = file.complete();
        if (result.status == Status::done && option == COB_CLOSE_NO_REWIND) {
            result.status = Status::no_reel;
        }
        return result;
    });
    sum_up_reports(file.path());
    program_file.open_mode = option == COB_CLOSE_LOCK ? COB_OPEN_LOCKED : COB_OPEN_CLOSED;
    remove(file);
}

void Files::read(OpenFile& file, cob_field* item, int options) {
    survive_errors();
    attempt(file.file(), file.path(), "READ", item, [&] {
        if ((options & (COB_READ_PREVIOUS | COB_READ_FIRST | COB_READ_LAST)) != 0) {
            return Result{Status::not_open_for_input, "a document is only read forward"};
        }
        return file.read();
    });
}

void Files::write(OpenFile& file, const Where& where, const cob_field& record,
                  const char* expression, cob_field* item) {
    survive_errors();
    cob_file& program_file = file.file();
    std::size_t size = record.size;
    if (program_file.variable_record != nullptr) {
        const int given = cob_get_int(program_file.variable_record);
        size = given < 0 ? 0 : static_cast<std::size_t>(given);
    }
    attempt(program_file, file.path(), "WRITE", item, [&] {
        if (file.is_output() &&
            (size < program_file.record_min || size > program_file.record_max)) {
            return Result{Status::wrong_length, {}};
        }
        return file.write(static_cast<std::uint32_t>(size), where, expression);
    });
}

void Files::refuse(OpenFile& file, cob_field* item, const char* verb, Status status) {
    settle(file.file(), file.path(), verb, item, {status, {}});
}

// Completes a document that is still open at the end, or drops it.
Result Files::finish_output(OpenFile& file, bool is_complete) {
    if (is_complete) return file.complete();
    file.drop();
    // At a signal the user has been told.
    if (is_ended_by_signal()) return {};
    return {Status::permanent_error,
            "the program was ended by an error; the document is as it was before"};
}

bool Files::finish(bool is_complete) {
    const SignalsWait wait;
    bool is_done = true;
    for (const auto& file : files_) {
        try {
            const Result result = file->is_output() ? finish_output(*file, is_complete) : Result{};
            if (result.status != Status::done) {
                is_done = false;
                report(file->path(), "CLOSE", result);
            }
        } catch (const std::exception& failure) {
            is_done = false;
            report_failure(file->path().c_str(), "CLOSE", failure);
        }
        if (!is_ended_by_signal()) sum_up_reports(file->path());
    }
    files_.clear();
    sxml_cob_documents = 0;
    return is_done;
}

void Files::leave_to_parent() {
    for (auto& file : files_) {
        file->leave_to_parent();
        // Its buffers are never written, here.
        [[maybe_unused]] const OpenFile* const left = file.release();
    }
    files_.clear();
    sxml_cob_documents = 0;
}

}  // namespace gnucobol
