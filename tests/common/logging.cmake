wncom_add_test(
    logging_test
    LIBRARIES wncom_logging
    SOURCES
        LogFixture.cpp
        logging_config_test.cpp
        logging_file_test.cpp
        logging_format_test.cpp
        logging_processes_linux_test.cpp
        logging_test.cpp
        trace_scope_test.cpp
)
# What the thread sanitizer runs.
wncom_add_test(
    logging_threads_test
    LABELS threads
    LIBRARIES wncom_logging
    SOURCES LogFixture.cpp logging_threads_test.cpp
)
