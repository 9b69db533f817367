# Expat, and which of its newer functions its header declares. Debian backports some of them, so the version does not
# tell.
include(CheckSymbolExists)
find_package(EXPAT REQUIRED)
set(CMAKE_REQUIRED_LIBRARIES EXPAT::EXPAT)
foreach(function XML_GetCurrentByteIndex64 XML_GetCurrentLineNumber64
        XML_GetCurrentByteCount64 XML_GetInputContext64 XML_SetReparseDeferralEnabled)
    check_symbol_exists(${function} expat.h SXML_HAS_${function})
    if(SXML_HAS_${function})
        set_property(TARGET EXPAT::EXPAT APPEND PROPERTY
            INTERFACE_COMPILE_DEFINITIONS SXML_HAS_${function})
    endif()
endforeach()
unset(CMAKE_REQUIRED_LIBRARIES)
