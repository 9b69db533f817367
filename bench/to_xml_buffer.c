/* As fast as a program for one layout can reasonably be: everything is formatted by hand into a
 * large buffer.
 *     to_xml_buffer RECORDS XML VERSION DATE */
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "bench/customer.h"

enum {
    BUFFER_SIZE = 1 << 20,
    LONGEST_RECORD = 1024, /* of XML */
    RECORDS_AT_ONCE = 16384
};

static char buffer[BUFFER_SIZE];
static unsigned char records[RECORDS_AT_ONCE * RECORD_LENGTH];

#define PUT(to, literal) (memcpy((to), (literal), sizeof(literal) - 1), (to) + sizeof(literal) - 1)

static int write_all(int file, const char* data, size_t length) {
    while (length > 0) {
        const ssize_t count = write(file, data, length);
        if (count <= 0) return -1;
        data += count;
        length -= (size_t)count;
    }
    return 0;
}

static int is_blank(unsigned char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

static char* put_special(char* to, unsigned char c) {
    static const char digits[] = "0123456789abcdef";
    switch (c) {
        case '<':
            return PUT(to, "&lt;");
        case '>':
            return PUT(to, "&gt;");
        case '&':
            return PUT(to, "&amp;");
        case '\'':
            return PUT(to, "&apos;");
        case '"':
            return PUT(to, "&quot;");
        default:
            to = PUT(to, "&#x");
            *to++ = digits[c >> 4];
            *to++ = digits[c & 0xF];
            *to++ = ';';
            return to;
    }
}

static char* put_text(char* to, const unsigned char* text, size_t length) {
    while (length > 0 && is_blank(text[length - 1])) --length;
    while (length > 0 && is_blank(text[0])) ++text, --length;
    for (size_t i = 0; i < length && text[i] != 0; ++i) {
        const unsigned char c = text[i];
        if (c < 0x20 || c == '<' || c == '>' || c == '&' || c == '\'' || c == '"') {
            to = put_special(to, c);
        } else {
            *to++ = (char)c;
        }
    }
    return to;
}

static char* put_number(char* to, const unsigned char* digits, int length) {
    while (length > 1 && *digits == '0') ++digits, --length;
    memcpy(to, digits, (size_t)length);
    return to + length;
}

static char* put_balance(char* to, const unsigned char* packed) {
    char digits[2 * BALANCE_LENGTH];
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
    return to;
}

static char* put_record(char* to, const unsigned char* record) {
    to = PUT(to, " <customer>\r\n  <cust_id>");
    to = put_number(to, record + CUST_ID, CUST_ID_LENGTH);
    to = PUT(to, "</cust_id>\r\n  <cust_name>");
    to = put_text(to, record + CUST_NAME, CUST_NAME_LENGTH);
    to = PUT(to, "</cust_name>\r\n  <balance>");
    to = put_balance(to, record + BALANCE);
    to = PUT(to, "</balance>\r\n  <addr>\r\n   <city>");
    to = put_text(to, record + CITY, CITY_LENGTH);
    to = PUT(to, "</city>\r\n   <zip>");
    to = put_text(to, record + ZIP, ZIP_LENGTH);
    to = PUT(to, "</zip>\r\n  </addr>\r\n");
    for (int i = 0; i < PHONES; ++i) {
        to = PUT(to, "  <phone>");
        to = put_text(to, record + PHONE + i * PHONE_LENGTH, PHONE_LENGTH);
        to = PUT(to, "</phone>\r\n");
    }
    return PUT(to, " </customer>\r\n");
}

static int convert(int in, int out, const char* version, const char* date) {
    char* to = buffer + snprintf(buffer, LONGEST_RECORD, PROLOGUE_FORMAT, version, date);
    ssize_t count;
    while ((count = read(in, records, sizeof records)) > 0) {
        for (ssize_t at = 0; at + RECORD_LENGTH <= count; at += RECORD_LENGTH) {
            if (to - buffer > BUFFER_SIZE - LONGEST_RECORD) {
                if (write_all(out, buffer, (size_t)(to - buffer)) != 0) return -1;
                to = buffer;
            }
            to = put_record(to, records + at);
        }
    }
    to = PUT(to, EPILOGUE);
    return count < 0 ? -1 : write_all(out, buffer, (size_t)(to - buffer));
}

int main(int argc, char** argv) {
    if (argc != 5) {
        fputs("usage: to_xml_buffer RECORDS XML VERSION DATE\n", stderr);
        return 2;
    }
    const int in = open(argv[1], O_RDONLY);
    const int out = open(argv[2], O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (in < 0 || out < 0) {
        perror(in < 0 ? argv[1] : argv[2]);
        return 1;
    }
    if (convert(in, out, argv[3], argv[4]) != 0 || close(out) != 0) {
        perror(argv[2]);
        return 1;
    }
    return 0;
}
