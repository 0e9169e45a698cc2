# Tests of files, mutexes, processes and time.

# The other process of the tests that need one.
add_executable(platform_peer peer.cpp)
target_link_libraries(platform_peer PRIVATE wncom_options wncom_headers)
set_target_properties(platform_peer PROPERTIES SUFFIX ".exe")

wncom_add_test(
    platform_files_test
    LABELS threads
    DEPENDS platform_peer
    SOURCES Peer.cpp
            debug_output_test.cpp
            file_locks_test.cpp
            files_test.cpp
            find_files_test.cpp
            handles_test.cpp
            ini_files_test.cpp
            mutexes_test.cpp
            processes_test.cpp
            security_test.cpp
            threads_test.cpp
            time_test.cpp
)
if(NOT WIN32)
    target_sources(
        platform_files_test
        PRIVATE debug_output_linux_test.cpp files_linux_test.cpp ini_files_linux_test.cpp mutexes_linux_test.cpp
                processes_linux_test.cpp time_linux_test.cpp
    )
endif()
