// The header that is included before the C code of a program.
#pragma once

#include <string>
#include <vector>

#include "tools/sxml/cob/descriptions.h"

namespace command::cob {

// Its text: what is known of the sources' files, as data of sxml_cob.h, which it includes as the
// file `common_header`.
std::string header_text(const std::vector<DescribedSource>& sources,
                        const std::string& common_header);

}  // namespace command::cob
