# 32-bit little-endian MIPS with musl.
set(c_library musl)
include(${CMAKE_CURRENT_LIST_DIR}/mipsel-other-libc.cmake)
