# The type library of a module on hosts without Windows: its tables lie in a section of the name that the layer looks
# resources up by.
function(wncom_layer_typelib name description)
    set(tables ${CMAKE_CURRENT_BINARY_DIR}/${name}.typelib)
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/${name}.typelib.S)
    add_custom_command(
        OUTPUT ${tables}
        COMMAND wnidl ${description} ${tables}
        DEPENDS wnidl ${description}
        COMMENT "Making a type library of ${description}"
    )
    file(
        CONFIGURE
        OUTPUT ${resource}
        CONTENT ".section .wnres.TYPELIB.1,\"a\"\n.incbin \"${tables}\"\n.section .note.GNU-stack,\"\",%progbits\n"
    )
    set_source_files_properties(${resource} PROPERTIES OBJECT_DEPENDS ${tables})
    target_sources(${name} PRIVATE ${resource})
endfunction()
