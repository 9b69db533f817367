# parse_rates: the module beside Expat and libxml2. Not built where libxml2's development files are
# missing.
pkg_check_modules(LIBXML2 IMPORTED_TARGET libxml-2.0)
if(LIBXML2_FOUND)
    add_executable(parse_rates ${CMAKE_CURRENT_LIST_DIR}/parse_rates.cpp)
    target_link_libraries(parse_rates PRIVATE
        sxml_flags sxml_api sxml_host EXPAT::EXPAT PkgConfig::LIBXML2)
    add_dependencies(parse_rates sxml)
    set_target_properties(parse_rates PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
else()
    message(STATUS "parse_rates is not built: libxml2 is missing")
endif()
