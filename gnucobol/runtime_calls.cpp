// What programs have the runtime do with files past their handler; sxml_extfh.h puts these
// functions in the place of the runtime's.

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <vector>

#include "gnucobol/fcd.h"
#include "gnucobol/known_runtime.h"

#define SXML_EXPORT __attribute__((visibility("default")))

extern "C" SXML_EXPORT int sxml_extfh(unsigned char* opcode, FCD3* fcd);

namespace {

bool is_sequential(const cob_file* file) {
    return file->organization == COB_ORG_SEQUENTIAL ||
           file->organization == COB_ORG_LINE_SEQUENTIAL;
}

bool has_succeeded(const cob_file* file) {
    return file->file_status != nullptr && file->file_status[0] == '0';
}

// As MOVE does with records.
void copy_record(const cob_field& from, const cob_field& to) {
    const std::size_t size = std::min(from.size, to.size);
    std::memcpy(to.data, from.data, size);
    std::memset(to.data + size, ' ', to.size - size);
}

void write_sorted(cob_file* sort_file, const std::vector<cob_file*>& files) {
    for (cob_file_return(sort_file); has_succeeded(sort_file); cob_file_return(sort_file)) {
        for (cob_file* const file : files) {
            if (file->open_mode != COB_OPEN_OUTPUT) continue;
            copy_record(*sort_file->record, *file->record);
            cob_extfh_write(sxml_extfh, file, file->record, 0, nullptr, 0);
        }
    }
}

}  // namespace

// CANCEL: closes a file when it is open.
extern "C" SXML_EXPORT void sxml_cob_close(cob_file* file, cob_field* status, int option,
                                           int is_implicit) {
    const bool is_open = file->open_mode != COB_OPEN_CLOSED && file->open_mode != COB_OPEN_LOCKED;
    if (is_open && is_sequential(file) && gnucobol::is_known_runtime()) {
        cob_extfh_close(sxml_extfh, file, status, option, is_implicit);
    } else {
        cob_close(file, status, option, is_implicit);
    }
}

// SORT and MERGE: hands the records of a file over.
extern "C" SXML_EXPORT void sxml_cob_file_sort_using(cob_file* sort_file, cob_file* file) {
    if (!gnucobol::is_document(*file)) {
        cob_file_sort_using(sort_file, file);
        return;
    }
    if (!gnucobol::is_known_runtime()) return gnucobol::refuse(*file, nullptr);
    cob_extfh_open(sxml_extfh, file, COB_OPEN_INPUT, 0, nullptr);
    if (file->open_mode != COB_OPEN_INPUT) return;
    for (;;) {
        cob_extfh_read_next(sxml_extfh, file, nullptr, COB_READ_NEXT);
        if (!has_succeeded(file)) break;
        copy_record(*file->record, *sort_file->record);
        cob_file_release(sort_file);
        if (!has_succeeded(sort_file)) break;
    }
    cob_extfh_close(sxml_extfh, file, nullptr, COB_CLOSE_NORMAL, 0);
}

// SORT and MERGE: writes the records, in order, to each of `count` files.
extern "C" SXML_EXPORT void sxml_cob_file_sort_giving(cob_file* sort_file, std::size_t count, ...) {
    std::vector<cob_file*> files(count);
    va_list arguments;
    va_start(arguments, count);
    for (cob_file*& file : files) file = va_arg(arguments, cob_file*);
    va_end(arguments);
    if (count == 1 && !gnucobol::is_document(*files.front())) {
        cob_file_sort_giving(sort_file, 1, files.front());
        return;
    }
    if (!gnucobol::is_known_runtime()) return gnucobol::refuse(*files.front(), nullptr);
    for (cob_file* const file : files) {
        cob_extfh_open(sxml_extfh, file, COB_OPEN_OUTPUT, 0, nullptr);
    }
    write_sorted(sort_file, files);
    for (cob_file* const file : files) {
        if (file->open_mode != COB_OPEN_OUTPUT) continue;
        cob_extfh_close(sxml_extfh, file, nullptr, COB_CLOSE_NORMAL, 0);
    }
}
