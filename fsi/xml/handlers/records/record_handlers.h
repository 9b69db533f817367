// Reading without the element tree, for the sequential-file interface while nothing is traced: the
// children of the document element, with their descendants, go into a record tree.
#pragma once

#include "fsi/xml/handlers/xml_parser.h"

// From now on the parser delivers its records into `tree`, or again into the element tree when that
// is null. Of what stands between the records nothing is kept then. Called between two records,
// after the document element has started. The tree stays the caller's and is to outlive its use.
void deliver_records(XmlParser& parser, RecordTree* tree);

// The number under which elements of a name are stored, for the next start tag; 0 when memory is
// exhausted.
std::uint32_t stored_name_number(const XmlParser& parser, const char* name);

extern "C" {
// The handlers that Expat calls meanwhile.
void XMLCALL start_in_record(void* expat, const char* name, const char** attributes);
void XMLCALL end_in_record(void* expat, const char* name);
void XMLCALL text_in_record(void* expat, const char* text, int length);
}
