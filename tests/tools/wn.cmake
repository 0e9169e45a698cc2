find_package(nlohmann_json REQUIRED)
wncom_add_test(
    wn_test
    LIBRARIES
    nlohmann_json::nlohmann_json
    DEPENDS
    wn
    wndevice
    wnCOM
    wnComponents
    wnHttpTransport
    SOURCES
    WnProcess.cpp
    wn_settings_test.cpp
    wn_submit_test.cpp
    wn_wrong_input_test.cpp
)
