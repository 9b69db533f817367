/* The program one would write with libxml2: each field is formatted into a string, which its text
 * writer escapes, indents and writes to the file.
 *     to_xml_libxml2 RECORDS XML VERSION DATE */
#include <libxml/xmlwriter.h>
#include <stdio.h>
#include <string.h>

#include "bench/customer.h"

enum { RECORDS_AT_ONCE = 1024 };

static unsigned char records[RECORDS_AT_ONCE * RECORD_LENGTH];
static xmlTextWriterPtr writer;
static int failed; /* whether a call of the writer has failed */

/* What precedes the document element. */
static const char comment_format[] = " Created by Tarnel(tm) version %s on %s ";
static const char document_type[] =
    "\n<!ELEMENT customer_file (customer)*>\n"
    " <!ELEMENT customer (cust_id, cust_name, balance, addr, phone*)>\n"
    "  <!ELEMENT cust_id (#PCDATA)>\n"
    "  <!ELEMENT cust_name (#PCDATA)>\n"
    "  <!ELEMENT balance (#PCDATA)>\n"
    "  <!ELEMENT addr (city, zip)>\n"
    "   <!ELEMENT city (#PCDATA)>\n"
    "   <!ELEMENT zip (#PCDATA)>\n"
    "  <!ELEMENT phone (#PCDATA)>\n";

static void check(int status) {
    failed |= status < 0;
}

static int is_blank(unsigned char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

static void start_element(const char* name) {
    check(xmlTextWriterStartElement(writer, BAD_CAST name));
}

static void end_element(void) {
    check(xmlTextWriterEndElement(writer));
}

static void write_element(const char* name, const char* value) {
    check(xmlTextWriterWriteElement(writer, BAD_CAST name, BAD_CAST value));
}

static void write_text(const char* name, const unsigned char* text, size_t length) {
    char value[CUST_NAME_LENGTH + 1];
    while (length > 0 && is_blank(text[length - 1])) --length;
    while (length > 0 && is_blank(text[0])) ++text, --length;
    memcpy(value, text, length);
    value[length] = '\0';
    write_element(name, value);
}

static void write_number(const char* name, const unsigned char* digits, size_t length) {
    char value[CUST_ID_LENGTH + 1];
    while (length > 1 && *digits == '0') ++digits, --length;
    memcpy(value, digits, length);
    value[length] = '\0';
    write_element(name, value);
}

static void write_balance(const char* name, const unsigned char* packed) {
    char digits[2 * BALANCE_LENGTH];
    char value[2 * BALANCE_LENGTH + 2];
    char* to = value;
    int first = 0;
    for (int i = 0; i < BALANCE_LENGTH; ++i) {
        digits[2 * i] = (char)('0' + (packed[i] >> 4));
        digits[2 * i + 1] = (char)('0' + (packed[i] & 0xF));
    }
    if ((packed[BALANCE_LENGTH - 1] & 0xF) == 0xD) *to++ = '-';
    while (first < 4 && digits[first] == '0') ++first;
    while (first < 5) *to++ = digits[first++];
    *to++ = '.';
    *to++ = digits[5];
    *to++ = digits[6];
    *to = '\0';
    write_element(name, value);
}

static void write_record(const unsigned char* record) {
    start_element("customer");
    write_number("cust_id", record + CUST_ID, CUST_ID_LENGTH);
    write_text("cust_name", record + CUST_NAME, CUST_NAME_LENGTH);
    write_balance("balance", record + BALANCE);
    start_element("addr");
    write_text("city", record + CITY, CITY_LENGTH);
    write_text("zip", record + ZIP, ZIP_LENGTH);
    end_element();
    for (int i = 0; i < PHONES; ++i) {
        write_text("phone", record + PHONE + i * PHONE_LENGTH, PHONE_LENGTH);
    }
    end_element();
}

static void write_prologue(const char* version, const char* date) {
    check(xmlTextWriterSetIndent(writer, 1));
    check(xmlTextWriterSetIndentString(writer, BAD_CAST " "));
    check(xmlTextWriterStartDocument(writer, NULL, "UTF-8", NULL));
    check(xmlTextWriterWriteFormatComment(writer, comment_format, version, date));
    check(xmlTextWriterWriteDTD(writer, BAD_CAST "customer_file", NULL, NULL,
                                BAD_CAST document_type));
}

static void write_document(FILE* in, const char* version, const char* date) {
    size_t count;
    write_prologue(version, date);
    start_element("customer_file");
    while ((count = fread(records, RECORD_LENGTH, RECORDS_AT_ONCE, in)) > 0) {
        for (size_t i = 0; i < count; ++i) write_record(records + i * RECORD_LENGTH);
    }
    end_element();
    check(xmlTextWriterEndDocument(writer));
}

int main(int argc, char** argv) {
    if (argc != 5) {
        fputs("usage: to_xml_libxml2 RECORDS XML VERSION DATE\n", stderr);
        return 2;
    }
    FILE* in = fopen(argv[1], "rb");
    if (in == NULL) {
        perror(argv[1]);
        return 1;
    }
    writer = xmlNewTextWriterFilename(argv[2], 0);
    if (writer == NULL) {
        fprintf(stderr, "to_xml_libxml2: cannot write %s\n", argv[2]);
        return 1;
    }
    write_document(in, argv[3], argv[4]);
    xmlFreeTextWriter(writer);
    if (failed || ferror(in)) {
        fprintf(stderr, "to_xml_libxml2: cannot convert %s into %s\n", argv[1], argv[2]);
        return 1;
    }
    fclose(in);
    return 0;
}
