/* Writes a record file for the benchmarks: make_records COUNT FILE */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "bench/customer.h"

static const char* const names[] = {"Smith",   "Fox & Hare", "O'Neill", "Jones",
                                    "Tarrant", "de Vries",   "Li",      "Brown <Jr>"};
static const char* const cities[] = {"Paris",   "Lyon", "Dundee", "Oslo",
                                     "Bergamo", "Graz", "",       "Aix"};

static unsigned long state = 20261122;

static unsigned long draw(unsigned long below) {
    state = state * 6364136223846793005UL + 1442695040888963407UL;
    return (state >> 33) % below;
}

static void put_text(unsigned char* field, const char* text, size_t length) {
    const size_t used = strlen(text);
    memcpy(field, text, used < length ? used : length);
}

static void put_digits(unsigned char* field, unsigned long value, int length) {
    for (int i = length - 1; i >= 0; --i) {
        field[i] = (unsigned char)('0' + value % 10);
        value /= 10;
    }
}

static void put_packed(unsigned char* field, unsigned long value, int negative) {
    field[BALANCE_LENGTH - 1] = (unsigned char)(value % 10 << 4 | (negative ? 0xDU : 0xCU));
    value /= 10;
    for (int i = BALANCE_LENGTH - 2; i >= 0; --i) {
        field[i] = (unsigned char)(value / 10 % 10 << 4 | value % 10);
        value /= 100;
    }
}

static void make_record(unsigned char* record) {
    memset(record, ' ', RECORD_LENGTH);
    put_digits(record + CUST_ID, draw(100000), CUST_ID_LENGTH);
    put_text(record + CUST_NAME, names[draw(8)], CUST_NAME_LENGTH);
    put_packed(record + BALANCE, draw(10000000), draw(4) == 0);
    put_text(record + CITY, cities[draw(8)], CITY_LENGTH);
    put_digits(record + ZIP, draw(100000), ZIP_LENGTH);
    for (int i = 0; i < PHONES; ++i) {
        if (draw(4) > 0) put_digits(record + PHONE + i * PHONE_LENGTH, draw(10000), PHONE_LENGTH);
    }
}

int main(int argc, char** argv) {
    if (argc != 3) {
        fputs("usage: make_records COUNT FILE\n", stderr);
        return 2;
    }
    FILE* file = fopen(argv[2], "wb");
    if (file == NULL) {
        perror(argv[2]);
        return 1;
    }
    for (unsigned long left = strtoul(argv[1], NULL, 10); left > 0; --left) {
        unsigned char record[RECORD_LENGTH];
        make_record(record);
        fwrite(record, 1, sizeof record, file);
    }
    if (fclose(file) != 0) {
        perror(argv[2]);
        return 1;
    }
    return 0;
}
