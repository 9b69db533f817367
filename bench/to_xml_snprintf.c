/* The program one would write first: snprintf and fwrite for each field.
 *     to_xml_snprintf RECORDS XML VERSION DATE */
#include <stdio.h>
#include <string.h>

#include "bench/customer.h"

static FILE* out;

static int is_blank(unsigned char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/* Escapes a text into `buffer`, blanks at its ends left out. */
static void escape(const unsigned char* text, size_t length, char* buffer, size_t size) {
    size_t used = 0;
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
            used += (size_t)snprintf(buffer + used, size - used, "%s", entity);
        } else if (c < 0x20) {
            used += (size_t)snprintf(buffer + used, size - used, "&#x%02x;", c);
        } else {
            buffer[used++] = (char)c;
        }
    }
    buffer[used] = '\0';
}

static void write_element(int level, const char* name, const char* value) {
    char line[256];
    const int length =
        snprintf(line, sizeof line, "%*s<%s>%s</%s>\r\n", level, " ", name, value, name);
    fwrite(line, 1, (size_t)length, out);
}

static void write_text(int level, const char* name, const unsigned char* text, size_t length) {
    char value[128];
    escape(text, length, value, sizeof value);
    write_element(level, name, value);
}

static void write_number(const char* name, const unsigned char* digits, int length) {
    char value[32];
    long number = 0;
    for (int i = 0; i < length; ++i) number = number * 10 + (digits[i] - '0');
    snprintf(value, sizeof value, "%ld", number);
    write_element(2, name, value);
}

static void write_packed(const char* name, const unsigned char* packed, int length) {
    char value[32];
    long number = 0;
    for (int i = 0; i < length; ++i) {
        number = number * 10 + (packed[i] >> 4);
        if (i < length - 1) number = number * 10 + (packed[i] & 0xF);
    }
    const int negative = (packed[length - 1] & 0xF) == 0xD;
    snprintf(value, sizeof value, "%s%ld.%02ld", negative ? "-" : "", number / 100, number % 100);
    write_element(2, name, value);
}

static void write_record(const unsigned char* record) {
    fputs(" <customer>\r\n", out);
    write_number("cust_id", record + CUST_ID, CUST_ID_LENGTH);
    write_text(2, "cust_name", record + CUST_NAME, CUST_NAME_LENGTH);
    write_packed("balance", record + BALANCE, BALANCE_LENGTH);
    fputs("  <addr>\r\n", out);
    write_text(3, "city", record + CITY, CITY_LENGTH);
    write_text(3, "zip", record + ZIP, ZIP_LENGTH);
    fputs("  </addr>\r\n", out);
    for (int i = 0; i < PHONES; ++i) {
        write_text(2, "phone", record + PHONE + i * PHONE_LENGTH, PHONE_LENGTH);
    }
    fputs(" </customer>\r\n", out);
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
