find_package(nlohmann_json REQUIRED)
wncom_add_test(
    wn_test
    LIBRARIES
    nlohmann_json::nlohmann_json
    PkgConfig::CPP_HTTPLIB
    DEPENDS
    wn
    wndevice
    wnCOM
    wnComponents
    wnHttpTransport
    SOURCES
    WnProcess.cpp
    wn_transcripts_linux_test.cpp
    wn_watch_linux_test.cpp
)
target_compile_definitions(
    wn_test PRIVATE WNCOM_SAMPLES="${CMAKE_SOURCE_DIR}/samples"
                    WNCOM_TRANSCRIPTS="${CMAKE_CURRENT_SOURCE_DIR}/transcripts"
)
