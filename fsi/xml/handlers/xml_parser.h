// The parser record: one Expat parser bound to one input, what it is to collect, and what its
// handlers have collected.
#pragma once

#include <expat.h>

#include <cstddef>
#include <cstdint>

#include "fsi/xml/elements/element.h"
#include "fsi/xml/handlers/declarations/declaration_tokens.h"
#include "fsi/xml/handlers/element_hash.h"
#include "host/encoding.h"
#include "host/entities/entity_depth.h"
#include "host/tables.h"
#include "sxml/xml_parser_api.h"

// The path under which the parsing layer's memory is accounted for.
constexpr const char* HANDLERS_SOURCE = "fsi/xml/handlers";

// What the sequential-file interface reads with; it adds a name mode.
constexpr std::uint32_t XMLOPT_SEQUENTIAL_FILE =
    XMLOPT_ELEMENTS | XMLOPT_CHARACTER_DATA | XMLOPT_UNKNOWN_ENCODING | XMLOPT_DOCTYPE |
    XMLOPT_ELEMENT_DECLS | XMLOPT_ENTITY_DECLS | XMLOPT_ELEMENT_HASH | XMLOPT_XML_DECL;
static_assert(XMLOPT_SEQUENTIAL_FILE == 0x65c18);

// Conversion of element names; mode 3 converts nothing, as mode 0.
enum XmlNameMode : std::uint32_t {
    XML_NAME_AS_IS = 0,
    XML_NAME_LOWER_UNDERSCORE = 1,  // lower case, hyphens to underscores
    XML_NAME_UNDERSCORE = 2,        // hyphens to underscores
    XML_NAME_AS_WRITTEN = 3
};

// Bits of XmlParser::state.
enum XmlParserState : std::uint32_t {
    XMLPS_IN_DOCTYPE = 0x1,            // a DOCTYPE declaration has started
    XMLPS_DOCTYPE_DONE = 0x2,          // it has ended
    XMLPS_ENCODING_DETECTED = 0x8,     // the first bytes were looked at; never repeated
    XMLPS_STEPWISE = 0x10,             // Expat is suspended where a record may start or end
    XMLPS_SUSPENDED = 0x20,            // Expat is suspended and holds input that it was given
    XMLPS_RECORD_STARTED = 0x40,       // a child of the document element has started
    XMLPS_OUT_OF_MEMORY = 0x80,        // a handler failed: the tree is incomplete, nothing follows
    XMLPS_INPUT_ENDED = 0x100,         // Expat was told that the input has ended
    XMLPS_FAILED = 0x200,              // Expat rejected the document
    XMLPS_RECORD_ENDED = 0x400,        // the record that was asked for has ended
    XMLPS_REPLAYING = 0x800,           // events that were kept are being delivered
    XMLPS_ROOT_ENDED = 0x1000,         // the document element has ended
    XMLPS_END_TOLD = 0x2000,           // this was reported to a caller that asked for a record
    XMLPS_ENTITIES_TOO_DEEP = 0x4000,  // why the parse was stopped
    XMLPS_READ = 0x8000,               // the document is one that was read, not built
    XMLPS_PLAIN_RECORDS = 0x10000      // records may take the lane, see plain_records.h
};

// A processing instruction; the parser owns both strings.
struct XmlPi {
    std::uint32_t target;
    std::uint32_t data;
};
static_assert(sizeof(XmlPi) == 8);

struct EarlyEvent;
struct RecordTree;

// A zero-filled record without an Expat parser stands for a document that is built in memory.
// The parser owns everything it refers to except the bytes between `position` and `end`.
struct XmlParser {
    XML_Parser expat;                // null in a record made without one, and after end_parsing
    std::uint32_t flags;             // option word
    char* version;                   // of the XML declaration, or null
    char* encoding_name;             // of the XML declaration, or null
    char* buffer;                    // XML_READ_SIZE + 1 bytes
    char* position;                  // first input byte not yet given to Expat
    char* end;                       // one past the last input byte
    std::int32_t encoding;           // host encoding code of the document; -1 not yet known
    std::int32_t depth;              // elements open at the moment
    std::int32_t standalone;         // -1 not given, 0 no, 1 yes; 0 without an XML declaration
    XmlPi* pis;                      // host array in document order; null until the first
    XmlElementHolder tree;           // the first element started, null until then, and the
                                     // innermost open one, null outside the document element
    HostNameIndex* element_hash;     // chains of XmlHashEntry; null without XMLOPT_ELEMENT_HASH
    HostTable* models;               // declared element name -> XML_Content; null until the first
    std::uint32_t top_comments;      // string with an entry for each comment outside the root
    std::uint32_t pending_comments;  // string with the comments not yet given to an element
    std::uint32_t doctype_name;      // strings of the DOCTYPE declaration, 0 when not given
    std::uint32_t doctype_internal;
    std::uint32_t doctype_pubid;
    std::uint32_t doctype_sysid;
    std::uint32_t state;          // XMLPS_ bits
    std::int32_t input_encoding;  // of the input being read: `encoding` as the document gave it
    std::uint64_t bytes_fed;      // input bytes given to Expat so far
    EarlyEvent* first_early;      // events that were kept, see early_events.h; null when none
    EarlyEvent* last_early;
    std::size_t early_size;     // bytes that were kept since there were none
    std::int64_t record_start;  // where the record asked for last starts in the input
    EntityReferences entities;  // see entity_limit.h, as for the next one
    EntityDeclaration declaration;
    std::int32_t missing;           // once the input has ended: Expat's code for what the document
                                    // lacks, 0 when it is complete
    std::uint64_t bytes_passed;     // input bytes that took the lane
    std::uint64_t records_taken;    // by the lane
    std::uint32_t records_refused;  // that it tried
    RecordTree* record;             // see record_handlers.h; not owned, null for the element tree
};

// Where in the input, in bytes from its start, the event that Expat tells of begins; negative
// before the first.
std::int64_t current_byte_index(const XmlParser& parser);
// How many bytes it takes; 0 within an internal entity.
std::int64_t current_byte_count(const XmlParser& parser);

constexpr std::size_t XML_READ_SIZE = 32000;

// Creates a parser with the handlers that the option word asks for. Result: the parser, released
// with free_parser; null with file error 14 when memory is exhausted.
XmlParser* create_parser(std::uint32_t options);

// Creates a record without an Expat parser. Null when memory is exhausted.
XmlParser* create_empty_parser();

// Releases what only parsing needs, when nothing is left to be parsed: Expat keeps as much for each
// level of nesting as the tree does for an element.
void end_parsing(XmlParser& parser);

// Releases a parser with its tree and everything else it collected. Null is allowed.
void free_parser(XmlParser* parser);

// Sets the document's encoding to what its input shows.
inline void set_input_encoding(XmlParser& parser, std::int32_t code) {
    parser.encoding = code;
    parser.input_encoding = code;
}

// The code that texts handed over by Expat are stored and trimmed under. Expat gives UTF-8 whatever
// the document is written in, so a document of 16 or 32-bit units has texts in UTF-8 all the same.
inline std::int32_t text_encoding(const XmlParser& parser) {
    return host_unit_width(parser.input_encoding) > 1 ? HOST_ENCODING_UTF8 : parser.input_encoding;
}

// True when names, attributes and character data are kept in ISO-8859-1 instead of UTF-8.
inline bool stores_latin1(const XmlParser& parser) {
    return parser.input_encoding == HOST_ENCODING_LATIN1;
}
