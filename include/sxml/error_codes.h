/* The error codes of the XML API with their messages: the one list from which the enumeration and
 * the message tables are made. The element API and the parser API number their errors alike, but
 * each keeps its own last error and its own table. Plain C, for callers of the API. */
#ifndef XML_ERROR_CODES_H
#define XML_ERROR_CODES_H

/* XML_ERROR(name, message), in the order of the codes 0, 1, 2 and so on. */
#define XML_ERROR_LIST(XML_ERROR)                                                           \
    XML_ERROR(XMLERR_NONE, "No error")                                                      \
    XML_ERROR(XMLERR_NO_MEMORY, "Unable to create parser due to low memory")                \
    XML_ERROR(XMLERR_EXPAT, "Unable to create parser - expat error")                        \
    XML_ERROR(XMLERR_OPEN_FILE, "Unable to open named file")                                \
    XML_ERROR(XMLERR_PARSE, "Invalid XML file or other parsing error")                      \
    XML_ERROR(XMLERR_BAD_PARSER, "The passed handle is not a valid parser handle")          \
    XML_ERROR(XMLERR_BAD_ELEMENT, "The passed handle is not a valid element handle")        \
    XML_ERROR(XMLERR_BAD_ATTRIBUTE, "Invalid attribute number")                             \
    XML_ERROR(XMLERR_URL, "The URL given could not be located")                             \
    XML_ERROR(XMLERR_NO_PARSER, "The XML parser is not available on this machine")          \
    XML_ERROR(XMLERR_NO_CHILDREN, "The specified element has no children")                  \
    XML_ERROR(XMLERR_NO_SIBLINGS, "The specified element has no siblings")                  \
    XML_ERROR(XMLERR_TOP_LEVEL, "The specified element is a top-level element")             \
    XML_ERROR(XMLERR_NO_VALUE, "The specified element has no value")                        \
    XML_ERROR(XMLERR_NO_ATTRIBUTES, "The specified element has no attributes")              \
    XML_ERROR(XMLERR_REGEX, "The regular expression given caused an error")                 \
    XML_ERROR(XMLERR_HAS_TOP_LEVEL, "The specified parser already has a top-level element") \
    XML_ERROR(XMLERR_BAD_PI, "Invalid processing instruction number")                       \
    XML_ERROR(XMLERR_NO_PI, "No processing instructions are available")

#define XML_ERROR_NAME(name, message) name,
enum XmlErrorCode { XML_ERROR_LIST(XML_ERROR_NAME) XMLERR_COUNT };
#undef XML_ERROR_NAME

/* The initialiser of a message table: an entry per code. A table with room for one more ends with
 * null:
 *     const char* const messages[XMLERR_COUNT + 1] = XML_ERROR_MESSAGES;
 * It is expanded where a table is defined, so XML_ERROR_MESSAGE has to stay defined. */
#define XML_ERROR_MESSAGE(name, message) message,
#define XML_ERROR_MESSAGES \
    { XML_ERROR_LIST(XML_ERROR_MESSAGE) }

#endif
