// The three writers through which every piece of XML text reaches a file: xml_write_text,
// xml_write_newline and xml_write_string, described in fsi/xml/xml_api.h. They report no errors: a
// failed write only lowers the count returned, and the stream remembers it for the embedding
// program.
#pragma once

#include "fsi/xml/xml_api.h"
#include "host/encoding.h"
#include "host/files.h"
