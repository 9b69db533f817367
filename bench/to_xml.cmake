# What bench/to_xml.sh compares the command with.
foreach(program make_records to_xml_snprintf to_xml_buffer)
    add_executable(${program} ${CMAKE_CURRENT_LIST_DIR}/${program}.c)
    target_link_libraries(${program} PRIVATE sxml_flags)
    set_target_properties(${program} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench C_EXTENSIONS ON)
endforeach()
