/* The fields of the record that the reading benchmarks fill: their elements and how the text of
 * each is converted. */
#ifndef SXML_BENCH_CUSTOMER_FIELDS_H
#define SXML_BENCH_CUSTOMER_FIELDS_H

#include <string.h>

#include "bench/customer.h"

enum field_usage { TEXT, DIGITS, PACKED };

struct field {
    const char* element;
    enum field_usage usage;
    int offset;
    int length;
};

enum { FIELDS = 6, PHONE_FIELD = 5 };

static const struct field fields[FIELDS] = {
    {"cust_id", DIGITS, CUST_ID, CUST_ID_LENGTH},
    {"cust_name", TEXT, CUST_NAME, CUST_NAME_LENGTH},
    {"balance", PACKED, BALANCE, BALANCE_LENGTH},
    {"city", TEXT, CITY, CITY_LENGTH},
    {"zip", TEXT, ZIP, ZIP_LENGTH},
    {"phone", TEXT, PHONE, PHONE_LENGTH},
};

/* A record without data: spaces in characters, zero in numbers. */
static inline void clear_record(unsigned char* record) {
    memset(record, ' ', RECORD_LENGTH);
    memset(record + CUST_ID, '0', CUST_ID_LENGTH);
    memset(record + BALANCE, 0, BALANCE_LENGTH);
    record[BALANCE + BALANCE_LENGTH - 1] = 0x0C;
}

static inline void store_text(unsigned char* field, int size, const char* text, int length) {
    const int used = length < size ? length : size;
    memcpy(field, text, (size_t)used);
    memset(field + used, ' ', (size_t)(size - used));
}

/* An integer, into digits with leading zeros. */
static inline void store_digits(unsigned char* field, int size, const char* text, int length) {
    int at = length;
    for (int i = size - 1; i >= 0; --i) {
        const int is_digit = at > 0 && text[at - 1] >= '0' && text[at - 1] <= '9';
        field[i] = is_digit ? (unsigned char)text[--at] : '0';
    }
}

/* A number with up to two decimals, into packed digits, the last two of which are decimals. */
static inline void store_packed(unsigned char* field, int size, const char* text, int length) {
    unsigned long value = 0;
    int decimals = -1; /* digits after the point; -1: no point yet */
    const int negative = length > 0 && text[0] == '-';
    for (int i = negative; i < length && decimals < 2; ++i) {
        if (text[i] == '.') {
            decimals = 0;
        } else if (text[i] >= '0' && text[i] <= '9') {
            value = value * 10 + (unsigned long)(text[i] - '0');
            if (decimals >= 0) ++decimals;
        }
    }
    for (decimals = decimals < 0 ? 0 : decimals; decimals < 2; ++decimals) value *= 10;
    field[size - 1] = (unsigned char)(value % 10 << 4 | (negative ? 0xDU : 0xCU));
    value /= 10;
    for (int i = size - 2; i >= 0; --i) {
        field[i] = (unsigned char)(value / 10 % 10 << 4 | value % 10);
        value /= 100;
    }
}

/* Stores an element's text, the white space at its ends left out, in the record; an element without
 * text leaves its field alone. `occurrence` counts from 0. */
static inline void store_field(unsigned char* record, const struct field* field, int occurrence,
                               const char* text, int length) {
    unsigned char* to = record + field->offset + occurrence * field->length;
    if (length == 0) return;
    while (length > 0 && (unsigned char)text[length - 1] <= ' ') --length;
    while (length > 0 && (unsigned char)text[0] <= ' ') ++text, --length;
    switch (field->usage) {
        case TEXT:
            store_text(to, field->length, text, length);
            break;
        case DIGITS:
            store_digits(to, field->length, text, length);
            break;
        case PACKED:
            store_packed(to, field->length, text, length);
            break;
    }
}

#endif
