# What bench/to_xml.sh compares the command with. to_xml_libxml2 is not built where libxml2's
# development files are missing.
foreach(program make_records to_xml_snprintf to_xml_buffer)
    add_executable(${program} ${CMAKE_CURRENT_LIST_DIR}/${program}.c)
    target_link_libraries(${program} PRIVATE sxml_flags)
    set_target_properties(${program} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench C_EXTENSIONS ON)
endforeach()
pkg_check_modules(LIBXML2 IMPORTED_TARGET libxml-2.0)
if(LIBXML2_FOUND)
    add_executable(to_xml_libxml2 ${CMAKE_CURRENT_LIST_DIR}/to_xml_libxml2.c)
    target_link_libraries(to_xml_libxml2 PRIVATE sxml_flags PkgConfig::LIBXML2)
    set_target_properties(to_xml_libxml2 PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench C_EXTENSIONS ON)
else()
    message(STATUS "to_xml_libxml2 is not built: libxml2 is missing")
endif()
