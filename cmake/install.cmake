# What `cmake --install` puts where. All files are found relative to the host library or the command, so the installed
# tree can be moved as a whole.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(sxml_modules ${CMAKE_INSTALL_LIBDIR}/sxml)  # what is loaded, never linked
set(sxml_share ${CMAKE_INSTALL_DATADIR}/sxml)

set(sxml_linked_libraries sxml_host sxml_cob sxml_records_api)
set_target_properties(${sxml_linked_libraries} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} INSTALL_RPATH "$ORIGIN")
set_target_properties(sxml PROPERTIES INSTALL_RPATH "$ORIGIN/..")
file(RELATIVE_PATH to_libraries /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
set_target_properties(sxml_command PROPERTIES INSTALL_RPATH "$ORIGIN/${to_libraries}")

install(TARGETS sxml_command RUNTIME)
install(TARGETS ${sxml_linked_libraries} LIBRARY)
install(TARGETS sxml_api ARCHIVE)
install(TARGETS sxml LIBRARY DESTINATION ${sxml_modules})

# Headers: for programs; those in host/ for authors of other hosts.
install(DIRECTORY include/sxml DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} PATTERN sxml_cob.h EXCLUDE)
install(DIRECTORY host DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/sxml
    FILES_MATCHING PATTERN "*.h" PATTERN runtime EXCLUDE)
install(FILES include/sxml/sxml_cob.h DESTINATION ${sxml_modules})  # for cobc

# pkg-config and CMake packages, which name everything by paths relative to their own.
file(RELATIVE_PATH from_pkgconfig /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
file(RELATIVE_PATH from_cmake /${CMAKE_INSTALL_LIBDIR}/cmake/sxml /)
foreach(package sxml-api sxml-records)
    configure_file(cmake/${package}.pc.in ${CMAKE_BINARY_DIR}/packages/${package}.pc @ONLY)
    install(FILES ${CMAKE_BINARY_DIR}/packages/${package}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
configure_file(cmake/sxml-config.cmake.in ${CMAKE_BINARY_DIR}/packages/sxml-config.cmake @ONLY)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/packages/sxml-config-version.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/packages/sxml-config.cmake
    ${CMAKE_BINARY_DIR}/packages/sxml-config-version.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/sxml)

# For Python, whose version does not matter. Debian looks here by itself, others by PYTHONPATH.
install(DIRECTORY python/sxml DESTINATION lib/python3/dist-packages PATTERN __pycache__ EXCLUDE)

# Samples and pages.
install(DIRECTORY examples DESTINATION ${sxml_share})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES README.md CHANGELOG.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})

# What examples/demo.sh and demo_cobol.sh need.
add_custom_target(demo DEPENDS sxml_command sxml sxml_host sxml_cob)

# Everything that is installed, for users who do not need the tests.
add_custom_target(product DEPENDS sxml_command sxml sxml_api ${sxml_linked_libraries})
if(TARGET manual)
    add_dependencies(product manual)
endif()
