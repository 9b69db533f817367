#include "platform/double_bytes.h"

namespace platform {

// The system's code pages are not looked at.
bool find_double_byte_set(const std::string&, DoubleByteSet&) {
    return false;
}

}  // namespace platform
