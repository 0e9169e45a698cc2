# The type library of a module on hosts without Windows: the checked description lies in a section of the name that the
# layer looks resources up by.
function(wncom_layer_typelib name typelib)
    set(checked ${CMAKE_CURRENT_BINARY_DIR}/${name}.typelib)
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/${name}.typelib.S)
    add_custom_command(
        OUTPUT ${checked}
        COMMAND wnidl ${typelib} ${checked}
        DEPENDS wnidl ${typelib}
        COMMENT "Checking type library ${typelib}"
    )
    file(
        CONFIGURE
        OUTPUT ${resource}
        CONTENT
            ".section .wnres.TYPELIB.1,\"a\"\n.incbin \"${checked}\"\n.section .note.GNU-stack,\"\",%progbits\n"
    )
    set_source_files_properties(${resource} PROPERTIES OBJECT_DEPENDS ${checked})
    target_sources(${name} PRIVATE ${resource})
endfunction()
