# What a build for Windows also needs: everything but the system's libraries is linked in.
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})  # libraries beside the command
add_compile_definitions(_FILE_OFFSET_BITS=64 __USE_MINGW_ANSI_STDIO=1 _WIN32_WINNT=0x0A00
    WIN32_LEAN_AND_MEAN NOMINMAX UNICODE XML_STATIC)
add_link_options(-static)

find_path(PCRE2_INCLUDE_DIR pcre2.h REQUIRED)
find_library(PCRE2_LIBRARY NAMES pcre2-8 pcre2-8-static REQUIRED)
add_library(PkgConfig::PCRE2 STATIC IMPORTED)
set_target_properties(PkgConfig::PCRE2 PROPERTIES IMPORTED_LOCATION ${PCRE2_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${PCRE2_INCLUDE_DIR} INTERFACE_COMPILE_DEFINITIONS PCRE2_STATIC)
