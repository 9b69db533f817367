// The names that a DTD or a schema has declared so far, so that each is declared once. There is one
// such index in the process, between open and close.
#pragma once

#include "host/record_description.h"

namespace declared_names {

// Makes the index. False when memory is exhausted.
bool open();
// Sets the item's key to its name and stores it. False when memory is exhausted.
bool add(XfdItem& item);
bool contains(const char* name);
void close();

}  // namespace declared_names
