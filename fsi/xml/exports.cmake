# Makes from the list of ordinals what the linkers need, in the build directory:
#   ordinals.ld   the symbols ordinal_N, each another name of its function (ELF)
#   exports.map   hides every other symbol but the module's one named entry (ELF)
#   sxml.def      exports by number without names (Windows)
set(ordinals_list ${CMAKE_SOURCE_DIR}/include/sxml/ordinals.def)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${ordinals_list})

file(STRINGS ${ordinals_list} ordinal_lines REGEX "^XML_ORDINAL\\(")
set(ordinal_symbols "")
set(def_exports "")
foreach(line IN LISTS ordinal_lines)
    if(NOT line MATCHES "^XML_ORDINAL\\(([0-9]+), ([a-zA-Z0-9_]+), ")
        message(FATAL_ERROR "${ordinals_list}: not \"XML_ORDINAL(number, name, ...\": ${line}")
    endif()
    string(APPEND ordinal_symbols "ordinal_${CMAKE_MATCH_1} = ${CMAKE_MATCH_2};\n")
    string(APPEND def_exports "    ${CMAKE_MATCH_2} @${CMAKE_MATCH_1} NONAME\n")
endforeach()

set(generated ${CMAKE_CURRENT_BINARY_DIR})
file(CONFIGURE OUTPUT ${generated}/ordinals.ld CONTENT "${ordinal_symbols}")
file(CONFIGURE OUTPUT ${generated}/exports.map CONTENT
    "{\n    global:\n        GetDispatchTable;\n        ordinal_*;\n    local:\n        *;\n};\n")
file(CONFIGURE OUTPUT ${generated}/sxml.def CONTENT
    "LIBRARY sxml.dll\nEXPORTS\n    GetDispatchTable @100\n${def_exports}")

if(WIN32)
    target_sources(sxml PRIVATE ${generated}/sxml.def)
else()
    target_link_options(sxml PRIVATE
        ${generated}/ordinals.ld -Wl,--version-script=${generated}/exports.map)
endif()
set_property(TARGET sxml APPEND PROPERTY LINK_DEPENDS
    ${generated}/ordinals.ld ${generated}/exports.map)
