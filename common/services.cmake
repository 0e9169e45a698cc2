# What the layers above rest on beside the log: the wide string buffer, the creation of components, and the reader of
# subscription documents.
add_library(
    wncom_services STATIC CPWStringBuffer.cpp ComponentCreation.cpp ComponentRegistration.cpp EventXMLProcessor.cpp
)
target_link_libraries(wncom_services PUBLIC wncom_logging wncom_headers PRIVATE wncom_options)
