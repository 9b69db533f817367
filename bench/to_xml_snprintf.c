/* A program with some care: one snprintf and one fwrite for each record.
 *     to_xml_snprintf RECORDS XML VERSION DATE */
#include <stdio.h>
#include <string.h>

#include "bench/customer.h"

static FILE* out;

static int is_blank(unsigned char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/* Escapes a text into `buffer`, blanks at its ends left out. */
static void escape(const unsigned char* text, size_t length, char* buffer) {
    while (length > 0 && is_blank(text[length - 1])) --length;
    while (length > 0 && is_blank(text[0])) ++text, --length;
    for (size_t i = 0; i < length && text[i] != 0; ++i) {
        const unsigned char c = text[i];
        const char* entity = c == '<'    ? "&lt;"
                             : c == '>'  ? "&gt;"
                             : c == '&'  ? "&amp;"
                             : c == '\'' ? "&apos;"
                             : c == '"'  ? "&quot;"
                                         : NULL;
        if (entity != NULL) {
            buffer = stpcpy(buffer, entity);
        } else if (c < 0x20) {
            buffer += sprintf(buffer, "&#x%02x;", c);
        } else {
            *buffer++ = (char)c;
        }
    }
    *buffer = '\0';
}

static long display_number(const unsigned char* digits, int length) {
    long number = 0;
    for (int i = 0; i < length; ++i) number = number * 10 + (digits[i] - '0');
    return number;
}

static long packed_number(const unsigned char* packed, int length) {
    long number = 0;
    for (int i = 0; i < length; ++i) {
        number = number * 10 + (packed[i] >> 4);
        if (i < length - 1) number = number * 10 + (packed[i] & 0xF);
    }
    return number;
}

static void write_record(const unsigned char* record) {
    enum { PLACE = 128 }; /* more than any text, all entities */
    char text[3 + PHONES][PLACE];
    char whole[2048];
    const long balance = packed_number(record + BALANCE, BALANCE_LENGTH);
    const int negative = (record[BALANCE + BALANCE_LENGTH - 1] & 0xF) == 0xD;
    escape(record + CUST_NAME, CUST_NAME_LENGTH, text[0]);
    escape(record + CITY, CITY_LENGTH, text[1]);
    escape(record + ZIP, ZIP_LENGTH, text[2]);
    for (int i = 0; i < PHONES; ++i) {
        escape(record + PHONE + i * PHONE_LENGTH, PHONE_LENGTH, text[3 + i]);
    }
    const int length =
        snprintf(whole, sizeof whole,
                 " <customer>\r\n  <cust_id>%ld</cust_id>\r\n  <cust_name>%s</cust_name>\r\n"
                 "  <balance>%s%ld.%02ld</balance>\r\n  <addr>\r\n   <city>%s</city>\r\n"
                 "   <zip>%s</zip>\r\n  </addr>\r\n  <phone>%s</phone>\r\n  <phone>%s</phone>\r\n"
                 "  <phone>%s</phone>\r\n </customer>\r\n",
                 display_number(record + CUST_ID, CUST_ID_LENGTH), text[0], negative ? "-" : "",
                 balance / 100, balance % 100, text[1], text[2], text[3], text[4], text[5]);
    fwrite(whole, 1, (size_t)length, out);
}

int main(int argc, char** argv) {
    unsigned char record[RECORD_LENGTH];
    if (argc != 5) {
        fputs("usage: to_xml_snprintf RECORDS XML VERSION DATE\n", stderr);
        return 2;
    }
    FILE* in = fopen(argv[1], "rb");
    out = fopen(argv[2], "wb");
    if (in == NULL || out == NULL) {
        perror(in == NULL ? argv[1] : argv[2]);
        return 1;
    }
    fprintf(out, PROLOGUE_FORMAT, argv[3], argv[4]);
    while (fread(record, 1, sizeof record, in) == sizeof record) write_record(record);
    fputs(EPILOGUE, out);
    if (fclose(out) != 0) {
        perror(argv[2]);
        return 1;
    }
    return 0;
}
