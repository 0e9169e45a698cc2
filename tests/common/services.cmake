wncom_add_test(
    string_buffer_test
    LIBRARIES wncom_services
    SOURCES string_buffer_editing_test.cpp string_buffer_model_test.cpp string_buffer_storage_test.cpp
            string_buffer_text_test.cpp
)

wncom_add_module(
    SampleComponent
    EXPORTS DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer
    SOURCES SampleComponent.cpp
)
# A module that cannot be registered.
wncom_add_module(
    SampleBareModule
    EXPORTS DllCanUnloadNow
    SOURCES SampleBareModule.cpp
)
# Copied to other names and places by the tests, so that it must not look for libraries beside itself.
add_executable(SampleServer SampleServer.cpp)
target_link_libraries(SampleServer PRIVATE wncom_options)
target_link_options(SampleServer PRIVATE $<$<BOOL:${WIN32}>:-static>)
set_target_properties(SampleServer PROPERTIES SUFFIX .exe)
wncom_add_test(
    creation_test
    LIBRARIES wncom_services
    DEPENDS SampleBareModule SampleComponent SampleServer
    SOURCES component_creation_test.cpp component_registration_test.cpp
)
# Replaces a function of the system, so it is a program of its own.
wncom_add_test(
    creation_throw_test
    LIBRARIES wncom_services
    SOURCES component_throw_linux_test.cpp
)
wncom_add_test(
    event_xml_processor_test
    LIBRARIES wncom_services wncom_fakes
    DEPENDS FakeComponents wnComponents
    SOURCES event_xml_processor_test.cpp
)
# The sanitizers have an allocator of their own, which cannot be made to fail.
if(NOT WNCOM_SANITIZE)
    wncom_add_test(
        event_xml_memory_test
        LIBRARIES wncom_services wncom_fakes
        DEPENDS FakeComponents
        SOURCES ../support/FailingAllocation.cpp event_xml_memory_linux_test.cpp
    )
endif()
add_executable(exit_client exit_client.cpp)
target_link_libraries(exit_client PRIVATE wncom_options wncom_headers)
set_target_properties(exit_client PROPERTIES SUFFIX .exe)
wncom_add_test(
    exit_test
    DEPENDS exit_client wnCOM wnComponents
    SOURCES ${CMAKE_SOURCE_DIR}/tests/platform/processes/Peer.cpp exit_test.cpp
)
