# wncom_add_module(NAME [EXPORTS symbol...] [TYPELIB file.idl] SOURCES file...)
#
# A loadable module NAME.dll, the same file name on every host, so that catalogues, registrations and scripts read the
# same. It exports the named symbols and nothing else; TYPELIB is checked and becomes its type-library resource
# number 1.
function(wncom_add_module name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "TYPELIB" "EXPORTS;SOURCES")
    add_library(${name} MODULE ${arg_SOURCES})
    # The map below names the exports; what the compiler hides it cannot bring back.
    set_target_properties(${name} PROPERTIES PREFIX "" SUFFIX ".dll" CXX_VISIBILITY_PRESET default)
    target_link_libraries(${name} PRIVATE wncom_options wncom_headers)

    list(JOIN arg_EXPORTS ";\n        " symbols)
    set(map ${CMAKE_CURRENT_BINARY_DIR}/${name}.map)
    if(arg_EXPORTS)
        file(CONFIGURE OUTPUT ${map} CONTENT "{\n    global:\n        ${symbols};\n    local:\n        *;\n};\n")
    else()
        file(CONFIGURE OUTPUT ${map} CONTENT "{\n    local:\n        *;\n};\n")
    endif()
    target_link_options(${name} PRIVATE -Wl,--version-script=${map})
    set_target_properties(${name} PROPERTIES LINK_DEPENDS ${map})
    target_sources(${name} PRIVATE $<TARGET_OBJECTS:wnplatform_module_start>)

    if(arg_TYPELIB)
        get_filename_component(idl ${arg_TYPELIB} ABSOLUTE)
        set(checked ${CMAKE_CURRENT_BINARY_DIR}/${name}.typelib)
        set(resource ${CMAKE_CURRENT_BINARY_DIR}/${name}.typelib.S)
        add_custom_command(
            OUTPUT ${checked}
            COMMAND wnidl ${idl} ${checked}
            DEPENDS wnidl ${idl}
            COMMENT "Checking type library ${arg_TYPELIB}"
        )
        file(
            CONFIGURE
            OUTPUT ${resource}
            CONTENT
                ".section .wnres.TYPELIB.1,\"a\"\n.incbin \"${checked}\"\n.section .note.GNU-stack,\"\",%progbits\n"
        )
        set_source_files_properties(${resource} PROPERTIES OBJECT_DEPENDS ${checked})
        target_sources(${name} PRIVATE ${resource})
    endif()
endfunction()
