# Tests of files, mutexes, processes and time.

# The other process of the tests that need one.
add_executable(platform_peer processes/PeerProgram.cpp)
target_link_libraries(platform_peer PRIVATE wncom_options wncom_headers)
set_target_properties(platform_peer PROPERTIES SUFFIX ".exe")

wncom_add_test(
    platform_files_test
    LABELS threads
    DEPENDS platform_peer
    SOURCES core/handles_test.cpp
            core/time_test.cpp
            files/file_locks_test.cpp
            files/files_test.cpp
            files/ini_files_test.cpp
            processes/Peer.cpp
            processes/debug_output_test.cpp
            processes/processes_test.cpp
            sync/mutexes_test.cpp
            sync/security_test.cpp
            sync/threads_test.cpp
            text/date_pictures_test.cpp
)
if(NOT WIN32)
    target_sources(
        platform_files_test
        PRIVATE core/time_linux_test.cpp
                core/trust_linux_test.cpp
                files/files_linux_test.cpp
                files/ini_files_linux_test.cpp
                processes/debug_output_linux_test.cpp
                processes/processes_linux_test.cpp
                sync/mutexes_linux_test.cpp
    )
endif()
