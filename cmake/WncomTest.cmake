# wncom_add_test(NAME [LABELS label...] [LIBRARIES target...] [DEPENDS target...] SOURCES file...)
#
# A test program of GoogleTest cases; each case is a CTest test of its own, in a process and a home of its own.
# DEPENDS names modules that the tests load by path; they find them beside the program.
find_package(GTest REQUIRED)
include(GoogleTest)

add_library(
    wncom_test_support STATIC
    ${CMAKE_SOURCE_DIR}/tests/support/DeviceProcess.cpp
    ${CMAKE_SOURCE_DIR}/tests/support/Com.cpp
    ${CMAKE_SOURCE_DIR}/tests/support/LogCapture.cpp # linked only where it is used, for it needs the logger
    ${CMAKE_SOURCE_DIR}/tests/support/main.cpp
    ${CMAKE_SOURCE_DIR}/tests/support/TestHome.cpp
)
target_link_libraries(wncom_test_support PRIVATE wncom_options PUBLIC wncom_headers GTest::gtest GTest::gmock)

# The programs that the thread sanitizer runs, and what they load: those labelled "threads".
add_custom_target(threads_tests)

function(wncom_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LABELS;LIBRARIES;DEPENDS;SOURCES")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE wncom_options wncom_test_support ${arg_LIBRARIES})
    if(arg_DEPENDS)
        add_dependencies(${name} ${arg_DEPENDS})
    endif()
    if("threads" IN_LIST arg_LABELS)
        add_dependencies(threads_tests ${name})
    endif()
    gtest_discover_tests(
        ${name}
        DISCOVERY_MODE PRE_TEST
        TEST_PREFIX ${name}.
        PROPERTIES TIMEOUT 120 LABELS "${arg_LABELS}"
    )
endfunction()
