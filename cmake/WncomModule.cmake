# wncom_add_module(NAME DESCRIPTION text [EXPORTS symbol...] [TYPELIB file.idl] SOURCES file...)
#
# A module of the tree, with its exports alone; TYPELIB becomes its type-library resource number 1. DESCRIPTION is what
# Windows shows of the file.
include(WncomModuleExports)
function(wncom_add_module name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "TYPELIB;DESCRIPTION" "EXPORTS;SOURCES")
    add_library(${name} MODULE ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE wncom_options wncom_headers)
    wncom_module_exports(${name} ${arg_EXPORTS})
    if(arg_TYPELIB)
        get_filename_component(arg_TYPELIB ${arg_TYPELIB} ABSOLUTE)
    endif()
    if(WIN32)
        wncom_windows_resources(${name} "${arg_TYPELIB}" "${arg_DESCRIPTION}")
    elseif(arg_TYPELIB)
        wncom_layer_typelib(${name} ${arg_TYPELIB})
    endif()
endfunction()
