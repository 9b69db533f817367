#include "tests/module/sample_descriptions.h"

const std::string SMITH = "00042Smith     0012345Paris   750011234    5678";

XfdBuilder customers() {
    XfdBuilder builder("custfile");
    builder.group(1, "customer");
    builder.number(2, "cust_id", 0, 5, 5);
    builder.text(2, "cust_name", 5, 10);
    builder.number(2, "balance", 15, 7, 7, -2);
    builder.group(2, "addr", 22);
    builder.text(3, "city", 22, 8);
    builder.text(3, "zip", 30, 5);
    for (int i = 1; i <= 3; ++i) {
        builder.text(2, "phone", 31 + 4 * i, 4);
        builder.occurrence({{i, 3}});
    }
    return builder;
}

XfdBuilder orders() {
    XfdBuilder builder("orders");
    const int hdr = builder.group(1, "hdr");
    builder.text(2, "kind", 0, 2);
    builder.text(2, "hdr_text", 2, 4, 1);
    const int dtl = builder.group(1, "dtl");
    builder.text(2, "kind", 0, 2);
    builder.text(2, "amount", 2, 4, 2);
    builder.condition(0, 'H', hdr);
    builder.condition(1, 'D', dtl);
    return builder;
}

std::string lines(std::string_view text) {
    std::string result;
    for (const char character : text) {
        if (character == '\n') result += '\r';
        result += character;
    }
    return result;
}
