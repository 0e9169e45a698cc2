# The resources of a module on Windows, the type library and the version, and the runtime beside it.
#
# libstdc++ is linked into each module, libgcc is shared: on 32-bit Windows an exception that leaves one module for
# another is found only by the one unwinder that knows both.
include(WncomModuleVersion)
find_program(WNCOM_WIDL ${WNCOM_TRIPLE}-widl REQUIRED)
set(WNCOM_WINDOWS_CMAKE ${CMAKE_CURRENT_LIST_DIR}/windows)
set(WNCOM_STDOLE ${CMAKE_BINARY_DIR}/windows/stdole2.tlb)
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(WNCOM_WIDL_FLAGS -m64 -t -I ${WNCOM_WINDOWS_CMAKE})
    set(runtime libgcc_s_seh-1.dll)
else()
    set(WNCOM_WIDL_FLAGS -m32 -t -I ${WNCOM_WINDOWS_CMAKE})
    set(runtime libgcc_s_dw2-1.dll)
endif()
add_custom_command(
    OUTPUT ${WNCOM_STDOLE}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/windows
    COMMAND ${WNCOM_WIDL} ${WNCOM_WIDL_FLAGS} -o ${WNCOM_STDOLE} ${WNCOM_WINDOWS_CMAKE}/stdole2.idl
    DEPENDS ${WNCOM_WINDOWS_CMAKE}/stdole2.idl ${WNCOM_WINDOWS_CMAKE}/oaidl.idl
    COMMENT "Compiling the references to the system's type library"
)
add_custom_target(wncom_stdole DEPENDS ${WNCOM_STDOLE})

# The compiler's runtime beside the modules, as it ships with them.
foreach(library ${runtime} libwinpthread-1.dll)
    execute_process(
        COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
        OUTPUT_VARIABLE path
        OUTPUT_STRIP_TRAILING_WHITESPACE
    )
    file(COPY ${path} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
    list(APPEND WNCOM_RUNTIME_LIBRARIES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${library})
endforeach()

function(wncom_windows_resources name typelib description)
    set(compiled "")
    if(typelib)
        set(compiled ${CMAKE_CURRENT_BINARY_DIR}/${name}.tlb)
        add_custom_command(
            OUTPUT ${compiled}
            COMMAND ${WNCOM_WIDL} ${WNCOM_WIDL_FLAGS} -L ${CMAKE_BINARY_DIR}/windows -o ${compiled} ${typelib}
            DEPENDS ${typelib} ${WNCOM_STDOLE} ${WNCOM_WINDOWS_CMAKE}/oaidl.idl
            COMMENT "Compiling type library ${typelib}"
        )
        add_dependencies(${name} wncom_stdole)
    endif()
    wncom_module_version(${name} "${description}" "${compiled}")
endfunction()
