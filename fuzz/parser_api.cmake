sxml_fuzz(parser_api_fuzz SOURCES ${CMAKE_CURRENT_LIST_DIR}/parser_api_fuzz.cpp LIBRARIES sxml_api sxml_host)
# The module is loaded, so its code reports coverage and errors to the target's runtime.
target_compile_definitions(parser_api_fuzz PRIVATE SXML_MODULE="$<TARGET_FILE:sxml>")
set_target_properties(parser_api_fuzz PROPERTIES ENABLE_EXPORTS ON)
add_dependencies(parser_api_fuzz sxml)
target_compile_options(sxml PRIVATE -fsanitize=fuzzer-no-link,address,undefined
    -fno-sanitize=vptr)
# That runtime's functions are undefined in the module until it is loaded.
get_target_property(module_link_options sxml LINK_OPTIONS)
list(REMOVE_ITEM module_link_options -Wl,-z,defs)
set_target_properties(sxml PROPERTIES LINK_OPTIONS "${module_link_options}")
