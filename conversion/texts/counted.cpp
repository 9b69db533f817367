#include "conversion/texts/counted.h"

namespace conversion {

std::string counted(std::uint64_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace conversion
