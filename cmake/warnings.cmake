# Flags that every target of this project is built with.
add_library(sxml_flags INTERFACE)
target_compile_options(sxml_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
target_include_directories(sxml_flags INTERFACE ${CMAKE_SOURCE_DIR})
if(SXML_SANITIZE)
    target_compile_options(sxml_flags INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(sxml_flags INTERFACE -fsanitize=address,undefined)
endif()
