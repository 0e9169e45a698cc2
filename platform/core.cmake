# The core of the layer: its home and paths, errors, texts, the registry, COM and modules.
find_package(Threads REQUIRED)
target_link_libraries(wnplatform PRIVATE Threads::Threads)
target_sources(
    wnplatform
    PRIVATE com/Bstr.cpp
            text/CRuntimeText.cpp
            text/CaseFold.cpp
            com/ClassServers.cpp
            text/CodePage1252.cpp
            text/CodePages.cpp
            com/Com.cpp
            com/ErrorInfo.cpp
            core/ErrorTexts.cpp
            core/Errors.cpp
            com/GuidText.cpp
            com/Guids.cpp
            core/Home.cpp
            core/HomeLock.cpp
            processes/ModuleFiles.cpp
            processes/Modules.cpp
            files/Paths.cpp
            core/Trust.cpp
            com/RandomGuids.cpp
            registry/Registry.cpp
            registry/RegistryApiKeys.cpp
            registry/RegistryApiValues.cpp
            registry/RegistryFile.cpp
            registry/RegistryFormat.cpp
            registry/RegistryHandles.cpp
            registry/RegistryKeys.cpp
            registry/RegistryOutput.cpp
            registry/RegistryParser.cpp
            registry/RegistryStore.cpp
            text/Utf8.cpp
            text/Utf8Runs.cpp
)
