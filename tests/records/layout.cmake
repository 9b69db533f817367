sxml_test(layout_test
    SOURCES compile_test.cpp conditions_test.cpp description_file_test.cpp cobc_layout_test.cpp
            cobc_conditions_test.cpp cobc_program.cpp
            layout_fixture.cpp
    LIBRARIES sxml_records)
