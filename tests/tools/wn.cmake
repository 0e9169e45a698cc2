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
    wn_capabilities_test.cpp
    wn_config_test.cpp
    wn_data_test.cpp
    wn_events_test.cpp
    wn_settings_test.cpp
    wn_submit_test.cpp
    wn_watch_linux_test.cpp
    wn_watch_test.cpp
    wn_wrong_input_test.cpp
)
target_compile_definitions(wn_test PRIVATE WNCOM_SAMPLES="${CMAKE_SOURCE_DIR}/samples")
