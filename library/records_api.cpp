// The functions of sxml/records.h.
#include "sxml/records.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <mutex>
#include <new>
#include <string>

#include "library/record_file.h"

using conversion::Cause;
using conversion::Done;
using conversion::Problem;

struct SxmlFile {
    std::unique_ptr<library::RecordFile> file;  // null: opening has failed
    Problem problem{};                          // the last one
    std::string message;                        // its text
    bool has_problem = false;
    bool has_failed = false;  // for good
    bool is_at_end = false;
    std::string text;  // given out last
};

namespace {

// The module and its host serve one thread at a time.
std::mutex& turn() {
    static std::mutex mutex;
    return mutex;
}

void note(SxmlFile& file, const Problem& problem) {
    file.problem = problem;
    file.has_problem = true;
    file.message = message_of(problem);
}

void note_no_memory(SxmlFile& file) noexcept {
    file.problem.cause = Cause::no_memory;
    file.has_problem = true;
    try {
        file.message = "there is not enough memory";
    } catch (...) {
        file.message.clear();
    }
}

// Runs a call of a handle, alone. `failed` when the handle is null or not open, or the call threw.
template <class Result, class Call>
Result run(SxmlFile* file, Result failed, Call call) noexcept {
    if (file == nullptr || !file->file) return failed;
    try {
        const std::lock_guard<std::mutex> lock(turn());
        return call(*file->file);
    } catch (const std::bad_alloc&) {
        note_no_memory(*file);
    } catch (const std::exception& error) {
        note(*file, Problem{Cause::input_output, {}, error.what(), {}});
    }
    file->has_failed = true;
    return failed;
}

// 0, or -1 with the problem noted.
int status(SxmlFile& file, const Done& problem) {
    if (problem) note(file, *problem);
    return problem ? -1 : 0;
}

// The same for what the file as a whole depends on.
int final_status(SxmlFile& file, const Done& problem) {
    if (problem) file.has_failed = true;
    return status(file, problem);
}

library::RecordFile::Target target_of(const char* name, const char* mode) {
    if (name == nullptr) return {};
    using library::Direction;
    const std::string letter = mode == nullptr ? "" : mode;
    return {name, letter == "r"   ? Direction::read
                  : letter == "w" ? Direction::write
                                  : Direction::none};
}

void open(SxmlFile& file, const char* layout, const library::RecordFile::Target& target,
          const char* const* options) {
    const auto fail = [&file](const Problem& problem) {
        note(file, problem);
        file.has_failed = true;
    };
    if (layout == nullptr || *layout == '\0') {
        return fail({Cause::usage, {}, "no layout is named", "name a copybook"});
    }
    if (!target.name.empty() && target.direction == library::Direction::none) {
        return fail({Cause::usage, {}, "the mode is neither r nor w", {}});
    }
    auto read = library::read_options(options);
    if (!read) return fail(read.problem());
    auto opened = library::RecordFile::open(layout, target, *std::move(read));
    if (!opened) return fail(opened.problem());
    file.file = *std::move(opened);
}

const XfdItem* item_of(const SxmlFile* file, int field) {
    return file != nullptr && file->file ? file->file->names().item(field) : nullptr;
}

std::int64_t place_number(const SxmlFile* file, std::uint64_t conversion::Place::*number) {
    return file != nullptr && file->has_problem
               ? static_cast<std::int64_t>(file->problem.place.*number)
               : 0;
}

}  // namespace

SxmlFile* sxml_open(const char* layout, const char* file, const char* mode,
                    const char* const* options) {
    auto* handle = new (std::nothrow) SxmlFile;
    if (handle == nullptr) return nullptr;
    try {
        const std::lock_guard<std::mutex> lock(turn());
        open(*handle, layout, target_of(file, mode), options);
    } catch (const std::bad_alloc&) {
        note_no_memory(*handle);
        handle->has_failed = true;
    } catch (const std::exception& error) {
        note(*handle, Problem{Cause::input_output, {}, error.what(), {}});
        handle->has_failed = true;
    }
    return handle;
}

int sxml_read(SxmlFile* file) {
    return run(file, -1, [file](library::RecordFile& records) {
        if (file->has_failed) return -1;
        if (file->is_at_end) return 0;
        const conversion::Result<bool> outcome = records.read();
        if (!outcome) return final_status(*file, outcome.problem());
        file->is_at_end = !*outcome;
        return *outcome ? 1 : 0;
    });
}

int sxml_write(SxmlFile* file) {
    return run(file, -1, [file](library::RecordFile& records) {
        return file->has_failed ? -1 : final_status(*file, records.write());
    });
}

int sxml_skip(SxmlFile* file) {
    return run(file, -1, [file](library::RecordFile& records) {
        if (!file->has_failed || !records.can_go_on()) return -1;
        file->has_failed = false;
        return 0;
    });
}

int sxml_finish(SxmlFile* file) {
    return run(file, -1, [file](library::RecordFile& records) {
        return file->has_failed ? -1 : final_status(*file, records.finish());
    });
}

void sxml_close(SxmlFile* file) {
    if (file == nullptr) return;
    const std::lock_guard<std::mutex> lock(turn());
    delete file;
}

const char* sxml_problem(const SxmlFile* file) {
    return file != nullptr ? file->message.c_str() : "the handle is null";
}

int sxml_problem_cause(const SxmlFile* file) {
    if (file == nullptr) return SXML_USAGE;
    return file->has_problem ? static_cast<int>(file->problem.cause) + 1 : SXML_NO_PROBLEM;
}

int64_t sxml_problem_record(const SxmlFile* file) {
    return place_number(file, &conversion::Place::record);
}
int64_t sxml_problem_line(const SxmlFile* file) {
    return place_number(file, &conversion::Place::line);
}
int64_t sxml_problem_column(const SxmlFile* file) {
    return place_number(file, &conversion::Place::column);
}

int64_t sxml_problem_offset(const SxmlFile* file) {
    if (file == nullptr || !file->has_problem || !file->problem.place.byte_offset) return -1;
    return static_cast<std::int64_t>(*file->problem.place.byte_offset);
}

const char* sxml_warning(const SxmlFile* file, int index) {
    if (file == nullptr || !file->file || index < 0) return nullptr;
    const std::vector<std::string>& warnings = file->file->warnings();
    const auto at = static_cast<std::size_t>(index);
    return at < warnings.size() ? warnings[at].c_str() : nullptr;
}

int sxml_field_count(const SxmlFile* file) {
    return file != nullptr && file->file ? file->file->names().count() : 0;
}

int sxml_field(SxmlFile* file, const char* name) {
    return run(file, -1, [file, name](library::RecordFile& records) {
        const conversion::Result<int> found = records.find(name != nullptr ? name : "");
        return found ? *found : status(*file, found.problem());
    });
}

const char* sxml_field_name(SxmlFile* file, int field) {
    return item_of(file, field) != nullptr ? file->file->names().name(field).c_str() : nullptr;
}

const char* sxml_field_path(SxmlFile* file, int field) {
    return item_of(file, field) != nullptr ? file->file->names().path(field).c_str() : nullptr;
}

int sxml_field_kind(const SxmlFile* file, int field) {
    const XfdItem* item = item_of(file, field);
    if (item == nullptr) return -1;
    if (library::is_binary(*item)) return SXML_BINARY;
    if (library::is_float(*item)) return SXML_FLOAT;
    return library::is_number(*item) ? SXML_NUMBER : SXML_TEXT;
}

int32_t sxml_field_offset(const SxmlFile* file, int field) {
    const XfdItem* item = item_of(file, field);
    return item != nullptr ? item->offset : -1;
}

int32_t sxml_field_length(const SxmlFile* file, int field) {
    const XfdItem* item = item_of(file, field);
    return item != nullptr ? item->data.length : -1;
}

int sxml_field_decimals(const SxmlFile* file, int field) {
    const XfdItem* item = item_of(file, field);
    if (item == nullptr) return -1;
    return library::is_number(*item) && item->data.scale < 0 ? -item->data.scale : 0;
}

int sxml_applies(SxmlFile* file, int field) {
    if (item_of(file, field) == nullptr) return -1;
    return run(file, -1,
               [field](library::RecordFile& records) { return records.applies(field) ? 1 : 0; });
}

const char* sxml_get_text(SxmlFile* file, int field) {
    if (field == -1) return nullptr;
    return run(file, static_cast<const char*>(nullptr),
               [file, field](library::RecordFile& records) -> const char* {
                   if (status(*file, records.get_text(field, file->text)) != 0) return nullptr;
                   return file->text.c_str();
               });
}

int sxml_get_decimal(SxmlFile* file, int field, int64_t* value, int* decimals) {
    if (field == -1 || value == nullptr || decimals == nullptr) return -1;
    return run(file, -1, [=](library::RecordFile& records) {
        records::Decimal number;
        if (status(*file, records.get_number(field, number)) != 0) return -1;
        std::int64_t scaled = 0;
        int count = sxml_field_decimals(file, field);
        if (!library::scaled_value(number, count, scaled)) {
            return status(
                *file,
                Problem{
                    Cause::record, {}, "the number has more than 18 digits", "take it as a text"});
        }
        *value = scaled;
        *decimals = count;
        return 0;
    });
}

int sxml_get_integer(SxmlFile* file, int field, int64_t* value) {
    if (field == -1 || value == nullptr) return -1;
    return run(file, -1, [=](library::RecordFile& records) {
        records::Decimal number;
        if (status(*file, records.get_number(field, number)) != 0) return -1;
        std::string text = library::number_text(number, 0);
        const std::size_t point = text.find('.');
        const bool is_whole = point == std::string::npos ||
                              text.find_first_not_of('0', point + 1) == std::string::npos;
        text.resize(std::min(point, text.size()));
        try {
            if (is_whole) {
                *value = std::stoll(text);
                return 0;
            }
        } catch (const std::out_of_range&) {
            // told below
        }
        return status(
            *file,
            Problem{
                Cause::record, {}, text + " is not an integer of 64 bits", "take it as a text"});
    });
}

int sxml_set_text(SxmlFile* file, int field, const char* text) {
    if (field == -1 || text == nullptr) return -1;
    return run(file, -1, [=](library::RecordFile& records) {
        return status(*file, records.set_text(field, text));
    });
}

int sxml_set_decimal(SxmlFile* file, int field, int64_t value, int decimals) {
    constexpr int MOST_DECIMALS = 100;
    if (field == -1 || decimals < -MOST_DECIMALS || decimals > MOST_DECIMALS) return -1;
    return run(file, -1, [=](library::RecordFile& records) {
        return status(*file, records.set_number(field, library::decimal_of(value, decimals)));
    });
}

int sxml_set_integer(SxmlFile* file, int field, int64_t value) {
    return sxml_set_decimal(file, field, value, 0);
}

int sxml_clear(SxmlFile* file) {
    return run(file, -1, [](library::RecordFile& records) {
        records.clear();
        return 0;
    });
}

const void* sxml_record(SxmlFile* file, size_t* length) {
    if (file == nullptr || !file->file) return nullptr;
    if (length != nullptr) *length = file->file->record().size();
    return file->file->record().data();
}

int sxml_set_record(SxmlFile* file, const void* record, size_t length) {
    if (record == nullptr) return -1;
    return run(file, -1, [=](library::RecordFile& records) {
        return status(*file,
                      records.set_record({static_cast<const std::uint8_t*>(record), length}));
    });
}
