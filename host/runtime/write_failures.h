// The failures of streams that the embedding program has not yet asked for.
#pragma once

#include <string>

namespace host {

void remember_write_failure(const std::string& file, int error) noexcept;
void remember_read_failure(const std::string& file, int error) noexcept;

}  // namespace host
