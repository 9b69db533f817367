// The handler that the COBOL runtime calls for every file operation of a program compiled with
// cobc -fcallfh=sxml_extfh.

#include <exception>

#include "gnucobol/adapter.h"
#include "gnucobol/file_name.h"
#include "gnucobol/report.h"

namespace {

// Without a description or the module nothing can be opened; nothing is open then.
void fail(gnucobol::Operation operation, FCD3& fcd, const char* reason) {
    gnucobol::set_status(fcd, gnucobol::Status::permanent_error);
    try {
        gnucobol::report(gnucobol::assigned_name(fcd), operation, gnucobol::Status::permanent_error,
                         reason);
    } catch (const std::exception&) {
        std::fputs("sxml: there is not enough memory\n", stderr);
    }
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int sxml_extfh(unsigned char* opcode, FCD3* fcd) {
    const gnucobol::Operation operation = gnucobol::operation_of(opcode);
    try {
        if (gnucobol::Adapter::instance().serve(operation, *fcd)) return 0;
    } catch (const std::exception& failure) {
        fail(operation, *fcd, failure.what());
        return 0;
    }
    return EXTFH(opcode, fcd);
}
