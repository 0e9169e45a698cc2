# The type library: descriptions, what they tell and dispatch at run time, and the tool that checks them. Variants too.
set(description_sources
    typelib/Canonical.cpp
    typelib/Checker.cpp
    typelib/Lexer.cpp
    typelib/Parser.cpp
    typelib/ParserAttributes.cpp
    typelib/Description.cpp
)
target_sources(
    wnplatform
    PRIVATE ${description_sources}
            typelib/Argument.cpp
            typelib/FuncDesc.cpp
            typelib/Invoke.cpp
            typelib/TypeInfo.cpp
            typelib/TypeLib.cpp
            typelib/Loaded.cpp
            typelib/Loading.cpp
            typelib/Members.cpp
            typelib/Registration.cpp
            typelib/RegistryKey.cpp
            typelib/Resource.cpp
            typelib/Texts.cpp
            typelib/Variant.cpp
            typelib/VariantConvert.cpp
            typelib/VariantTypes.cpp
)

# Built from the description's own sources alone, so that it runs before the layer exists.
add_executable(wnidl typelib/wnidl.cpp com/GuidText.cpp ${description_sources})
target_include_directories(wnidl PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/include ${CMAKE_SOURCE_DIR})
target_link_libraries(wnidl PRIVATE wncom_options)
