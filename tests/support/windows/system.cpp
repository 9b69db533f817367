#include "tests/support/system.h"

#include <cstdlib>

void set_variable(const char* name, const char* value) {
    _putenv_s(name, value != nullptr ? value : "");
}

std::string built_module() {
    return SXML_BUILD_DIR "/bin/sxml.dll";
}
