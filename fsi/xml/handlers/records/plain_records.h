// The lane for plain records: a child of the document element that is made of nothing but plain
// markup in UTF-8 goes from the input buffer into the record tree without Expat. Between two such
// children Expat's state is always the same, so it need not see them. Whatever the lane does not
// know goes to Expat from the record's first byte; so what is wrong with a document, and what an
// incomplete record holds, is always what Expat says.
//
// What the lane takes, by the productions of XML 1.0, and the rules that it keeps:
//
//   [2]  Char       in texts: blank, tab, line feed, 0x20 to 0x7F, and UTF-8 sequences in their
//                   shortest form, without surrogates, U+FFFE and U+FFFF. In attribute values the
//                   same without sequences.
//   [3]  S          between the parts of a start tag, before a record. Carriage returns only where
//                   the text is not kept (line ends, 2.11, change nothing there).
//   [4]  Name       ASCII letters, digits and _ : - . with a letter, _ or : first; or a name that
//                   Expat has read before.
//   [10] AttValue   in either quotes, without < (no < in attribute values) and & (no references).
//   [14] CharData   without ] (so no ]]>).
//   [39] element    start and end tag have the same name (element type match); nested up to a
//   depth. [40] STag, [44] EmptyElemTag   attributes after white space, each name once (unique att
//   spec),
//                   a few of them.
//   [41] Attribute  without white space around the =.
//   [42] ETag       without white space after the name.
//   [68] EntityRef  lt, gt, amp, apos, quot.
//
// Not taken: comments, instructions, CDATA sections, character references, all other entities, and
// every document whose DTD declares entities or attributes, which Expat adds to elements, or
// limits.
#pragma once

#include "fsi/xml/handlers/xml_parser.h"
#include "host/files.h"

// Lets records of the document take the lane. Called before anything is parsed.
void allow_plain_records(XmlParser& parser);

// From now on everything goes through Expat.
inline void forbid_plain_records(XmlParser& parser) {
    parser.state &= ~std::uint32_t{XMLPS_PLAIN_RECORDS};
}

// Takes the next record, when it is plain: it is complete in the parser's record tree then, and the
// input stands after it. Called between two records. False with nothing changed but the input
// buffer, which may have been filled up from the stream, and names that have become known.
bool take_plain_record(XmlParser& parser, HostStream* stream);
