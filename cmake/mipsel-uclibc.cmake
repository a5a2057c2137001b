# 32-bit little-endian MIPS with uClibc-ng.
set(c_library uclibc)
include(${CMAKE_CURRENT_LIST_DIR}/mipsel-other-libc.cmake)
