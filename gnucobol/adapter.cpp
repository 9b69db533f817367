#include "gnucobol/adapter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "gnucobol/file_name.h"
#include "gnucobol/report.h"
#include "host/config.h"
#include "host/runtime/streams.h"

namespace gnucobol {

namespace {

void close_files_at_exit() {
    Adapter::instance().close_all();
}

// The description of the file. Throws std::runtime_error when there is none.
FileLayout layout_for(const ClosedFile& file) {
    const auto text = [](const char* name) { return std::string(name != nullptr ? name : ""); };
    LayoutRequest request;
    request.path = file.path;
    if (file.program_file != nullptr) request.fd = text(file.program_file->select_name);
    const cob_global* const runtime = cob_get_global_ptr();
    if (runtime != nullptr && runtime->cob_current_module != nullptr) {
        request.program = text(runtime->cob_current_module->module_name);
        request.source = text(runtime->cob_current_module->module_source);
    }
    FileLayout layout = find_layout(request);
    if (!layout.warning.empty()) report_warning(file.path, layout.warning);
    return layout;
}

// Says what is wrong when the program's records are not as long as those of the description.
std::optional<Result> length_difference(const FCD3& fcd, const FileLayout& layout) {
    const auto described = static_cast<std::uint32_t>(layout.description.record_length());
    if (described == longest_record(fcd)) return std::nullopt;
    return Result{Status::attributes_differ,
                  "the program's records have " + std::to_string(longest_record(fcd)) +
                      " bytes, those of " + layout.source + " have " + std::to_string(described)};
}

Result refusal(int error) {
    return {Status::not_permitted, std::strerror(error)};
}

// Why an existing file cannot be read.
std::optional<Result> obstacle_to_reading(const std::string& path) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) return std::nullopt;
    if (S_ISDIR(info.st_mode)) return refusal(EISDIR);
    if (access(path.c_str(), R_OK) != 0) return refusal(errno);
    return std::nullopt;
}

// Why a file cannot be written. A file that is not there is made; one that is there stays as it is.
std::optional<Result> obstacle_to_writing(const std::string& path) {
    if (conversion::is_url(path))
        return Result{Status::not_permitted, "a web address is only read"};
    struct stat info {};
    if (stat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) {
        if (S_ISDIR(info.st_mode)) return refusal(EISDIR);
        if (access(path.c_str(), W_OK) != 0) return refusal(errno);
        return std::nullopt;
    }
    constexpr mode_t anyone = 0666;
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, anyone);
    if (descriptor >= 0) {
        ::close(descriptor);
        return std::nullopt;
    }
    const int error = errno;
    if (conversion::cause_of(error) == conversion::Cause::not_permitted) return refusal(error);
    return Result{status_of_write_error(error), std::strerror(error)};
}

// What the program's texts are in: what SXML_ENCODING says, UTF-8 unless set.
std::string encoding_to_write() {
    const char* const encoding = host_config_string("SXML_ENCODING", nullptr);
    return encoding == nullptr || *encoding == '\0' ? "utf-8" : encoding;
}

// Nothing when no document can be written in this encoding: markup goes out in ASCII and text as
// the program holds it.
std::optional<conversion::CharacterSet> character_set(const std::string& encoding) {
    conversion::Result<conversion::CharacterSet> found = conversion::CharacterSet::find(encoding);
    if (!found || found->is_ebcdic()) return std::nullopt;
    return *std::move(found);
}

Result encoding_problem(const std::string& encoding) {
    return {Status::permanent_error,
            "SXML_ENCODING: " + encoding +
                " is not known or does not extend ASCII; UTF-8 and ISO-8859-1 do"};
}

// A file that reaches the limit on the size of files is to give a status: the signal would end the
// program. A handler of our own is not handed on to other programs, as ignoring the signal is.
void outlive_size_limit() {
    struct sigaction action {};
    if (sigaction(SIGXFSZ, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) return;
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART;
    sigaction(SIGXFSZ, &action, nullptr);
}

bool is_open_operation(Operation operation) {
    return operation == Operation::open_input || operation == Operation::open_output ||
           operation == Operation::open_other;
}

// True when a program was cancelled that had the file open: the runtime then has another record of
// it, in the same place, that it takes for closed.
bool is_cancelled(const OpenFile& file) {
    return file.program_file() != nullptr && file.program_file()->open_mode == COB_OPEN_CLOSED;
}

Result delete_file(const std::string& path) {
    if (unlink(path.c_str()) == 0) return {};
    if (errno == ENOENT) return {Status::not_found, {}};
    return refusal(errno);
}

}  // namespace

Adapter& Adapter::instance() {
    static Adapter* const adapter = new Adapter;
    return *adapter;
}

// A file that we have open carries its object in the handle; the runtime makes a new description,
// with an empty handle, for each OPEN of a closed file. After CLOSE REEL it does so as well.
OpenFile* Adapter::find(FCD3& fcd) const {
    for (const auto& file : files_) {
        if (file.get() == fcd.fileHandle) return file.get();
    }
    const auto is_waiting = [](const auto& file) { return file->awaits_description(); };
    if (std::none_of(files_.begin(), files_.end(), is_waiting)) return nullptr;
    const cob_file* const program_file = find_program_file(fcd);
    for (const auto& file : files_) {
        if (!is_waiting(file) || file->program_file() != program_file) continue;
        file->await_description(false);
        fcd.fileHandle = file.get();
        return file.get();
    }
    return nullptr;
}

bool Adapter::serve(Operation operation, FCD3& fcd) {
    OpenFile* const file = find(fcd);
    if (file != nullptr && is_open_operation(operation) && is_cancelled(*file)) {
        cob_file* const program_file = file->program_file();
        renew_description(fcd, *program_file);
        remove(*file);
        return serve_closed(operation, fcd, program_file);
    }
    if (file != nullptr) {
        const std::string path = file->path();
        const Result result = serve_open_file(*file, operation, fcd);
        set_status(fcd, result.status);
        report(path, operation, result.status, result.reason);
        return true;
    }
    if (!is_sequential(fcd) || fcd.openMode != OPEN_NOT_OPEN || operation == Operation::other) {
        return false;
    }
    return serve_closed(operation, fcd,
                        is_open_operation(operation) ? find_program_file(fcd) : nullptr);
}

bool Adapter::serve_closed(Operation operation, FCD3& fcd, cob_file* program_file) {
    // Files assigned to KEYBOARD and DISPLAY have names, too.
    if (program_file != nullptr && COB_FILE_SPECIAL(program_file) != 0) return false;
    const std::string assigned =
        program_file != nullptr ? assigned_name(*program_file) : assigned_name(fcd);
    const ClosedFile file{mapped_name(assigned), program_file};
    if (!is_xml_file(file.path)) return false;
    Result result;
    try {
        result = serve_closed_file(file, operation, fcd);
    } catch (const std::exception& failure) {
        result = {Status::permanent_error, failure.what()};
    }
    set_status(fcd, result.status);
    if (program_file != nullptr) set_status(*program_file, result.status);
    report(file.path, operation, result.status, result.reason);
    return true;
}

Result Adapter::serve_open_file(OpenFile& file, Operation operation, FCD3& fcd) {
    switch (operation) {
        case Operation::read_next:
            return file.read(fcd);
        case Operation::write:
            return write(file, fcd);
        case Operation::close:
            return close(file, fcd);
        case Operation::update:
            return {Status::not_open_for_update, {}};
        case Operation::position:
            return {Status::not_open_for_input, "an XML file is only read forward"};
        case Operation::other:
            return {};
        default:
            return {Status::already_open, {}};
    }
}

Result Adapter::serve_closed_file(const ClosedFile& file, Operation operation, FCD3& fcd) {
    if (std::find(locked_.begin(), locked_.end(), file) != locked_.end()) {
        return {Status::locked, {}};
    }
    switch (operation) {
        case Operation::open_input:
            return open_input(file, fcd);
        case Operation::open_output:
            return open_output(file, fcd);
        case Operation::open_other:
            return {Status::not_permitted, {}};
        case Operation::close:
            return {Status::not_open, {}};
        case Operation::write:
            return {Status::not_open_for_output, {}};
        case Operation::update:
            return {Status::not_open_for_update, {}};
        case Operation::delete_file:
            return delete_file(file.path);
        default:
            return {Status::not_open_for_input, {}};
    }
}

Result Adapter::open_input(const ClosedFile& file, FCD3& fcd) {
    const std::string& path = file.path;
    end_writing(path);
    auto source =
        conversion::DocumentSource::open(path, conversion::DocumentSource::Pipes::as_they_are);
    if (!source) {
        const conversion::Problem& problem = source.problem();
        if (problem.cause == conversion::Cause::not_permitted) return refusal(problem.system_error);
        const bool is_missing = problem.cause == conversion::Cause::not_found;
        if (!is_missing) return {Status::permanent_error, problem.what};
        if (!is_optional(fcd)) {
            return {Status::not_found, conversion::is_url(path) ? problem.what : std::string()};
        }
        return keep(std::make_unique<OpenFile>(path, file.program_file), fcd, OPEN_INPUT);
    }
    if (auto obstacle = obstacle_to_reading(source->file())) return *obstacle;
    FileLayout layout = layout_for(file);
    if (auto difference = length_difference(fcd, layout)) return *difference;
    return keep(
        std::make_unique<OpenFile>(path, file.program_file, std::move(layout), std::move(*source)),
        fcd, OPEN_INPUT);
}

Result Adapter::open_output(const ClosedFile& file, FCD3& fcd) {
    const std::string& path = file.path;
    FileLayout layout = layout_for(file);
    if (auto difference = length_difference(fcd, layout)) return *difference;
    const std::string encoding = encoding_to_write();
    std::optional<conversion::CharacterSet> characters = character_set(encoding);
    if (!characters) return encoding_problem(encoding);
    end_writing(path);
    if (auto obstacle = obstacle_to_writing(path)) return *obstacle;
    outlive_size_limit();
    return keep(std::make_unique<OpenFile>(path, file.program_file, std::move(layout),
                                           *std::move(characters)),
                fcd, OPEN_OUTPUT);
}

// Ends a document that is being written and now is opened again. Two would write to it otherwise:
// CANCEL does not close the files of a program as far as we are told.
void Adapter::end_writing(const std::string& path) {
    for (const auto& file : files_) {
        std::error_code error;
        if (file->is_output() && std::filesystem::equivalent(file->path(), path, error)) {
            file->close();
        }
    }
    collect_write_failures();
}

Result Adapter::keep(std::unique_ptr<OpenFile> file, FCD3& fcd, unsigned char mode) {
    static const int registered = std::atexit(close_files_at_exit);
    if (registered != 0) throw std::runtime_error("the end of the program cannot be watched");
    Result result = file->opening();
    if (result.status != Status::done && result.status != Status::optional_missing) return result;
    fcd.openMode = mode;
    fcd.fileHandle = file.get();
    files_.push_back(std::move(file));
    return result;
}

Result Adapter::write(OpenFile& file, FCD3& fcd) {
    const bool has_failed = file.failure().has_value();
    Result result = file.write(fcd);
    collect_write_failures();
    if (!file.failure()) return result;
    if (has_failed) return {file.failure()->status, "nothing is written any more"};
    return *file.failure();
}

Result Adapter::close(OpenFile& file, FCD3& fcd) {
    const Closing closing = closing_of(fcd);
    if (closing == Closing::reel) {
        file.await_description(true);
        return {Status::no_reel, {}};
    }
    file.close();
    collect_write_failures();
    const Status status = closing == Closing::no_rewind ? Status::no_reel : Status::done;
    Result result = file.failure().value_or(Result{status, {}});
    cob_file* const program_file = file.program_file();
    if (program_file != nullptr) {
        program_file->open_mode = COB_OPEN_CLOSED;
        if (closing == Closing::with_lock) locked_.push_back({file.path(), program_file});
    }
    fcd.openMode = OPEN_NOT_OPEN;
    fcd.fileHandle = nullptr;
    remove(file);
    return result;
}

void Adapter::remove(const OpenFile& file) {
    std::erase_if(files_, [&file](const auto& kept) { return kept.get() == &file; });
}

void Adapter::collect_write_failures() {
    while (const auto failure = host::take_write_failure()) {
        for (const auto& file : files_) {
            if (file->path() == failure->file) file->fail_writing(failure->error);
        }
    }
}

void Adapter::close_all() {
    for (const auto& file : files_) file->close();
    collect_write_failures();
    for (const auto& file : files_) {
        if (!file->failure()) continue;
        report(file->path(), Operation::close, file->failure()->status, file->failure()->reason);
    }
    files_.clear();
}

}  // namespace gnucobol
