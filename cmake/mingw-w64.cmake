# Cross compilation for 64-bit Windows. The posix flavour of the compiler: the win32 flavour lacks parts of the
# C++ threading headers that the standard library itself includes.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(triple x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)
set(CMAKE_OBJCOPY ${triple}-objcopy)
set(CMAKE_STRIP ${triple}-strip)

# Packages of the build machine never match this target: look into the cross tree and into the folders that
# the caller names, nowhere else.
set(CMAKE_FIND_ROOT_PATH /usr/${triple} ${CMAKE_PREFIX_PATH})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
