# Where the large headers of libraries are included (CLI11, JSON, libcob), release builds compile several sources as
# one, which takes a fourth of the time. Debug builds compile each by itself, so that what a source needs and does not
# include is found there. Two sources of one target that have a name for themselves, each in its unnamed namespace,
# cannot be compiled as one: give one of them another name, or name it below.
option(SXML_UNITY_BUILD "Compile several sources as one" OFF)
if(NOT SXML_UNITY_BUILD)
    return()
endif()
set_target_properties(sxml_command sxml_cob sxml_records_api PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 10)
set(compiled_alone jobs/part_result.cpp jobs/to_xml_parts.cpp main.cpp)
list(TRANSFORM compiled_alone PREPEND ${CMAKE_SOURCE_DIR}/tools/sxml/)
set_source_files_properties(${compiled_alone} TARGET_DIRECTORY sxml_command
    PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
