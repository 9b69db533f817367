/* The program one would write with libxml2: its reader goes from node to node, and the text of each
 * field's element is converted where the element ends.
 *     from_xml_libxml2 XML RECORDS */
#include <libxml/xmlreader.h>
#include <stdio.h>
#include <string.h>

#include "bench/customer_fields.h"

enum { LONGEST_TEXT = 64, RECORD_DEPTH = 1 };

static FILE* out;
static unsigned char record[RECORD_LENGTH];
static const xmlChar*
    names[FIELDS];                /* of the fields' elements, as the reader's dictionary has them */
static const struct field* field; /* whose element is open, or NULL */
static int phones;                /* seen in this record */
static int occurrence;            /* of `field` */
static char text[LONGEST_TEXT];   /* of `field` */
static int length;                /* of `text` */

/* The reader keeps one copy of each name, so equal names have equal addresses. */
static const struct field* find_field(const xmlChar* name) {
    for (int i = 0; i < FIELDS; ++i) {
        if (name == names[i]) return fields + i;
    }
    return NULL;
}

static void end_element(int is_record) {
    if (is_record) {
        fwrite(record, 1, RECORD_LENGTH, out);
    } else if (field != NULL) {
        store_field(record, field, occurrence, text, length);
        field = NULL;
    }
}

static void start_element(xmlTextReaderPtr reader) {
    const int is_record = xmlTextReaderDepth(reader) == RECORD_DEPTH;
    field = NULL;
    if (is_record) {
        clear_record(record);
        phones = 0;
    } else {
        field = find_field(xmlTextReaderConstLocalName(reader));
        length = 0;
        occurrence = field == fields + PHONE_FIELD ? phones++ : 0;
        if (occurrence >= PHONES) field = NULL;
    }
    if (xmlTextReaderIsEmptyElement(reader)) end_element(is_record);
}

static void add_text(const char* characters) {
    size_t count = strlen(characters);
    if (count > (size_t)(LONGEST_TEXT - length)) count = (size_t)(LONGEST_TEXT - length);
    memcpy(text + length, characters, count);
    length += (int)count;
}

static void take_node(xmlTextReaderPtr reader) {
    switch (xmlTextReaderNodeType(reader)) {
        case XML_READER_TYPE_ELEMENT:
            start_element(reader);
            break;
        case XML_READER_TYPE_TEXT:
        case XML_READER_TYPE_CDATA:
        case XML_READER_TYPE_WHITESPACE:
        case XML_READER_TYPE_SIGNIFICANT_WHITESPACE:
            if (field != NULL) add_text((const char*)xmlTextReaderConstValue(reader));
            break;
        case XML_READER_TYPE_END_ELEMENT:
            end_element(xmlTextReaderDepth(reader) == RECORD_DEPTH);
            break;
        default:
            break;
    }
}

int main(int argc, char** argv) {
    int status;
    if (argc != 3) {
        fputs("usage: from_xml_libxml2 XML RECORDS\n", stderr);
        return 2;
    }
    xmlTextReaderPtr reader = xmlReaderForFile(argv[1], NULL, 0);
    out = fopen(argv[2], "wb");
    if (reader == NULL || out == NULL) {
        perror(reader == NULL ? argv[1] : argv[2]);
        return 1;
    }
    for (int i = 0; i < FIELDS; ++i) {
        names[i] = xmlTextReaderConstString(reader, BAD_CAST fields[i].element);
    }
    while ((status = xmlTextReaderRead(reader)) == 1) take_node(reader);
    xmlFreeTextReader(reader);
    if (status != 0) return 1; /* libxml2 has written what is wrong */
    if (fclose(out) != 0) {
        perror(argv[2]);
        return 1;
    }
    return 0;
}
