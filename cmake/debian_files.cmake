# Run by CPack between installing and packing. What Debian also requires: compressed manual pages and
# changelog, and the licences in a file of its own.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
    return()
endif()
set(tree ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
file(GLOB pages ${tree}/man/man*/*.[1-9])
file(COPY_FILE ${tree}/doc/sxml/CHANGELOG.md ${tree}/doc/sxml/changelog)
foreach(file ${pages} ${tree}/doc/sxml/changelog)
    execute_process(COMMAND gzip -9nf ${file} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
file(RENAME ${tree}/doc/sxml/LICENSE ${tree}/doc/sxml/copyright)
