# A Debian package and an archive of what is installed: ./dev package.
set(CPACK_PACKAGE_NAME sxml)
set(CPACK_PACKAGE_VENDOR "The sxml authors")
# Who makes the package answers for it: as Debian's tools have it, or as git does.
if(DEFINED ENV{DEBEMAIL})
    set(maintainer_name "$ENV{DEBFULLNAME}")
    set(maintainer_address "$ENV{DEBEMAIL}")
else()
    foreach(key name email)
        execute_process(COMMAND git config user.${key} WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
            OUTPUT_VARIABLE git_${key} OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    endforeach()
    set(maintainer_name "${git_name}")
    set(maintainer_address "${git_email}")
endif()
if("${maintainer_address}" STREQUAL "")
    cmake_host_system_information(RESULT host QUERY FQDN)
    set(maintainer_address "nobody@${host}")
endif()
set(SXML_MAINTAINER "${maintainer_name} <${maintainer_address}>" CACHE STRING "Maintainer of the package: NAME <ADDRESS>")
set(CPACK_PACKAGE_CONTACT "${SXML_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "XML documents as record files for COBOL programs")
set(CPACK_PACKAGE_DESCRIPTION
    "Turns the record files of COBOL programs into XML documents and back\n"
    "by the programs' own copybooks. Programs compiled with GnuCOBOL read and\n"
    "write documents as files, programs in C and Python read and write the\n"
    "records of both.")
string(CONCAT CPACK_PACKAGE_DESCRIPTION ${CPACK_PACKAGE_DESCRIPTION})
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)
set(CPACK_RESOURCE_FILE_LICENSE ${CMAKE_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/cmake/debian_files.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
# Loaded when they are needed, which the tools of Debian cannot see.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libcurl4 | libcurl4t64 | libcurl3-gnutls, gnucobol3 | gnucobol4")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "python3, pkg-config")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
file(WRITE ${CMAKE_BINARY_DIR}/packages/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_BINARY_DIR}/packages/triggers)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PACKAGE_FILE_NAME sxml-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR})
string(TOLOWER "${CPACK_PACKAGE_FILE_NAME}" CPACK_PACKAGE_FILE_NAME)
include(CPack)
