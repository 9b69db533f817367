// A host may take part in every record of a file: choose the layout of a record that is written,
// store the data of one that is read, and learn what of a document went into no field. Without a
// handler the module does all of that by itself.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/export.h"
#include "host/record_description.h"

// How elements find their fields where tables, or names that stand in several groups, leave a
// choice.
enum HostTableMatch : std::int32_t {
    HOST_TABLES_LOOSE = 0,  // as without SXML_EXACT_TABLE_MATCH
    HOST_TABLES_EXACT = 1,  // as with it
    // An element that stands where the description has a field is that field's and no other's; the
    // only entry of a table is its first. Elements that stand elsewhere: exact.
    HOST_TABLES_BY_PLACE = 2
};

// An element of a record that has been read, in document order.
struct HostRecordElement {
    std::uint32_t number;  // in the record, from 1, the record's own element
    std::uint32_t parent;  // its number; 0 for the record's own element
    const char* name;      // valid during the call
    bool has_unused_text;  // text other than white space that went into no field
    bool has_attributes;   // other than declarations of namespaces; they never go into fields
};

// Functions get `context`. None of them may throw.
struct HostRecordHandler {
    void* context;

    // Writing. The index of the item of level 1 to write. The conditions of the description have
    // been evaluated; the module does not have them evaluated again.
    std::int32_t (*choose_layout)(void* context);
    // Not 0: the host moves items between records. Those that a record does not have lie beyond its
    // end in the description.
    std::int32_t moves_items;
    // The text of the character field of the item at `index` in the record being written, valid
    // until the next call; null for texts that go into the document as they are in the record.
    const char* (*text)(void* context, std::int32_t index, std::size_t* length);

    // Reading. Told of each record before its data is stored: the name of its element, as names of
    // fields are compared, valid during the call. May be null.
    void (*begin_record)(void* context, const char* name);
    // The encoding of the texts (a HostEncoding code), set by the module with each record.
    std::int32_t text_encoding;
    // How much of the document has been parsed, in bytes, set like that.
    std::int64_t parsed_bytes;
    // In place of SXML_EXACT_TABLE_MATCH.
    HostTableMatch table_match;
    // In place of Q4TestCOBOLCond: evaluates condition `number` (from 1) on the record as filled so
    // far, and stores the result in the description.
    void (*test_condition)(void* context, std::int32_t number);
    // Stores an element's text, `length` bytes, in the field of the item at `index`.
    void (*store)(void* context, std::int32_t index, const char* text, std::size_t length);
    // Told that the record has no element for the field of the item at `index`, which is one that
    // it should have; null for a host that does not want to know.
    void (*missing)(void* context, std::int32_t index);
    // Told of all elements of a record when something in one of them was not used; null for a host
    // that does not want to know.
    void (*unused)(void* context, const HostRecordElement* element);
};

// Asked once for each file that is opened, when its description has been read. The handler must
// stay as long as the file is open; null for none. A host library may lack this service.
HOST_API HostRecordHandler* host_record_handler(Xfd* xfd) HOST_OPTIONAL;
