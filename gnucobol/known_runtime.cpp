#include "gnucobol/known_runtime.h"

#include <cstring>
#include <exception>
#include <string_view>

#include "gnucobol/file_name.h"

namespace gnucobol {

namespace {

template <typename File>
bool has_document_name(const File& file) {
    try {
        return is_xml_file(mapped_name(assigned_name(file)));
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace

bool is_known_runtime() {
    constexpr bool fits_header = __LIBCOB_VERSION == 3 && __LIBCOB_VERSION_MINOR == 1;
    static const bool is_known =
        fits_header && std::string_view(libcob_version()).starts_with("3.1");
    return is_known;
}

bool is_document(const cob_file& file) {
    const bool is_sequential =
        file.organization == COB_ORG_SEQUENTIAL || file.organization == COB_ORG_LINE_SEQUENTIAL;
    return is_sequential && has_document_name(file);
}

bool is_document(const FCD3& fcd) {
    return is_sequential(fcd) && has_document_name(fcd);
}

void say_refused() {
    static const int said =
        std::fprintf(stderr,
                     "sxml: libcob %s cannot be served, file status 30: XML files need libcob 3.1; "
                     "compile and run the program with GnuCOBOL 3.1\n",
                     libcob_version());
    static_cast<void>(said);
}

void refuse(cob_file& file, cob_field* status) {
    say_refused();
    std::memcpy(file.file_status, "30", 2);
    if (status != nullptr) std::memcpy(status->data, "30", 2);
    cob_get_global_ptr()->cob_error_file = &file;
    cob_set_exception(COB_EC_I_O_PERMANENT_ERROR);
}

}  // namespace gnucobol
