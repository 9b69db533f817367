// SORT and MERGE: USING reads documents, GIVING writes them.

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <map>
#include <vector>

#include "gnucobol/files.h"

namespace {

using gnucobol::Where;

// The parameters of a sort file, and the outcome of the operation.
struct Sort {
    int* result;  // SORT-RETURN
    bool has_failed = false;
};

std::map<const cob_file*, Sort>& sorts() {
    static auto* const all = new std::map<const cob_file*, Sort>;
    return *all;
}

void fail(const cob_file* sort_file) {
    constexpr int FAILED = 16;
    Sort& sort = sorts()[sort_file];
    sort.has_failed = true;
    if (sort.result != nullptr) *sort.result = FAILED;
}

bool has_succeeded(const cob_file* file) {
    return file->file_status[0] == '0';
}

// As MOVE does with records.
void copy_record(const cob_field& from, const cob_field& to) {
    const std::size_t size = std::min(from.size, to.size);
    std::memcpy(to.data, from.data, size);
    std::memset(to.data + size, ' ', to.size - size);
}

void open_files(const Where& where, const std::vector<cob_file*>& files, int mode) {
    for (cob_file* const file : files) {
        sxml_cob_open(where.sources, where.source, file, mode, 0, nullptr);
    }
}

void write_record(const Where& where, const cob_file* sort_file, cob_file* file) {
    copy_record(*sort_file->record, *file->record);
    const int options =
        file->organization == COB_ORG_LINE_SEQUENTIAL ? COB_WRITE_BEFORE | COB_WRITE_LINES | 1 : 0;
    sxml_cob_write(where.sources, where.source, file, file->record, "", options, nullptr, 0);
    if (!has_succeeded(file)) fail(sort_file);
}

void give(const Where& where, cob_file* sort_file, const std::vector<cob_file*>& files) {
    open_files(where, files, COB_OPEN_OUTPUT);
    if (!std::all_of(files.begin(), files.end(), has_succeeded)) fail(sort_file);
    for (cob_file_return(sort_file); has_succeeded(sort_file); cob_file_return(sort_file)) {
        for (cob_file* const file : files) write_record(where, sort_file, file);
    }
    for (cob_file* const file : files) {
        sxml_cob_close(file, nullptr, COB_CLOSE_NORMAL, 0);
        if (!has_succeeded(file)) fail(sort_file);
    }
}

}  // namespace

extern "C" {

void sxml_cob_file_sort_init(cob_file* sort_file, unsigned keys, const unsigned char* collating,
                             void* result, cob_field* item) {
    sorts()[sort_file] = {static_cast<int*>(result)};
    cob_file_sort_init(sort_file, keys, collating, result, item);
}

void sxml_cob_file_sort_using(const sxml_cob_source* sources, const char* source,
                              cob_file* sort_file, cob_file* file) {
    if (!gnucobol::may_be_document(*file)) return cob_file_sort_using(sort_file, file);
    sxml_cob_open(sources, source, file, COB_OPEN_INPUT, 0, nullptr);
    if (!has_succeeded(file)) return fail(sort_file);
    for (;;) {
        sxml_cob_read_next(file, nullptr, COB_READ_NEXT);
        if (!has_succeeded(file)) break;
        copy_record(*file->record, *sort_file->record);
        cob_file_release(sort_file);
        if (!has_succeeded(sort_file)) break;
    }
    if (file->file_status[0] != '1') fail(sort_file);
    sxml_cob_close(file, nullptr, COB_CLOSE_NORMAL, 0);
}

// After a failed USING nothing is output: a sorted part of the records would look like all of them.
void sxml_cob_file_sort_giving(const sxml_cob_source* sources, const char* source,
                               cob_file* sort_file, std::size_t count, ...) {
    std::vector<cob_file*> files(count);
    va_list arguments;
    va_start(arguments, count);
    for (cob_file*& file : files) file = va_arg(arguments, cob_file*);
    va_end(arguments);
    if (sorts()[sort_file].has_failed) return;
    const auto may_be_document = [](const cob_file* file) {
        return gnucobol::may_be_document(*file);
    };
    if (count == 1 && !may_be_document(files.front())) {
        return cob_file_sort_giving(sort_file, 1, files.front());
    }
    give({sources, source}, sort_file, files);
}

}  // extern "C"
