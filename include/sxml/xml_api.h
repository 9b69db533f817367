/* The XML API of the module, for C and C++ callers.
 *
 * The module exports these functions by ordinal number only. A program outside of it loads the
 * module with xml_api_load and calls through the table of function pointers that it fills:
 *
 *     XmlApi api;
 *     const char* problem = xml_api_load("sxml.so", &api);
 *     if (problem) ...
 *     uint32_t order = api.xml_new_element(0, "order", 0);
 *     api.xml_add_child(order, "item");
 *     ...
 *     api.xml_free_element(order);
 *
 * Inside the module the functions are called by their names.
 *
 * Elements are known by 32-bit handles; 0 is not a handle. A handle that is not a live element is
 * never harmful: the call gives its failure value and records XMLERR_BAD_ELEMENT. Failures are
 * recorded in one last error, which no successful call clears; a successful call may also record
 * why one of its steps found nothing, where its description says so.
 *
 * Texts are NUL-terminated bytes; they are copied when stored, and a null text counts as an empty
 * one. Texts given back belong to the element: they stay valid until that text is changed or the
 * element is released, and are not freed by the caller. Flag results are 1 (done) or 0 (failed).
 * XMLERR_NO_MEMORY leaves the tree as it was. One thread at a time may use the API. */
#ifndef SXML_XML_API_H
#define SXML_XML_API_H

#include <stdint.h>

#include "sxml/error_codes.h"
#ifndef __cplusplus
#include "sxml/host.h"
#endif
#include "sxml/text_span.h"
#include "sxml/xml_parser_api.h"

/* A piece of text: pointer, length in bytes, host encoding code. */
typedef struct HostTextSpan XmlTextSpan;

/* An output file, opened and closed through the host. */
struct HostStream;

/* Flags of xml_write_text and xml_write_string; they may be combined. */
enum XmlTextFlag {
    XML_TEXT_ESCAPE = 1, /* markup characters are written as entities */
    XML_TEXT_TRIM = 2    /* together with XML_TEXT_ESCAPE: drops white space at both ends first */
};

/* xml_element_index: there is no such occurrence number. */
#define XML_NO_INDEX UINT32_C(0xFFFFFFFF)

/* An element carries at most this many occurrence numbers. */
#define XML_INDEX_LIMIT 20

/* xml_write_element and xml_dump_children indent lines by at most this many spaces. */
#define XML_INDENT_LIMIT 1024

#ifdef __cplusplus
extern "C" {
#endif

/* The build gives each function its ordinal as a further name, which is exported as the function
 * is. */
#if defined(__ELF__)
#pragma GCC visibility push(default)
#endif

/* ---- Building and releasing ---- */

/* Creates an element called `name` below `parent`, before its child `before`; at the end when
 * `before` is 0, 0xFFFFFFFF or no child of the parent. When the parent already has n children of
 * that name, the new element gets the occurrence number n + 1, and a first one that had none gets
 * the number 1. A parent that is 0 or not an element makes a top-level element, which the caller
 * owns (the parent's lookup records XMLERR_BAD_ELEMENT); other elements belong to their parents.
 * Result: the element; 0 with XMLERR_NO_MEMORY. */
uint32_t xml_new_element(uint32_t parent, const char* name, uint32_t before);

/* xml_new_element at the end of the parent's children. */
uint32_t xml_add_child(uint32_t parent, const char* name);

/* Creates an element right after `element`, below the same parent. Result: the element; 0 with
 * XMLERR_HAS_TOP_LEVEL when `element` is a top-level element or none, or with XMLERR_NO_MEMORY.
 * After a last child XMLERR_NO_SIBLINGS is recorded although the call succeeds. */
uint32_t xml_add_sibling(uint32_t element, const char* name);

/* Releases an element with everything below it and takes it out of its parent's children. Result:
 * 1; 0 for a bad handle. */
int32_t xml_free_element(uint32_t element);

/* 1 when the number is the handle of an element, else 0. Records nothing. */
int32_t xml_is_element(uint32_t handle);

/* ---- Walking ---- */

/* The first child; 0 with XMLERR_NO_CHILDREN. */
uint32_t xml_first_child(uint32_t element);

/* The next or previous child of the same parent; 0 with XMLERR_NO_SIBLINGS at the end of the
 * children and for a top-level element. */
uint32_t xml_next_sibling(uint32_t element);
uint32_t xml_previous_sibling(uint32_t element);

/* The parent; 0 with XMLERR_TOP_LEVEL. */
uint32_t xml_parent(uint32_t element);

/* ---- Names, values, occurrence numbers ---- */

/* The element's name; null for a bad handle. */
const char* xml_element_name(uint32_t element);

/* The character data; its length in bytes is stored through `length` unless that is null. Null with
 * XMLERR_NO_VALUE when the element never received any, and then the length is left alone. */
const char* xml_element_value(uint32_t element, uint64_t* length);

/* The host encoding code of the character data; -1 with XMLERR_NO_VALUE when there is none. */
int32_t xml_value_encoding(uint32_t element);

/* Replaces the character data by `length` bytes of `text` (negative: up to its NUL). A pointer just
 * obtained from xml_element_value shortens the data in place; a length beyond the data then gives 0
 * without an error and changes the encoding code alone. Otherwise 0 comes with XMLERR_NO_MEMORY. */
int32_t xml_set_element_value(uint32_t element, const char* text, int64_t length, int32_t encoding);

/* Appends `length` bytes of `text` (negative: up to its NUL) to the character data. The encoding
 * code counts for the first piece only. 0 with XMLERR_NO_MEMORY. */
int32_t xml_append_element_value(uint32_t element, const char* text, int64_t length,
                                 int32_t encoding);

/* Position of the last occurrence number, -1 when there are none or for a bad handle. */
int32_t xml_last_index(uint32_t element);

/* The occurrence number, counted from 1, at a position from 0 to xml_last_index, outermost first;
 * XML_NO_INDEX for any other position (no error) or a bad handle. */
uint32_t xml_element_index(uint32_t element, int32_t position);

/* Attaches a pointer of the caller's, which the element does not own. 0 without an error when one
 * is attached already: it is never replaced. Null succeeds and leaves the place free. */
int32_t xml_set_user_data(uint32_t element, void* data);

/* The attached pointer; null when there is none. */
void* xml_get_user_data(uint32_t element);

/* ---- Attributes, numbered from 0 in the order they were added ---- */

/* Number of attributes; 0 with XMLERR_NO_ATTRIBUTES when there never was one. */
uint32_t xml_attribute_count(uint32_t element);

/* Name or value of an attribute; null with XMLERR_BAD_ATTRIBUTE for a number not below the count.
 * (For an element that never had attributes XMLERR_NO_ATTRIBUTES is recorded first and replaced.)
 */
const char* xml_attribute_name(uint32_t element, uint32_t attribute);
const char* xml_attribute_value(uint32_t element, uint32_t attribute);

/* Replaces an attribute's value. 0 for a number not below the count, which records nothing unless
 * the element never had attributes (XMLERR_NO_ATTRIBUTES); 0 with XMLERR_NO_MEMORY. */
int32_t xml_set_attribute_value(uint32_t element, uint32_t attribute, const char* value);

/* Adds an attribute at the end; a name may occur more than once. Result: the new number of
 * attributes; 0 with XMLERR_NO_MEMORY. */
uint32_t xml_add_attribute(uint32_t element, const char* name, const char* value);

/* Removes an attribute; later ones move down by one. 0 with XMLERR_BAD_ATTRIBUTE. */
int32_t xml_delete_attribute(uint32_t element, uint32_t attribute);

/* ---- Comments ---- */

/* Appends to the element's comment text, with no separator. 0 with XMLERR_NO_MEMORY. */
int32_t xml_add_comment(uint32_t element, const char* text);

/* Drops the comment text, if there is any. A bad handle records XMLERR_BAD_ELEMENT. */
void xml_clear_comments(uint32_t element);

/* The comment text, null when there is none (no error). Stores the text's length through `length`
 * unless that is null; 0 when there is no text, even for a bad handle. */
const char* xml_element_comments(uint32_t element, uint64_t* length);

/* ---- Errors ---- */

/* The message of the last error, whose code is stored through `code` unless that is null. */
const char* xml_element_error(int32_t* code);

/* ---- Output; a failed write is not reported here, and later writes are still tried ---- */
/* host_take_write_failure tells after the stream was closed. */

/* `output` is an open stream, `output_encoding` the host encoding code of the file being written:
 * it decides whether a raw text ends at a NUL byte (codes -1, 0 and 2) and nothing else. */

/* Writes an element with its comments, attributes, character data and everything below it, indented
 * by `indent` spaces and two more for each level. A bad handle writes nothing. */
void xml_write_element(struct HostStream* output, int32_t output_encoding, uint32_t element,
                       uint32_t indent);

/* Prints what is below an element to the host's trace, a line for each element, for people to read.
 * The errors of walking and reading stay recorded. */
void xml_dump_children(uint32_t element, uint32_t indent);

/* Writes a span. Without XML_TEXT_ESCAPE its bytes go out as they stand; with it, markup characters
 * of the span's own encoding become entities, control bytes of a byte encoding character
 * references, and a text of a byte encoding ends at its first NUL. An escaped span of a code that
 * is not one of the fixed ones gives nothing.
 * Result: items written (bytes; code units for runs of 16 and 32-bit text); 0 for a null span. */
uint64_t xml_write_text(struct HostStream* output, int32_t output_encoding, const XmlTextSpan* span,
                        uint8_t flags);

/* Writes a carriage return and a line feed. Result: bytes written. */
uint64_t xml_write_newline(struct HostStream* output, int32_t output_encoding);

/* Writes a NUL-terminated text, each line feed in it as a line end. The flags work on each line by
 * itself: XML_TEXT_TRIM drops white space at both ends of every line. Result: bytes written. */
uint64_t xml_write_string(struct HostStream* output, int32_t output_encoding, const char* text,
                          uint8_t flags);

/* Copies a text with its NUL into `destination`, where the caller provides room for both; a null
 * destination receives nothing. The second argument is not used. Result: the text's length. */
uint64_t xml_copy_string(char* destination, uint64_t unused, const char* source);

#if defined(__ELF__)
#pragma GCC visibility pop
#endif

/* ---- Loading ---- */

/* The functions of the module, found by ordinal number. */
typedef struct XmlApi {
/* NOLINTNEXTLINE(bugprone-macro-parentheses): types cannot stand in parentheses */
#define XML_ORDINAL(number, name, result, parameters) result(*name) parameters;
#include "sxml/ordinals.def"
#undef XML_ORDINAL
} XmlApi;

/* Loads the module from the file `module` and fills the table. The module stays loaded until the
 * process ends. Result: null, or a text that says what went wrong, valid until the next call; the
 * table is then all null and the module no longer loaded. Defined in the library sxml_api. */
const char* xml_api_load(const char* module, XmlApi* api);

#ifdef __cplusplus
}
#endif

#endif
