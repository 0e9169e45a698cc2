# wncom_module_exports(NAME symbol...)
#
# Makes the library NAME a loadable module NAME.dll, the same file name on every host, so that catalogues,
# registrations and scripts read the same. It exports the named symbols and nothing else, undecorated. Projects outside
# the tree have this file with the package.
function(wncom_module_exports name)
    # The list names the exports; what the compiler hides it cannot bring back.
    set_target_properties(${name} PROPERTIES PREFIX "" SUFFIX ".dll" CXX_VISIBILITY_PRESET default)
    if(WIN32)
        set(definitions "LIBRARY ${name}\nEXPORTS\n")
        foreach(symbol ${ARGN})
            string(APPEND definitions "    ${symbol} PRIVATE\n")
        endforeach()
        set(def ${CMAKE_CURRENT_BINARY_DIR}/${name}.def)
        file(CONFIGURE OUTPUT ${def} CONTENT "${definitions}")
        target_sources(${name} PRIVATE ${def})
        # The entry points are declared with the system's calling convention; the definition file names them bare.
        target_link_options(${name} PRIVATE -Wl,--enable-stdcall-fixup)
        target_sources(${name} PRIVATE ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/windows/module_end.cpp)
        return()
    endif()

    set(map ${CMAKE_CURRENT_BINARY_DIR}/${name}.map)
    if(ARGN)
        list(JOIN ARGN ";\n        " symbols)
        file(CONFIGURE OUTPUT ${map} CONTENT "{\n    global:\n        ${symbols};\n    local:\n        *;\n};\n")
    else()
        file(CONFIGURE OUTPUT ${map} CONTENT "{\n    local:\n        *;\n};\n")
    endif()
    target_link_options(${name} PRIVATE -Wl,--version-script=${map})
    set_target_properties(${name} PROPERTIES LINK_DEPENDS ${map})
    target_sources(${name} PRIVATE $<TARGET_OBJECTS:wnCOM::module_start>)
endfunction()
