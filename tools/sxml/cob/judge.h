// Compares the offsets and kinds of the items of a description with the compiler's.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/sxml/cob/source.h"
#include "tools/sxml/cob/words.h"

namespace command::cob {

struct Judgement {
    std::optional<std::string> difference;  // the first, for a message; nothing when all agree
    std::string description;  // with byte order and truncation as the compiler has them
};

// Compares a description (JSON) of an FD, or of an item of WORKING-STORAGE when `file` is empty,
// with what the compiler makes of the program. Throws Failure.
Judgement judge(const std::string& description, const Source& source, std::size_t program,
                const std::string& file, const Words& words);

}  // namespace command::cob
