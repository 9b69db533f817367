/* A module that has only the first of the functions, for the loader to refuse; and the messages as
 * a C program would make a table of them. */
#include <stdint.h>

#include "sxml/error_codes.h"

uint32_t ordinal_1(void);
uint32_t ordinal_1(void) {
    return 0;
}

extern const char* const messages[XMLERR_COUNT + 1];
const char* const messages[XMLERR_COUNT + 1] = XML_ERROR_MESSAGES;
