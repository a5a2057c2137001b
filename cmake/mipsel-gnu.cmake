# 32-bit little-endian MIPS with the GNU C library and the packages that programs and tests need.
include(${CMAKE_CURRENT_LIST_DIR}/mipsel.cmake)
set(sysroot ${CMAKE_CURRENT_LIST_DIR}/../build/target-sysroots/gnu)
cmake_path(NORMAL_PATH sysroot)
set(libraries usr/lib/mipsel-linux-gnu lib/mipsel-linux-gnu)
list(TRANSFORM libraries PREPEND ${sysroot}/)
list(JOIN libraries ":" library_path)

string(APPEND CMAKE_CXX_FLAGS_INIT " -isystem ${sysroot}/usr/include")
string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -Wl,-rpath-link,${library_path}")
set(CMAKE_LIBRARY_ARCHITECTURE mipsel-linux-gnu)
set(CMAKE_FIND_ROOT_PATH ${sysroot})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# The loader is named rather than given by qemu's -L, under which the path "/" would be another folder.
set(CMAKE_CROSSCOMPILING_EMULATOR
  qemu-mipsel /usr/mipsel-linux-gnu/lib/ld.so.1
  --library-path ${library_path}:/usr/mipsel-linux-gnu/lib)
