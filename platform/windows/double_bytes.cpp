#include "platform/double_bytes.h"

namespace platform {

// The system's code pages are not looked at.
CharacterSetKind find_double_byte_set(const std::string&, DoubleByteSet&) {
    return CharacterSetKind::unknown;
}

}  // namespace platform
