/* The parser half of the XML API: documents in and out. Included by sxml/xml_api.h, which says
 * how the functions are reached and what holds for all of them.
 *
 * A document is opened from a file, an "http:" URL, standard input or a text in memory, and is then
 * known by a 32-bit parser handle:
 *
 *     uint32_t options = XMLOPT_ELEMENTS | XMLOPT_CHARACTER_DATA;
 *     uint32_t parser = api.xml_open_file("orders.xml", options, 0);
 *     while (api.SxmlParser_parse_record(parser) && *host_file_error() == 0) {
 *         uint32_t order = api.xml_first_child(api.xml_parser_root(parser));
 *         take_order(order);
 *         api.xml_free_element(order);
 *     }
 *     if (api.xml_parser_root(parser) == 0 || api.xml_parser_current(parser) != 0)
 *         complain("the document cannot be read, or not to its end");
 *     api.xml_free_parser(parser);
 *
 * Where the document ends, or is damaged, inside a record, SxmlParser_parse_record gives 1 and the
 * file error code is not 0: that record is not complete.
 *
 * A handle that is not a live parser is never harmful: the call gives 0 or null and records
 * XMLERR_BAD_PARSER. The parser functions keep a last error of their own, apart from that of the
 * element functions. Texts given back belong to the parser and stay valid until they are changed or
 * the parser is released. A null text given counts as an empty one, unless said otherwise. */
#ifndef SXML_XML_PARSER_API_H
#define SXML_XML_PARSER_API_H

#include <stdint.h>

#ifndef __cplusplus
#include "sxml/host.h"
#endif

/* The option word of xml_open_file: how element names are converted (the two low bits), and what
 * is kept of the document. */
enum XmlParserOption {
    XMLOPT_NAME_MODE = 0x3,   /* 0 and 3 as written; 1 lower case, hyphens to underscores; 2 hyphens
                                 to underscores */
    XMLOPT_PARSE_WHOLE = 0x4, /* the whole document is parsed when it is opened */
    XMLOPT_ELEMENTS = 0x8,    /* the element tree */
    XMLOPT_CHARACTER_DATA = 0x10, /* the elements' values */
    XMLOPT_PROCESSING_INSTRUCTIONS = 0x20,
    XMLOPT_COMMENTS = 0x40,
    XMLOPT_CDATA = 0x80,    /* CDATA sections show in the trace */
    XMLOPT_DEFAULT = 0x100, /* references to internal entities are dropped, not expanded */
    XMLOPT_EXTERNAL_ENTITIES = 0x200, /* references to external entities show in the trace */
    XMLOPT_UNKNOWN_ENCODING = 0x400,  /* unknown encodings show in the trace */
    XMLOPT_DOCTYPE = 0x800,           /* name, identifiers and text of the DOCTYPE declaration */
    XMLOPT_ELEMENT_DECLS = 0x1000,    /* content models; this and the following four keep their
                                         declarations out of the DOCTYPE text */
    XMLOPT_ATTLIST_DECLS = 0x2000,
    XMLOPT_ENTITY_DECLS = 0x4000,
    XMLOPT_UNPARSED_ENTITY_DECLS = 0x8000,
    XMLOPT_NOTATION_DECLS = 0x10000,
    XMLOPT_ELEMENT_HASH = 0x20000, /* elements are indexed by name */
    XMLOPT_XML_DECL = 0x40000      /* version, encoding and standalone of the XML declaration */
};

struct HostTable;
struct HostNameIndex;

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__ELF__)
#pragma GCC visibility push(default)
#endif

/* ---- Opening and releasing ---- */

/* Opens a document. `source` is "-" for standard input, a name that begins with "http:", the text
 * of a document that begins with "<?xml " (both in any case), or else the name of a file; null
 * starts an empty document. `length` is the length in bytes of a text, and ignored otherwise;
 * the text is not copied and must stay in place as long as the parser reads from it.
 * The document is parsed as far as the start of its document element, with XMLOPT_PARSE_WHOLE to
 * its end. Result: the parser, released with xml_free_parser; 0 with XMLERR_NO_MEMORY,
 * XMLERR_OPEN_FILE, XMLERR_URL, or XMLERR_PARSE (the file error code then tells what went wrong).
 * A document that ends early is no failure: the file error code is then 8. */
uint32_t xml_open_file(const char* source, uint32_t options, uint64_t length);

/* Releases a parser with its tree, closes its input, and deletes the local copy of a URL. */
int32_t xml_free_parser(uint32_t parser);

/* 1 when the number is the handle of a parser, else 0. Records nothing. */
int32_t xml_is_parser(uint32_t handle);

/* ---- The tree ---- */

/* Parses the next child of the document element into the tree, after those that are there.
 * Result: 1 when there was one; 0 at the end or on an error, and then the file error code is 8, 14
 * or 19. When the document ends, or is damaged, inside the child, the result is 1 all the same. */
int32_t SxmlParser_parse_record(uint32_t parser);

/* The document element, 0 when there is none (yet, or any more, since it was released). */
uint32_t xml_parser_root(uint32_t parser);

/* The innermost element that is open, 0 when none is or it was released. */
uint32_t xml_parser_current(uint32_t parser);

/* Creates the document element of an empty document. 0 with XMLERR_HAS_TOP_LEVEL when there is one,
 * or with the element functions' error when it cannot be made. */
uint32_t xml_parser_new_root(uint32_t parser, const char* name);

/* The parser whose tree holds an element, 0 when there is none. Records nothing here. */
uint32_t xml_element_parser(uint32_t element);

/* An element in the index. `name` is the name under which it is stored in the tree, `next` the next
 * element of that name in document order, null for the last. Bit 0 of `used` is the caller's, and 0
 * at first. The index owns its entries; `last` is for its own use. */
struct XmlHashEntry {
    char* name;
    uint32_t element;
    struct XmlHashEntry* next;
    uint32_t used;
    struct XmlHashEntry* last;
};

/* The elements parsed last by their names (XMLOPT_ELEMENT_HASH): since the last call of
 * SxmlParser_parse_record, or since the document was opened. Null when there is none.
 * host_hash_find gives the first element of a name, a struct XmlHashEntry, which is also that
 * element's user data. Entries must not be used once the next record is read, and name released
 * elements as well. */
struct HostNameIndex* xml_parser_element_hash(uint32_t parser);

/* ---- The XML declaration ---- */

/* The version, null when the document does not tell. */
const char* xml_parser_version(uint32_t parser);

/* Sets the version (null: none). Result: the stored copy; null with XMLERR_NO_MEMORY, and then the
 * old version stands. */
const char* xml_set_parser_version(uint32_t parser, const char* version);

/* The name of the encoding, null when the document does not tell. */
const char* xml_parser_encoding(uint32_t parser);

/* Sets the name of the encoding (null: none) in which the document is to be written. How the rest
 * of the document is read does not change. */
void xml_set_parser_encoding(uint32_t parser, const char* encoding);

/* 0 "no", 1 "yes", -1 not given; 0 also for a document without an XML declaration. */
int32_t xml_parser_standalone(uint32_t parser);
void xml_set_parser_standalone(uint32_t parser, int32_t standalone);

/* ---- The DOCTYPE declaration ---- */

/* The text between the brackets of the declaration, as far as it was kept; null when there is none.
 */
const char* xml_parser_doctype_text(uint32_t parser);

/* Replaces that text. 0 with XMLERR_NO_MEMORY. It is written only with a document that was read
 * with a DOCTYPE declaration: nothing gives a new document the name that a declaration needs. */
int32_t xml_set_parser_doctype_text(uint32_t parser, const char* text);

/* The element declarations by element name (in lower case, at most 255 bytes); null when there are
 * none. host_table_name gives the names, host_table_get the content models: each an XML_Content of
 * expat.h, which belongs to the table. */
struct HostTable* xml_parser_models(uint32_t parser);

/* ---- Processing instructions, numbered from 0 in document order ---- */

/* Number of instructions; 0 with XMLERR_NO_PI when there never was one. */
uint32_t xml_pi_count(uint32_t parser);

/* Target or data; null with XMLERR_NO_PI, or XMLERR_BAD_PI for a number not below the count. */
const char* xml_pi_target(uint32_t parser, uint32_t index);
const char* xml_pi_data(uint32_t parser, uint32_t index);

/* Puts an instruction in so that it takes the number `index`, or the next free one when `index` is
 * beyond that. 0 with XMLERR_NO_MEMORY. */
int32_t xml_insert_pi(uint32_t parser, uint32_t index, const char* target, const char* data);

/* Removes an instruction; later ones move down by one. Errors as for the target. */
int32_t xml_delete_pi(uint32_t parser, uint32_t index);

/* ---- Comments outside the document element ---- */

/* All of them as one text, null when there are none; its length is stored through `length` unless
 * that is null, 0 when there is no text. */
const char* xml_top_comments(uint32_t parser, uint64_t* length);

/* Adds a text: in a document whose comments were read it is a comment of its own, else what is
 * added makes up one comment. 0 with XMLERR_NO_MEMORY. */
int32_t xml_add_top_comment(uint32_t parser, const char* text);
void xml_clear_top_comments(uint32_t parser);

/* ---- Writing ---- */

/* Writes the whole document to a file, which is replaced. 0 with XMLERR_NO_MEMORY or
 * XMLERR_OPEN_FILE, and then nothing is written. Later failures are not reported here:
 * host_take_write_failure tells.
 * docs/parser-api.md tells in which encoding. */
int32_t xml_write_document(uint32_t parser, const char* file);

/* ---- Errors ---- */

/* The message of the last error of the parser functions, whose code is stored through `code` unless
 * that is null. */
const char* xml_last_error(int32_t* code);

#if defined(__ELF__)
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
