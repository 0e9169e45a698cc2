# The logger and the call trace. Each module that links them has a log state of its own.
add_library(
    wncom_logging STATIC
    LogConversion.cpp
    LogFile.cpp
    LogFormat.cpp
    LogPrefix.cpp
    LogTrim.cpp
    Logging.cpp
    LoggingConfig.cpp
    LoggingDestination.cpp
    TraceScope.cpp
)
target_link_libraries(wncom_logging PRIVATE $<BUILD_INTERFACE:wncom_options> PUBLIC wncom_headers)
set_target_properties(wncom_logging PROPERTIES EXPORT_NAME logging)
add_library(wnCOM::logging ALIAS wncom_logging)
