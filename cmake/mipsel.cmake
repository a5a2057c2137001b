# 32-bit little-endian MIPS with the GNU C library, by the distribution's cross compiler.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR mipsel)
set(CMAKE_C_COMPILER mipsel-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER mipsel-linux-gnu-g++)
set(CMAKE_C_FLAGS_INIT -march=mips32r2)
set(CMAKE_CXX_FLAGS_INIT -march=mips32r2)
