# Builds for 64-bit Windows with Debian's cross compiler: the engine by itself, or with
# TARN_WINDOWS_LIBRARIES, the folders that libraries.py makes, all that is built upon them.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${TARN_WINDOWS_LIBRARIES})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# The checks of the compiler have to look there too.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TARN_WINDOWS_LIBRARIES)

set(ZLIB_USE_STATIC_LIBS ON)
# Qt's tools run on this machine.
set(QT_HOST_PATH /usr)
file(GLOB qt_host_info /usr/lib/*/cmake/Qt6HostInfo)
if(qt_host_info)
  cmake_path(GET qt_host_info PARENT_PATH QT_HOST_PATH_CMAKE_DIR)
endif()

# The engine's programs need no library beside them. Those upon Qt share the compiler's own with it, so
# that an exception finds its way from one to the other.
if(TARN_ENGINE_ONLY)
  set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
endif()
