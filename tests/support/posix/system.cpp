#include "tests/support/system.h"

#include <cstdlib>

void set_variable(const char* name, const char* value) {
    if (value != nullptr) {
        setenv(name, value, 1);
    } else {
        unsetenv(name);
    }
}

bool is_judged_well(const std::string& command) {
    return std::system(command.c_str()) == 0;
}

std::string as_captured(std::string text) {
    return text;
}

std::string built_module() {
    return SXML_BUILD_DIR "/lib/sxml.so";
}
