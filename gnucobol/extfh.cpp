// The handler that the COBOL runtime calls for every file operation of a program compiled with
// cobc -fcallfh=sxml_extfh.

#include <cerrno>
#include <exception>

#include "gnucobol/adapter.h"
#include "gnucobol/file_name.h"
#include "gnucobol/known_runtime.h"
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

// Leaves the system's error number as it was.
class ErrnoKeeper {
  public:
    ErrnoKeeper() = default;
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;
    ~ErrnoKeeper() { errno = saved_; }

  private:
    int saved_ = errno;
};

// SORT and MERGE of a runtime that is not known come here.
int pass_by(unsigned char* opcode, FCD3& fcd) {
    if (!gnucobol::is_document(fcd)) return EXTFH(opcode, &fcd);
    gnucobol::say_refused();
    gnucobol::set_status(fcd, gnucobol::Status::permanent_error);
    return 0;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int sxml_extfh(unsigned char* opcode, FCD3* fcd) {
    if (!gnucobol::is_known_runtime()) return pass_by(opcode, *fcd);
    const gnucobol::Operation operation = gnucobol::operation_of(opcode);
    {
        // The runtime takes an error number that it finds later for that of its own last call.
        const ErrnoKeeper keeper;
        try {
            if (gnucobol::Adapter::instance().serve(operation, *fcd)) return 0;
        } catch (const std::exception& failure) {
            fail(operation, *fcd, failure.what());
            return 0;
        }
    }
    return EXTFH(opcode, fcd);
}
