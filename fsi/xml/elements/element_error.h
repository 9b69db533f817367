// The last error of the element API: one value for the process, kept until the next failure.
#pragma once

#include "sxml/error_codes.h"

// Records a failure. Callers read it with xml_element_error.
void set_element_error(XmlErrorCode code);
