// Files with keys (RELATIVE, INDEXED) go past the handler: through one, the runtime loses sight of
// relative keys. With a runtime that is not known all files do, and documents are refused.
// sxml_extfh.h puts these functions in the place of the runtime's.

#include "gnucobol/fcd.h"
#include "gnucobol/known_runtime.h"

#define SXML_EXPORT __attribute__((visibility("default")))

using Handler = int (*)(unsigned char* opcode, FCD3* fcd);

namespace {

bool goes_past(const cob_file* file) {
    return file->organization == COB_ORG_RELATIVE || file->organization == COB_ORG_INDEXED ||
           !gnucobol::is_known_runtime();
}

}  // namespace

extern "C" {

SXML_EXPORT void sxml_cob_open(Handler handler, cob_file* file, int mode, int sharing,
                               cob_field* status) {
    if (!gnucobol::is_known_runtime() && gnucobol::is_document(*file)) {
        return gnucobol::refuse(*file, status);
    }
    if (goes_past(file)) return cob_open(file, mode, sharing, status);
    cob_extfh_open(handler, file, mode, sharing, status);
}

SXML_EXPORT void sxml_cob_handled_close(Handler handler, cob_file* file, cob_field* status,
                                        int option, int is_implicit) {
    if (goes_past(file)) return cob_close(file, status, option, is_implicit);
    cob_extfh_close(handler, file, status, option, is_implicit);
}

SXML_EXPORT void sxml_cob_read(Handler handler, cob_file* file, cob_field* key, cob_field* status,
                               int options) {
    if (goes_past(file)) return cob_read(file, key, status, options);
    cob_extfh_read(handler, file, key, status, options);
}

SXML_EXPORT void sxml_cob_read_next(Handler handler, cob_file* file, cob_field* status,
                                    int options) {
    if (goes_past(file)) return cob_read_next(file, status, options);
    cob_extfh_read_next(handler, file, status, options);
}

SXML_EXPORT void sxml_cob_write(Handler handler, cob_file* file, cob_field* record, int options,
                                cob_field* status, unsigned int checks_page_end) {
    if (goes_past(file)) return cob_write(file, record, options, status, checks_page_end);
    cob_extfh_write(handler, file, record, options, status, checks_page_end);
}

SXML_EXPORT void sxml_cob_rewrite(Handler handler, cob_file* file, cob_field* record, int options,
                                  cob_field* status) {
    if (goes_past(file)) return cob_rewrite(file, record, options, status);
    cob_extfh_rewrite(handler, file, record, options, status);
}

SXML_EXPORT void sxml_cob_delete(Handler handler, cob_file* file, cob_field* status) {
    if (goes_past(file)) return cob_delete(file, status);
    cob_extfh_delete(handler, file, status);
}

SXML_EXPORT void sxml_cob_start(Handler handler, cob_file* file, int condition, cob_field* key,
                                cob_field* key_size, cob_field* status) {
    if (goes_past(file)) return cob_start(file, condition, key, key_size, status);
    cob_extfh_start(handler, file, condition, key, key_size, status);
}

}  // extern "C"
