# Tests of type libraries and variants.

# The agent's own library in a module that holds nothing else, and one made for invoking.
wncom_add_module(platform_typelib TYPELIB ${CMAKE_SOURCE_DIR}/agent/wnCOM.idl EXPORTS Answer
                 SOURCES typelib/typelib_only.cpp)
wncom_add_module(platform_invoke TYPELIB typelib/invoke.idl EXPORTS Answer SOURCES typelib/typelib_only.cpp)

wncom_add_test(
    platform_typelib_test
    DEPENDS platform_typelib platform_invoke
    SOURCES typelib/typelib_contract_test.cpp
            typelib/typelib_invoke_test.cpp
            typelib/typelib_registration_test.cpp
            typelib/typelib_text.cpp
            typelib/variant_test.cpp
)
if(NOT WIN32)
    target_sources(
        platform_typelib_test PRIVATE typelib/typelib_files_linux_test.cpp typelib/typelib_idl_linux_test.cpp
    )
    target_link_libraries(platform_typelib_test PRIVATE wnidl_reader)
    add_dependencies(platform_typelib_test wnidl)
    target_compile_definitions(platform_typelib_test PRIVATE WNCOM_AGENT_IDL="${CMAKE_SOURCE_DIR}/agent/wnCOM.idl")
endif()
