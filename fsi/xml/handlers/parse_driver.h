// Feeding a parser: to the end of its input, or tag by tag. The drivers report through the host's
// file error code, which their callers set to 0 before they start:
//   8   the input has ended, whether the document was complete or not; the host's error subcode is
//       0 when it was, else Expat's code for what is missing
//   14  a part of the document could not be stored
//   19  the document is not well-formed; the host's error detail, subcode and text say more
// Once one of these has come up, driving the parser again repeats it.
#pragma once

#include "fsi/xml/handlers/xml_parser.h"
#include "host/files.h"

// Feeds everything that is left. `stream` is where more input is read from, null when all of it
// lies between the parser's `position` and `end`.
void parse_to_end(XmlParser* parser, HostStream* stream);

// Feeds input up to and including the next `>`; the file error code stays when there was one.
// A stepwise parser (XMLPS_STEPWISE) is never taken further than to the start of the document
// element or to the end of one of its children, also where the input cannot be cut there.
void parse_to_next_gt(XmlParser* parser, HostStream* stream);
