/* Lists a field of every record of a record file or document, and their sum:
 *
 *     list_balances LAYOUT FILE FIELD
 */
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include "sxml/records.h"

/* Adds the numbers in hundredths. Result: 0, or -1 when one of them cannot be had. */
static int sum_up(SxmlFile* file, int field, int64_t* sum) {
    int64_t value = 0;
    int decimals = 0;
    while (sxml_read(file) == 1) {
        if (sxml_get_decimal(file, field, &value, &decimals) != 0 || decimals != 2) return -1;
        printf("%s\n", sxml_get_text(file, field));
        *sum += value;
    }
    return sxml_finish(file);
}

int main(int argc, char** argv) {
    int64_t sum = 0;
    int result = -1;
    if (argc != 4) {
        fprintf(stderr, "usage: list_balances LAYOUT FILE FIELD\n");
        return 2;
    }
    SxmlFile* file = sxml_open(argv[1], argv[2], "r", NULL);
    const int field = sxml_field(file, argv[3]);
    if (field >= 0) result = sum_up(file, field, &sum);
    if (result == 0) printf("sum: %" PRId64 " hundredths\n", sum);
    if (result != 0) fprintf(stderr, "list_balances: %s\n", sxml_problem(file));
    sxml_close(file);
    return result == 0 ? 0 : 1;
}
