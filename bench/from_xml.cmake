# What bench/from_xml.sh compares the command with. from_xml_libxml2 is not built where libxml2's
# development files are missing.
pkg_check_modules(LIBXML2 IMPORTED_TARGET libxml-2.0)
set(from_xml_programs from_xml_expat)
if(LIBXML2_FOUND)
    list(APPEND from_xml_programs from_xml_libxml2)
else()
    message(STATUS "from_xml_libxml2 is not built: libxml2 is missing")
endif()
foreach(program ${from_xml_programs})
    add_executable(${program} ${CMAKE_CURRENT_LIST_DIR}/${program}.c)
    target_link_libraries(${program} PRIVATE sxml_flags)
    set_target_properties(${program} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench C_EXTENSIONS ON)
endforeach()
target_link_libraries(from_xml_expat PRIVATE EXPAT::EXPAT)
if(LIBXML2_FOUND)
    target_link_libraries(from_xml_libxml2 PRIVATE PkgConfig::LIBXML2)
endif()
