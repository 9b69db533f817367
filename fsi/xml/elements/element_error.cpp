#include "fsi/xml/elements/element_error.h"

#include <cstdint>

#include "sxml/xml_api.h"

static_assert(XMLERR_COUNT == 19);

namespace {

const char* const element_messages[XMLERR_COUNT + 1] = XML_ERROR_MESSAGES;

std::int32_t element_last_error = XMLERR_NONE;

}  // namespace

void set_element_error(XmlErrorCode code) {
    element_last_error = code;
}

const char* xml_element_error(std::int32_t* code) {
    if (code) *code = element_last_error;
    return element_messages[element_last_error];
}
