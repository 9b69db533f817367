# number_bench: number conversions beside those of the COBOL runtime library. Not built where Google
# Benchmark or the runtime library's development files are missing.
find_package(benchmark QUIET)
find_library(LIBCOB_LIBRARY cob)
find_path(LIBCOB_INCLUDE libcob.h)
if(benchmark_FOUND AND LIBCOB_LIBRARY AND LIBCOB_INCLUDE)
    add_executable(number_bench ${CMAKE_CURRENT_LIST_DIR}/number_conversion.cpp)
    target_include_directories(number_bench SYSTEM PRIVATE ${LIBCOB_INCLUDE})
    target_link_libraries(number_bench PRIVATE
        sxml_flags sxml_records benchmark::benchmark ${LIBCOB_LIBRARY})
    set_target_properties(number_bench PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
else()
    message(STATUS "number_bench is not built: Google Benchmark or libcob is missing")
endif()
