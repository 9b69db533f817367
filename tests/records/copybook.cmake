sxml_test(copybook_test
    SOURCES copybook_test.cpp copybook_clauses_test.cpp copybook_text_test.cpp compile_text.cpp
            tree_dump.cpp
    LIBRARIES sxml_records)
