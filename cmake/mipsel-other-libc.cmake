# The common part of the toolchains for C libraries other than GNU's: a file in the sysroot directs the
# compiler to each.
include(${CMAKE_CURRENT_LIST_DIR}/mipsel.cmake)
set(sysroot ${CMAKE_CURRENT_LIST_DIR}/../build/target-sysroots/${c_library})
cmake_path(NORMAL_PATH sysroot)
string(APPEND CMAKE_C_FLAGS_INIT " -specs=${sysroot}/gcc.settings")
string(APPEND CMAKE_CXX_FLAGS_INIT " -specs=${sysroot}/gcc.settings")
# There is no C++ library to link a program with.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-mipsel -L ${sysroot})
