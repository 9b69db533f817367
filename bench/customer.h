/* The record that the benchmarks convert; customer.cpy describes it to sxml. */
#ifndef SXML_BENCH_CUSTOMER_H
#define SXML_BENCH_CUSTOMER_H

enum {
    CUST_ID = 0,
    CUST_ID_LENGTH = 5,
    CUST_NAME = 5,
    CUST_NAME_LENGTH = 10,
    BALANCE = 15, /* packed, seven digits, two of them decimals */
    BALANCE_LENGTH = 4,
    CITY = 19,
    CITY_LENGTH = 8,
    ZIP = 27,
    ZIP_LENGTH = 5,
    PHONE = 32,
    PHONE_LENGTH = 4,
    PHONES = 3,
    RECORD_LENGTH = 44
};

/* What precedes and follows the records. The formats take the version label and the date. */
#define PROLOGUE_FORMAT                                                    \
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"                       \
    "<!-- Created by Tarnel(tm) version %s on %s -->\r\n"                  \
    "<!DOCTYPE customer_file [\r\n"                                        \
    "<!ELEMENT customer_file (customer)*>\r\n"                             \
    " <!ELEMENT customer (cust_id, cust_name, balance, addr, phone*)>\r\n" \
    "  <!ELEMENT cust_id (#PCDATA)>\r\n"                                   \
    "  <!ELEMENT cust_name (#PCDATA)>\r\n"                                 \
    "  <!ELEMENT balance (#PCDATA)>\r\n"                                   \
    "  <!ELEMENT addr (city, zip)>\r\n"                                    \
    "   <!ELEMENT city (#PCDATA)>\r\n"                                     \
    "   <!ELEMENT zip (#PCDATA)>\r\n"                                      \
    "  <!ELEMENT phone (#PCDATA)>\r\n"                                     \
    "]>\r\n"                                                               \
    "<customer_file>\r\n"
#define EPILOGUE "</customer_file>\r\n"

#endif
