# wncom_add_test(NAME [LABELS label...] [LIBRARIES target...] [DEPENDS target...] SOURCES file...)
#
# A test program of GoogleTest cases; each case is a CTest test of its own, in a process and a home of its own. Sources
# named *_linux_test.cpp show what only the layer has, and are left out for Windows; so is a program without others.
# DEPENDS names modules that the tests load by path; they find them beside the program.
include(GoogleTest)

if(WIN32)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_SOURCE_DIR}/scripts/wine-run)
    set(host_sources ${CMAKE_SOURCE_DIR}/tests/support/HostWindows.cpp)
else()
    set(host_sources ${CMAKE_SOURCE_DIR}/tests/support/DeviceProcess.cpp ${CMAKE_SOURCE_DIR}/tests/support/HostLayer.cpp)
endif()
add_library(
    wncom_test_support STATIC
    ${host_sources}
    ${CMAKE_SOURCE_DIR}/tests/support/Com.cpp
    ${CMAKE_SOURCE_DIR}/tests/support/Golden.cpp
    ${CMAKE_SOURCE_DIR}/tests/support/LogCapture.cpp # linked only where it is used, for it needs the logger
    ${CMAKE_SOURCE_DIR}/tests/support/main.cpp
    ${CMAKE_SOURCE_DIR}/tests/support/TestHome.cpp
)
target_link_libraries(wncom_test_support PRIVATE wncom_options PUBLIC wncom_headers GTest::gtest GTest::gmock)

# Where the golden files lie. Not compiled in, so that a clone elsewhere compiles the same. Windows programs run under
# Wine, where drive Z is the host's root.
set(host_root $<$<PLATFORM_ID:Windows>:Z:>)
file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/bin/tests-folder CONTENT "${host_root}${CMAKE_SOURCE_DIR}/tests\n")

# A test is compiled as often as it runs: optimising it takes longer than it saves.
set(test_options $<$<CONFIG:Release>:-O0>)
# What every test includes, parsed once; without a time stamp in it, ccache finds what it compiled with the same headers.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    list(APPEND test_options "SHELL:-Xclang -fno-pch-timestamp")
endif()
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/test_headers.cpp CONTENT "int main() {}\n")
add_executable(wncom_test_headers ${CMAKE_BINARY_DIR}/test_headers.cpp)
target_link_libraries(wncom_test_headers PRIVATE wncom_options wncom_test_support)
target_compile_options(wncom_test_headers PRIVATE ${test_options})
target_precompile_headers(
    wncom_test_headers
    PRIVATE
    <gtest/gtest.h>
    <windows.h>
    <algorithm>
    <filesystem>
    <functional>
    <map>
    <memory>
    <string>
    <thread>
    <vector>
)

# The programs that the thread sanitizer runs, and what they load: those labelled "threads".
add_custom_target(threads_tests)

function(wncom_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LABELS;LIBRARIES;DEPENDS;SOURCES")
    if(WIN32)
        list(FILTER arg_SOURCES EXCLUDE REGEX "_linux_test\\.cpp$")
        if(NOT arg_SOURCES MATCHES "_test\\.cpp")
            return()
        endif()
    endif()
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE wncom_options wncom_test_support ${arg_LIBRARIES})
    target_compile_options(${name} PRIVATE ${test_options})
    target_precompile_headers(${name} REUSE_FROM wncom_test_headers)
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
