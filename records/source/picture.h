// Analysis of PICTURE character strings.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "records/data_item.h"

namespace records {

struct PictureOptions {
    bool decimal_point_is_comma = false;
    char currency = '$';
};

struct PictureResult {
    Picture picture;       // without place; not to be used when there is an error
    std::string error;     // empty when the string is right
    std::size_t error_at;  // offset in the string
};

// `text` is in upper case and has numbers (no names) between its parentheses.
PictureResult analyse_picture(std::string_view text, const PictureOptions& options);

}  // namespace records
