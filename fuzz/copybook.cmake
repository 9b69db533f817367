# The compiler's front is built into the target itself, so that it is instrumented, too.
file(GLOB copybook_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/host/records/source/*.cpp)
sxml_fuzz(copybook_fuzz SOURCES copybook_fuzz.cpp ${copybook_sources})
