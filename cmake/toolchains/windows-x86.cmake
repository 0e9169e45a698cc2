# 32-bit Windows, cross-built with mingw. The compilers with POSIX threads are the ones whose <thread> and <mutex> work.
set(WNCOM_TRIPLE i686-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR x86)
include(${CMAKE_CURRENT_LIST_DIR}/windows.cmake)
