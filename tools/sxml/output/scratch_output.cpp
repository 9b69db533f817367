#include "tools/sxml/output/scratch_output.h"

#include <cerrno>
#include <utility>

#include "conversion/formats/byte_source.h"
#include "tools/sxml/failure.h"

namespace command {

namespace {

platform::TemporaryFolder private_folder() {
    auto folder = platform::TemporaryFolder::create();
    if (!folder) {
        fail(platform::temporary_folder() + ": no folder can be created here: " +
             system_error_text(errno) + "; let TMPDIR name another folder");
    }
    return *std::move(folder);
}

}  // namespace

ScratchOutput::ScratchOutput() : folder_(private_folder()), output_(folder_.name() + "/output") {}

std::string ScratchOutput::text() const {
    conversion::ByteSource source = value_of(conversion::ByteSource::open(output_.write_name()));
    return value_of(conversion::read_all(source));
}

}  // namespace command
