// The settings that tune the file interface. Each function looks its setting up at the moment of
// the call; nothing is kept, so a change takes effect at once. A text that the user set to nothing
// is empty; a text without any value is null. Texts belong to the host.
#pragma once

#include <cstdint>

namespace settings {

enum CreateStyle : std::int16_t {
    STYLE_NONE = 0,   // nothing describes the data
    STYLE_DTD = 1,    // a DTD inside the document
    STYLE_SCHEMA = 2  // a reference to an XML Schema
};

std::int16_t create_style();     // a CreateStyle
bool create_schema();            // with STYLE_SCHEMA: write the schema file at open
bool ignore_empty_data();        // leave empty fields and elements out of the output
bool exact_table_match();        // an element must carry as many numbers as its item has dimensions
const char* encoding();          // name of the output's encoding
const char* schema_name();       // the schema file to write and to refer to
const char* schema_namespace();  // format of the schema reference, with one %s for its name
const char* schema_doc();        // documentation text for the schema
const char* stylesheet_type();
const char* stylesheet_href();

}  // namespace settings
