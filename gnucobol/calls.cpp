// The functions that programs compiled with `sxml cob` call instead of the runtime's functions for
// files.

#include <cerrno>
#include <exception>

#include "gnucobol/ending.h"
#include "gnucobol/files.h"
#include "gnucobol/report.h"
#include "gnucobol/signals.h"

namespace {

using gnucobol::Files;
using gnucobol::OpenFile;
using gnucobol::SignalsWait;
using gnucobol::Status;

// Preserves the system's error number: the runtime takes a later value for that of its own last
// call. Signals are held back meanwhile.
class Call {
  public:
    Call() = default;
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    ~Call() { errno = error_; }

  private:
    SignalsWait wait_;
    int error_ = errno;
};

// True when the file is a document that is open and does not have this operation.
bool is_refused(cob_file* file, cob_field* item, const char* verb, Status status) {
    if (sxml_cob_documents == 0) return false;
    OpenFile* const open = Files::instance().find(*file);
    if (open == nullptr) return false;
    const Call call;
    Files::instance().refuse(*open, item, verb, status);
    return true;
}

// True when the adapter has handled the OPEN.
bool open_document(const gnucobol::Where& where, cob_file* file, int mode, cob_field* item) {
    const Call call;
    try {
        return Files::instance().open(where, *file, mode, item);
    } catch (const std::exception& failure) {
        gnucobol::set_status(*file, item, Status::permanent_error);
        gnucobol::report_failure(file->select_name, "OPEN", failure);
        return true;
    }
}

}  // namespace

extern "C" {

void sxml_cob_open(const sxml_cob_source* sources, const char* source, cob_file* file, int mode,
                   int sharing, cob_field* item) {
    if (!open_document({sources, source}, file, mode, item)) cob_open(file, mode, sharing, item);
}

void sxml_cob_close(cob_file* file, cob_field* item, int option, int is_implicit) {
    OpenFile* const open = Files::instance().find(*file);
    if (open == nullptr) return cob_close(file, item, option, is_implicit);
    const Call call;
    Files::instance().close(*open, item, option);
}

void sxml_cob_read_next(cob_file* file, cob_field* item, int options) {
    OpenFile* const open = Files::instance().find(*file);
    if (open == nullptr) return cob_read_next(file, item, options);
    const Call call;
    Files::instance().read(*open, item, options);
}

void sxml_cob_read(cob_file* file, cob_field* key, cob_field* item, int options) {
    OpenFile* const open = Files::instance().find(*file);
    if (open == nullptr) return cob_read(file, key, item, options);
    const Call call;
    Files::instance().read(*open, item, options);
}

void sxml_cob_write(const sxml_cob_source* sources, const char* source, cob_file* file,
                    cob_field* record, const char* expression, int options, cob_field* item,
                    unsigned checks_page_end) {
    OpenFile* const open = Files::instance().find(*file);
    if (open == nullptr) return cob_write(file, record, options, item, checks_page_end);
    const Call call;
    Files::instance().write(*open, {sources, source}, *record, expression, item);
}

void sxml_cob_rewrite(cob_file* file, cob_field* record, int options, cob_field* item) {
    if (!is_refused(file, item, "REWRITE", Status::not_open_for_update)) {
        cob_rewrite(file, record, options, item);
    }
}

void sxml_cob_delete(cob_file* file, cob_field* item) {
    if (!is_refused(file, item, "DELETE", Status::not_open_for_update)) cob_delete(file, item);
}

void sxml_cob_start(cob_file* file, int condition, cob_field* key, cob_field* key_size,
                    cob_field* item) {
    if (!is_refused(file, item, "START", Status::not_open_for_input)) {
        cob_start(file, condition, key, key_size, item);
    }
}

void sxml_cob_delete_file(cob_file* file, cob_field* item) {
    if (!is_refused(file, item, "DELETE FILE", Status::already_open)) cob_delete_file(file, item);
}

void sxml_cob_unlock_file(cob_file* file, cob_field* item) {
    // Records of a document are not locked.
    if (!is_refused(file, item, "UNLOCK", Status::done)) cob_unlock_file(file, item);
}

// CANCEL. The runtime of release 3.2 is asked to close only files that it has open itself.
void sxml_cob_file_free(cob_file** file, cob_file_key** keys) {
    OpenFile* const open = *file != nullptr ? Files::instance().find(**file) : nullptr;
    if (open != nullptr) sxml_cob_close(*file, nullptr, COB_CLOSE_NORMAL, 1);
    cob_file_free(file, keys);
}

void sxml_cob_stop_run(int status) {
    gnucobol::note_stop_run();
    cob_stop_run(status);
}

int sxml_cob_error_proc(const void* what, const void* procedure) {
    const int result = cob_sys_error_proc(what, procedure);
    gnucobol::note_error_procedure();
    return result;
}

}  // extern "C"
