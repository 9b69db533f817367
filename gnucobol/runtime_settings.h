// What the COBOL runtime's configuration says about names of files.
#pragma once

#include <string>

namespace gnucobol {

struct FileSettings {
    std::string folder;          // COB_FILE_PATH, file_path; empty when not set
    bool mangles_names = false;  // COB_ENV_MANGLE, env_mangle
};

// The settings that are in effect: from the environment, or else from the configuration file that
// the runtime has read.
FileSettings file_settings();

}  // namespace gnucobol
