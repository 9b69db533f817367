# Flags that every target of this project is built with.
add_library(sxml_flags INTERFACE)
target_compile_options(sxml_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
# GCC 12 sees overlapping copies in "literal" + std::string, where there are none.
target_compile_options(sxml_flags INTERFACE
    $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:GNU>>:-Wno-restrict>)
target_include_directories(sxml_flags INTERFACE ${CMAKE_SOURCE_DIR})
if(SXML_SANITIZE)
    target_compile_options(sxml_flags INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(sxml_flags INTERFACE -fsanitize=address,undefined)
endif()
if(SXML_FUZZ)
    target_compile_options(sxml_flags INTERFACE -fsanitize=fuzzer-no-link,address,undefined
        -fno-sanitize=vptr)
endif()
