// Finding the element that stands for an item of the description in the record being read.
#pragma once

#include <cstdint>

#include "fsi/xml/sxml/xml_file.h"

// The element of the item at `index` in the file's record tree; 0 when there is none. An element is
// found by the item's name; among several, by its occurrence numbers; and when that leaves none or
// several, among the children of the nearest enclosing group's element. Elements whose data has
// been moved are found as such children only.
std::uint32_t find_element(const XmlFile& file, std::int32_t index);
