# Files, mutexes, processes and time.
target_sources(
    wnplatform
    PRIVATE src/command_line.cpp
            src/date_pictures.cpp
            src/debug_output.cpp
            src/file_io.cpp
            src/file_object.cpp
            src/file_locks.cpp
            src/file_names.cpp
            src/files.cpp
            src/find_files.cpp
            src/full_paths.cpp
            src/handles.cpp
            src/ini_files.cpp
            src/ini_text.cpp
            src/mutex_files.cpp
            src/mutex_memory.cpp
            src/mutexes.cpp
            src/process_object.cpp
            src/process_start.cpp
            src/processes.cpp
            src/security.cpp
            src/shared_mutex.cpp
            src/time.cpp
            src/wildcards.cpp
            src/writing.cpp
)
