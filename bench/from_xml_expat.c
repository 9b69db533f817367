/* The least one would write with Expat: three handlers that collect the text of each field, and the
 * document handed over in pieces of 64 KB.
 *     from_xml_expat XML RECORDS */
#include <expat.h>
#include <stdio.h>
#include <string.h>

#include "bench/customer_fields.h"

enum { PIECE = 1 << 16, LONGEST_TEXT = 64, RECORD_DEPTH = 1 };

static char piece[PIECE];
static FILE* out;
static unsigned char record[RECORD_LENGTH];
static int depth;                 /* of the element that starts or ends; the root's is 0 */
static const struct field* field; /* whose element is open, or NULL */
static int phones;                /* seen in this record */
static int occurrence;            /* of `field` */
static char text[LONGEST_TEXT];   /* of `field` */
static int length;                /* of `text` */

static const struct field* find_field(const char* name) {
    for (const struct field* each = fields; each < fields + FIELDS; ++each) {
        if (name[0] == each->element[0] && strcmp(name, each->element) == 0) return each;
    }
    return NULL;
}

static void XMLCALL on_start(void* data, const XML_Char* name, const XML_Char** attributes) {
    (void)data, (void)attributes;
    if (depth++ == RECORD_DEPTH) {
        clear_record(record);
        phones = 0;
        return;
    }
    field = find_field(name);
    length = 0;
    occurrence = field == fields + PHONE_FIELD ? phones++ : 0;
    if (occurrence >= PHONES) field = NULL;
}

static void XMLCALL on_text(void* data, const XML_Char* characters, int count) {
    (void)data;
    if (field == NULL) return;
    if (count > LONGEST_TEXT - length) count = LONGEST_TEXT - length;
    memcpy(text + length, characters, (size_t)count);
    length += count;
}

static void XMLCALL on_end(void* data, const XML_Char* name) {
    (void)data, (void)name;
    if (--depth == RECORD_DEPTH) {
        fwrite(record, 1, RECORD_LENGTH, out);
    } else if (field != NULL) {
        store_field(record, field, occurrence, text, length);
        field = NULL;
    }
}

static enum XML_Status parse(XML_Parser parser, FILE* in) {
    enum XML_Status status = XML_STATUS_OK;
    size_t count = PIECE;
    while (status == XML_STATUS_OK && count == PIECE) {
        count = fread(piece, 1, PIECE, in);
        status = XML_Parse(parser, piece, (int)count, count < PIECE);
    }
    return status;
}

int main(int argc, char** argv) {
    if (argc != 3) {
        fputs("usage: from_xml_expat XML RECORDS\n", stderr);
        return 2;
    }
    FILE* in = fopen(argv[1], "rb");
    out = fopen(argv[2], "wb");
    if (in == NULL || out == NULL) {
        perror(in == NULL ? argv[1] : argv[2]);
        return 1;
    }
    XML_Parser parser = XML_ParserCreate(NULL);
    XML_SetElementHandler(parser, on_start, on_end);
    XML_SetCharacterDataHandler(parser, on_text);
    if (parse(parser, in) != XML_STATUS_OK) {
        fprintf(stderr, "from_xml_expat: %s: %s\n", argv[1],
                XML_ErrorString(XML_GetErrorCode(parser)));
        return 1;
    }
    XML_ParserFree(parser);
    fclose(in);
    if (fclose(out) != 0) {
        perror(argv[2]);
        return 1;
    }
    return 0;
}
