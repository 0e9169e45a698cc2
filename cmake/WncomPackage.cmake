# The packages that cpack makes of an installation: one for Debian, or a zip for Windows.
set(CPACK_PACKAGE_NAME wncom)
set(CPACK_PACKAGE_VENDOR wnCOM)
set(CPACK_PACKAGE_CONTACT "wnCOM maintainers <maintainers@wncom.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
if(WIN32)
    set(CPACK_GENERATOR ZIP)
    if(CMAKE_SIZEOF_VOID_P EQUAL 8)
        set(bits x64)
    else()
        set(bits x86)
    endif()
    set(CPACK_PACKAGE_FILE_NAME wncom-${PROJECT_VERSION}-windows-${bits})
else()
    set(CPACK_GENERATOR DEB)
    set(CPACK_PACKAGE_DESCRIPTION
        "Agents through which a client program talks to device services: it reads
capabilities, submits jobs, reads and writes device data and subscribes to
events. This package holds the modules, the command-line client wn, the device
service wndevice, and what is needed to build clients and transport libraries."
    )
    set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
    set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_SUGGESTS "g++, cmake (>= 3.25), pkg-config")
endif()
include(CPack)
