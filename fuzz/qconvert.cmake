# The sources themselves, so that they are instrumented.
file(GLOB number_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/host/records/numbers/*.cpp)
sxml_fuzz(qconvert_fuzz SOURCES ${CMAKE_CURRENT_LIST_DIR}/qconvert_fuzz.cpp ${number_sources})
