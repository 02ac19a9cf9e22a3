# mingw-w64 with threads of the POSIX kind, as Debian's g++-mingw-w64-x86-64-posix installs it; what is built runs
# under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix) # which GoogleTest asks for
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH) # so that CMAKE_PREFIX_PATH counts
# The system aligns the stack to 16 bytes and the compiler does not align it further: the 32 and 64 bytes of wide
# vectors must not be counted on.
set(CMAKE_CXX_FLAGS_INIT -Wa,-muse-unaligned-vector-move)
