# What every target of the tree is compiled with (wncom_options), and the include paths that product code sees
# (wncom_headers): the public headers, the tree itself, and on hosts without Windows the layer that stands in for it.

set(WNCOM_SANITIZE "" CACHE STRING "Sanitizers to build with, as for -fsanitize=")

add_library(wncom_options INTERFACE)
target_compile_options(
    wncom_options
    INTERFACE -Wall
              -Wextra
              -Wpedantic
              -Wconversion
              -Wshadow
              -Woverloaded-virtual
              -Wundef
              -Werror
)
if(NOT WIN32)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # A unique symbol would pin its module in the process for good.
        target_compile_options(wncom_options INTERFACE -fno-gnu-unique -Wsuggest-override)
    endif()
    # clang leaves its sanitizers' functions to the program.
    if(NOT (WNCOM_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang"))
        target_link_options(wncom_options INTERFACE -Wl,--no-undefined)
    endif()
else()
    # Windows' own prototypes cast functions to and from FARPROC.
    target_compile_options(wncom_options INTERFACE -Wno-cast-function-type)
    target_link_options(wncom_options INTERFACE -static-libstdc++ -shared-libgcc)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # At its highest optimisation gcc 12 sees copies onto themselves in any sum of texts.
    target_compile_options(wncom_options INTERFACE $<$<CONFIG:Release>:-Wno-restrict>)
endif()
if(WNCOM_SANITIZE)
    target_compile_options(
        wncom_options INTERFACE -fsanitize=${WNCOM_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all
    )
    target_link_options(wncom_options INTERFACE -fsanitize=${WNCOM_SANITIZE})
endif()

add_library(wncom_headers INTERFACE)
target_include_directories(
    wncom_headers
    INTERFACE $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/include> $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}>
)
target_compile_features(wncom_headers INTERFACE cxx_std_20)
if(WIN32)
    target_link_libraries(wncom_headers INTERFACE ole32 oleaut32 uuid advapi32)
else()
    target_link_libraries(wncom_headers INTERFACE wnplatform)
endif()
set_target_properties(wncom_headers PROPERTIES EXPORT_NAME headers)
