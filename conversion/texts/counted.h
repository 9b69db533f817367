// How many there are, in words.
#pragma once

#include <cstdint>
#include <string>

namespace conversion {

// "1 record", "2 records"
std::string counted(std::uint64_t count, const std::string& what);

}  // namespace conversion
