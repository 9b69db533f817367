// The file record: one per open file. The host gets its address from open and gives it back with
// every later call.
#pragma once

#include <cstdint>

#include "fsi/xml/sxml/reading/input_items.h"
#include "fsi/xml/sxml/writing/item_tags.h"
#include "fsi/xml/sxml/writing/write_plan.h"
#include "host/files.h"
#include "host/record_description.h"
#include "host/record_handler.h"

struct XmlFile {
    Xfd* xfd;                    // the record description; owned
    std::uint32_t parser;        // input: handle of the document's parse; owned. 0 for output
    HostStream* out;             // output: the document being written; owned. Null for input
    std::int32_t mode;           // as the host gave it
    std::int32_t out_encoding;   // output: host encoding code that every write passes on
    ItemTags* item_tags;         // output: the markup of the items; owned
    WritePlan* write_plan;       // output: how whole records are written; owned
    InputItems* input_items;     // input: the description prepared for reading; owned
    HostRecordHandler* handler;  // the host's part in every record; null for none
};

// What an open mode's low two bits say.
constexpr std::int32_t direction_of(std::int32_t mode) {
    return mode & 3;
}

// A zero-filled file record; null when memory is exhausted.
XmlFile* new_xml_file();

// Releases what the file record owns, and the record itself.
void free_xml_file(XmlFile* file);
