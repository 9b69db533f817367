#include "gnucobol/trusted_settings.h"

#include <strings.h>
#include <sys/auxv.h>

#include "host/config.h"

namespace gnucobol {

std::string trusted_setting(const char* name) {
    if (getauxval(AT_SECURE) != 0) return {};
    const char* const value = host_config_string(name, nullptr);
    return value != nullptr ? value : "";
}

bool may_fetch() {
    const char* const value = host_config_string("SXML_NETWORK", nullptr);
    if (value == nullptr || *value == '\0') return getauxval(AT_SECURE) == 0;
    for (const char* yes : {"yes", "true", "on", "1"}) {
        if (strcasecmp(value, yes) == 0) return true;
    }
    return false;
}

}  // namespace gnucobol
