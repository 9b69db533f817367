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

XfdBuilder order_lines() {
    XfdBuilder builder("lines");
    builder.group(1, "row");
    builder.text(2, "id", 0, 2);
    for (int line = 1; line <= 2; ++line) {
        builder.group(2, "line");
        builder.occurrence({{line, 2}});
        builder.text(3, "sku", 4 * line - 2, 2);
        builder.occurrence({{line, 2}});
        for (int i = 1; i <= 2; ++i) {
            builder.text(3, "qty", 4 * line - 1 + i, 1);
            builder.occurrence({{line, 2}, {i, 2}});
        }
    }
    builder.group(2, "head");
    builder.text(3, "name", 10, 2);
    builder.group(2, "foot");
    builder.text(3, "name", 12, 2);
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
