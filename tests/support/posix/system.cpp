#include "tests/support/system.h"

#include <cstdlib>

void set_variable(const char* name, const char* value) {
    if (value != nullptr) {
        setenv(name, value, 1);
    } else {
        unsetenv(name);
    }
}

std::string built_module() {
    return SXML_BUILD_DIR "/lib/sxml.so";
}
