# The libraries around the product, for Windows: Debian has them as sources (scripts/sources-windows.txt) or as headers that serve every host.
set(WNCOM_WINDOWS_SOURCES ${CMAKE_SOURCE_DIR}/build/windows-sources CACHE PATH "The unpacked sources")
if(NOT EXISTS ${WNCOM_WINDOWS_SOURCES}/done)
    message(FATAL_ERROR "No library sources in ${WNCOM_WINDOWS_SOURCES}: scripts/package windows and scripts/test windows unpack them")
endif()

add_library(wncom_pugixml STATIC ${WNCOM_WINDOWS_SOURCES}/pugixml/src/pugixml.cpp)
target_include_directories(wncom_pugixml SYSTEM PUBLIC ${WNCOM_WINDOWS_SOURCES}/pugixml/src)
add_library(pugixml::pugixml ALIAS wncom_pugixml)

add_library(wncom_sqlite STATIC ${WNCOM_WINDOWS_SOURCES}/sqlite3/sqlite3.c)
target_include_directories(wncom_sqlite SYSTEM PUBLIC ${WNCOM_WINDOWS_SOURCES}/sqlite3)
target_compile_definitions(wncom_sqlite PRIVATE SQLITE_OMIT_LOAD_EXTENSION)
add_library(SQLite::SQLite3 ALIAS wncom_sqlite)

# The configuration is written by hand: the one that comes with it asks the host.
set(expat ${WNCOM_WINDOWS_SOURCES}/expat/expat/lib)
file(
    CONFIGURE
    OUTPUT ${CMAKE_BINARY_DIR}/windows/expat/expat_config.h
    CONTENT "#define BYTEORDER 1234\n#define XML_CONTEXT_BYTES 1024\n#define XML_DTD 1\n#define XML_NS 1\n"
)
add_library(wncom_expat STATIC ${expat}/xmlparse.c ${expat}/xmlrole.c ${expat}/xmltok.c)
target_include_directories(wncom_expat SYSTEM PUBLIC ${expat} PRIVATE ${CMAKE_BINARY_DIR}/windows/expat)
target_compile_definitions(wncom_expat PUBLIC XML_STATIC)
add_library(EXPAT::EXPAT ALIAS wncom_expat)

# Headers of the host, without the host's other headers.
foreach(library CLI nlohmann)
    if(NOT EXISTS /usr/include/${library})
        message(FATAL_ERROR "No headers in /usr/include/${library}")
    endif()
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/windows/include)
    file(CREATE_LINK /usr/include/${library} ${CMAKE_BINARY_DIR}/windows/include/${library} SYMBOLIC)
endforeach()
add_library(wncom_header_libraries INTERFACE)
target_include_directories(wncom_header_libraries SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/windows/include)
add_library(CLI11::CLI11 ALIAS wncom_header_libraries)
add_library(nlohmann_json::nlohmann_json ALIAS wncom_header_libraries)

if(WNCOM_TESTS)
    set(INSTALL_GTEST OFF CACHE BOOL "")
    add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
endif()
