# The core of the layer: its home and paths, errors, texts, the registry, COM and modules.
find_package(Threads REQUIRED)
target_link_libraries(wnplatform PRIVATE Threads::Threads)
target_sources(
    wnplatform
    PRIVATE src/bstr.cpp
            src/c_runtime_text.cpp
            src/case_fold.cpp
            src/class_servers.cpp
            src/code_page_1252.cpp
            src/code_pages.cpp
            src/com.cpp
            src/critical_sections.cpp
            src/error_texts.cpp
            src/errors.cpp
            src/guid_text.cpp
            src/guids.cpp
            src/home.cpp
            src/module_files.cpp
            src/modules.cpp
            src/paths.cpp
            src/random_guids.cpp
            src/registry.cpp
            src/registry_api_keys.cpp
            src/registry_api_values.cpp
            src/registry_file.cpp
            src/registry_handles.cpp
            src/registry_keys.cpp
            src/registry_output.cpp
            src/registry_store.cpp
            src/utf8.cpp
            src/utf8_runs.cpp
)
