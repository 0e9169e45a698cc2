# Files, mutexes, processes and time.
target_sources(
    wnplatform
    PRIVATE processes/CommandLine.cpp
            text/DatePictures.cpp
            processes/DebugOutput.cpp
            files/FileIo.cpp
            files/FileObject.cpp
            files/FileLocks.cpp
            files/FileNames.cpp
            files/Files.cpp
            files/FindFiles.cpp
            files/FullPaths.cpp
            core/Handles.cpp
            files/IniFiles.cpp
            files/IniText.cpp
            files/Reading.cpp
            sync/MutexFiles.cpp
            sync/MutexMemory.cpp
            sync/Mutexes.cpp
            processes/ProcessObject.cpp
            processes/ProcessStart.cpp
            processes/Processes.cpp
            sync/Security.cpp
            sync/SharedMutex.cpp
            core/Time.cpp
            files/Writing.cpp
)
