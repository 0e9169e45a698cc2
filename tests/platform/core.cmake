# Tests of the core: texts, errors, paths, the registry, COM and modules.

# The modules that the tests load and the classes in them.
wncom_add_module(
    platform_server
    EXPORTS DllGetClassObject DllCanUnloadNow Answer DuringCreation
    SOURCES modules/server.cpp
)
wncom_add_module(platform_refusing EXPORTS Answer SOURCES modules/refusing.cpp)
wncom_add_module(platform_no_server EXPORTS Answer SOURCES modules/no_server.cpp)

wncom_add_test(
    platform_core_test
    LABELS threads
    DEPENDS platform_server platform_refusing platform_no_server
    SOURCES com/bstr_test.cpp
            com/com_test.cpp
            com/error_info_test.cpp
            core/errors_test.cpp
            processes/modules_test.cpp
            registry/registry_test.cpp
            text/code_pages_test.cpp
            text/runtime_text_test.cpp
)
if(NOT WIN32)
    # On Windows an exception that leaves a module's start ends the process.
    wncom_add_module(platform_throwing EXPORTS Answer SOURCES modules/throwing.cpp)
    add_dependencies(platform_core_test platform_throwing)
    target_sources(
        platform_core_test
        PRIVATE com/com_linux_test.cpp
                core/errors_linux_test.cpp
                files/paths_linux_test.cpp
                processes/modules_linux_test.cpp
                registry/registry_file_linux_test.cpp
    )
    target_compile_definitions(
        platform_core_test PRIVATE WNCOM_STATUS_HEADER="${CMAKE_SOURCE_DIR}/platform/include/winerror.h"
    )

    wncom_add_test(platform_registry_processes_test SOURCES registry/registry_processes_linux_test.cpp)
endif()
