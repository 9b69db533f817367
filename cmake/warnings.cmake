# Flags that every target of this project is built with.
add_library(sxml_flags INTERFACE)
target_compile_options(sxml_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${SXML_WARNINGS_AS_ERRORS}>:-Werror>)
# GCC 12 sees overlapping copies in "literal" + std::string, where there are none.
target_compile_options(sxml_flags INTERFACE
    $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:GNU>>:-Wno-restrict>)
target_include_directories(sxml_flags INTERFACE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/include)
if(SXML_SANITIZE)
    target_compile_options(sxml_flags INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(sxml_flags INTERFACE -fsanitize=address,undefined)
endif()
if(SXML_FUZZ)
    target_compile_options(sxml_flags INTERFACE -fsanitize=fuzzer-no-link,address,undefined
        -fno-sanitize=vptr)
endif()

# Optimization across the files of a target, in release builds. The flags are spelled out because
# those that CMake would add make clang-tidy stumble.
add_library(sxml_across_files INTERFACE)
set(across_files $<$<AND:$<CONFIG:Release>,$<CXX_COMPILER_ID:GNU>,$<NOT:$<BOOL:${WIN32}>>>:-flto=auto>)
target_compile_options(sxml_across_files INTERFACE ${across_files})
target_link_options(sxml_across_files INTERFACE ${across_files})

# Of the sources of `target`, those that match `pattern`, and not `except`, run once a run or once a layout: they are
# compiled to small code, which also takes less time. To be called where the target is added.
function(sxml_make_small target pattern except)
    get_target_property(sources ${target} SOURCES)
    list(FILTER sources INCLUDE REGEX ${pattern})
    list(FILTER sources EXCLUDE REGEX ${except})
    set_source_files_properties(${sources} PROPERTIES COMPILE_OPTIONS $<$<CONFIG:Release>:-Os>)
endfunction()
