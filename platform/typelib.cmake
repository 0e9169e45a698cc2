# Type libraries: what they tell and dispatch at run time, and the tool that makes them. Variants too.
target_sources(
    wnplatform
    PRIVATE typelib/Argument.cpp
            typelib/FuncDesc.cpp
            typelib/Invoke.cpp
            typelib/Loading.cpp
            typelib/Members.cpp
            typelib/Registration.cpp
            typelib/Resource.cpp
            typelib/Tables.cpp
            typelib/Texts.cpp
            typelib/TypeInfo.cpp
            typelib/TypeLib.cpp
            typelib/Variant.cpp
)

# Reads descriptions and writes tables; made without the layer, so that it runs before the layer exists.
add_library(
    wnidl_reader STATIC EXCLUDE_FROM_ALL
    com/GuidText.cpp
    typelib/Tables.cpp
    typelib/idl/Description.cpp
    typelib/idl/Lexer.cpp
    typelib/idl/Parser.cpp
    typelib/idl/ParserAttributes.cpp
    typelib/idl/ParserMethods.cpp
)
target_include_directories(wnidl_reader PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/include ${CMAKE_SOURCE_DIR})
target_link_libraries(wnidl_reader PRIVATE wncom_options)
add_executable(wnidl typelib/idl/wnidl.cpp)
target_link_libraries(wnidl PRIVATE wncom_options wnidl_reader)
