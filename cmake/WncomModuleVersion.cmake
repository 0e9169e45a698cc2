# wncom_module_version(NAME description typelib)
#
# What Windows shows of the module NAME: the project's name and version and the description. The compiled type library,
# if one is named, becomes the module's resource number 1. Projects outside the tree have this file with the package.
set(WNCOM_MODULE_RC ${CMAKE_CURRENT_LIST_DIR}/windows/module.rc.in)
function(wncom_module_version name description typelib)
    set(rc ${CMAKE_CURRENT_BINARY_DIR}/${name}.rc)
    set(WNCOM_RC_NAME ${name})
    set(WNCOM_RC_DESCRIPTION "${description}")
    set(WNCOM_RC_TYPELIB "")
    if(typelib)
        set(WNCOM_RC_TYPELIB "1 TYPELIB \"${typelib}\"")
        set_source_files_properties(${rc} PROPERTIES OBJECT_DEPENDS ${typelib})
    endif()
    # A project may have no version, or a short one.
    foreach(part MAJOR MINOR PATCH)
        set(WNCOM_RC_${part} 0)
        if(NOT "${PROJECT_VERSION_${part}}" STREQUAL "")
            set(WNCOM_RC_${part} ${PROJECT_VERSION_${part}})
        endif()
    endforeach()
    configure_file(${WNCOM_MODULE_RC} ${rc} @ONLY)
    target_sources(${name} PRIVATE ${rc})
endfunction()
