// Content models of element declarations, written to the trace.
#pragma once

#include <expat.h>

// Traces a content model and those below it, one indentation step a level. Levels beyond the
// hundredth are left out.
void dump_content_model(const XML_Content* model);
