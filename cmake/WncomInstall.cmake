# What an installation holds and where. On hosts without Windows it follows their folders; on Windows it is one flat
# tree, with the modules beside the programs and the compiler's runtime.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

if(WIN32)
    set(WNCOM_INSTALL_MODULEDIR ${CMAKE_INSTALL_BINDIR})
    set(WNCOM_INSTALL_DOCDIR docs)
    set(WNCOM_INSTALL_SAMPLESDIR samples)
else()
    set(WNCOM_INSTALL_MODULEDIR ${CMAKE_INSTALL_LIBDIR}/wncom)
    set(WNCOM_INSTALL_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/wncom)
    set(WNCOM_INSTALL_SAMPLESDIR ${CMAKE_INSTALL_DATAROOTDIR}/wncom/samples)
endif()
set(WNCOM_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/wnCOM)

# Programs and modules
set(modules wnCOM wnComponents)
if(WIN32)
    list(APPEND modules wnSampleTransport)
else()
    list(APPEND modules wnHttpTransport)
endif()
install(TARGETS ${modules} LIBRARY DESTINATION ${WNCOM_INSTALL_MODULEDIR})
foreach(program wn wndevice)
    if(TARGET ${program})
        install(TARGETS ${program} RUNTIME)
    endif()
endforeach()
if(WIN32)
    install(FILES ${WNCOM_RUNTIME_LIBRARIES} DESTINATION ${CMAKE_INSTALL_BINDIR})
    # For clients that use the modules without registration.
    install(
        FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/wnCOM.Classes.manifest
              ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/wnComponents.Classes.manifest
        DESTINATION ${CMAKE_INSTALL_BINDIR}
    )
else()
    # From wherever the tree is, so that it may be moved.
    file(RELATIVE_PATH to_libraries /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(wn wndevice PROPERTIES INSTALL_RPATH $ORIGIN/${to_libraries})
    set_target_properties(${modules} PROPERTIES INSTALL_RPATH $ORIGIN/..)
endif()

# What others build against
install(
    TARGETS wncom_headers wncom_logging wncom_services wncom_sdk
    EXPORT wnCOMTargets
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
)
install(DIRECTORY include/wncom DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN *.h)
install(FILES agent/wnCOM.idl DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/wncom)
if(WIN32)
    install(FILES ${CMAKE_BINARY_DIR}/agent/wnCOM.tlb DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/wncom)
else()
    install(
        TARGETS wnplatform
        EXPORT wnCOMTargets
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/wncom/platform
    )
    # In a folder of their own: their names are Windows', and would hide other headers of these names.
    install(DIRECTORY platform/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/wncom/platform FILES_MATCHING PATTERN *.h)
    install(
        FILES $<TARGET_OBJECTS:wnplatform_module_start>
        DESTINATION ${WNCOM_INSTALL_MODULEDIR}
        RENAME module_start.o
    )
endif()
# CMake strips programs and libraries, but neither archives nor objects; their debug sections name the folders of the
# building machine.
set(stripped "${CMAKE_INSTALL_LIBDIR}/$<TARGET_FILE_NAME:wncom_logging>")
string(APPEND stripped " ${CMAKE_INSTALL_LIBDIR}/$<TARGET_FILE_NAME:wncom_services>")
if(NOT WIN32)
    string(APPEND stripped " ${WNCOM_INSTALL_MODULEDIR}/module_start.o")
endif()
install(
    CODE
        "if(CMAKE_INSTALL_DO_STRIP)
            execute_process(
                COMMAND ${CMAKE_STRIP} --strip-debug ${stripped}
                WORKING_DIRECTORY \$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}
                COMMAND_ERROR_IS_FATAL ANY
            )
        endif()"
)

# The CMake package
install(EXPORT wnCOMTargets NAMESPACE wnCOM:: DESTINATION ${WNCOM_INSTALL_CMAKEDIR})
configure_package_config_file(
    cmake/wnCOMConfig.cmake.in
    ${CMAKE_BINARY_DIR}/wnCOMConfig.cmake
    INSTALL_DESTINATION ${WNCOM_INSTALL_CMAKEDIR}
    PATH_VARS WNCOM_INSTALL_MODULEDIR
)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/wnCOMConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(
    FILES ${CMAKE_BINARY_DIR}/wnCOMConfig.cmake ${CMAKE_BINARY_DIR}/wnCOMConfigVersion.cmake
          cmake/WncomModuleExports.cmake
    DESTINATION ${WNCOM_INSTALL_CMAKEDIR}
)
if(WIN32)
    install(FILES cmake/WncomModuleVersion.cmake DESTINATION ${WNCOM_INSTALL_CMAKEDIR})
    install(FILES cmake/windows/module.rc.in cmake/windows/module_end.cpp DESTINATION ${WNCOM_INSTALL_CMAKEDIR}/windows)
endif()

# The pkg-config file
file(RELATIVE_PATH WNCOM_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" WNCOM_PC_PREFIX ${WNCOM_PC_PREFIX})
if(WIN32)
    set(WNCOM_PC_VARIABLES "")
    set(WNCOM_PC_CFLAGS "-I\${includedir}")
    set(WNCOM_PC_LIBS "-lole32 -loleaut32 -luuid -ladvapi32")
else()
    set(WNCOM_PC_VARIABLES "module_start=\${moduledir}/module_start.o\n")
    set(WNCOM_PC_CFLAGS "-I\${includedir} -I\${includedir}/wncom/platform")
    set(WNCOM_PC_LIBS "-lwnplatform")
endif()
configure_file(cmake/wncom.pc.in ${CMAKE_BINARY_DIR}/wncom.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/wncom.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The terms of what is compiled into the programs and modules or lies beside them, as Debian ships them. What the Debian
# package gets by its dependencies comes with terms of its own.
set(compiled_in libcli11-dev nlohmann-json3-dev)
if(WIN32)
    list(APPEND compiled_in libexpat1-dev libpugixml-dev libsqlite3-dev gcc-mingw-w64-base mingw-w64-common)
endif()
foreach(library ${compiled_in})
    install(
        FILES /usr/share/doc/${library}/copyright
        DESTINATION ${WNCOM_INSTALL_DOCDIR}/licences
        RENAME ${library}.txt
        OPTIONAL
    )
endforeach()

# To read
install(DIRECTORY samples/ DESTINATION ${WNCOM_INSTALL_SAMPLESDIR} REGEX /samples/CMakeLists\\.txt$ EXCLUDE)
install(DIRECTORY docs/ DESTINATION ${WNCOM_INSTALL_DOCDIR} FILES_MATCHING PATTERN *.md)
