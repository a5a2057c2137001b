include(CheckPIESupported)
check_pie_supported()

# What every target of the project compiles and links with: link olt_flags privately.
add_library(olt_flags INTERFACE)
target_include_directories(olt_flags INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_compile_options(olt_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wundef -Wcast-qual
  -Wformat=2
  # Designated initialisers name what matters; the rest is meant to be zero.
  -Wno-missing-field-initializers
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual>
  $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes -Wmissing-prototypes>)

# By default, the compiler collects garbage every 128 MiB, which takes an eighth of its time.
target_compile_options(olt_flags INTERFACE
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:--param=ggc-min-heapsize=1000000>)

# For scripts/stack.sh: the stack use of each function, and the functions that it calls.
if(CMAKE_CROSSCOMPILING AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(olt_flags INTERFACE -fcallgraph-info=su)
endif()

if(OLT_SANITIZE)
  add_compile_options(-fsanitize=${OLT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${OLT_SANITIZE})
  # Both need the C++ part of Clang's sanitizers, which is not linked to C programs; vptr also needs
  # descriptors, and some tests use up all of them.
  add_compile_options($<$<COMPILE_LANG_AND_ID:CXX,Clang>:-fno-sanitize=function,vptr>)
  # GCC warns of every fence in Asio that ThreadSanitizer does not see.
  add_compile_options($<$<AND:$<CXX_COMPILER_ID:GNU>,$<COMPILE_LANGUAGE:CXX>>:-Wno-tsan>)
endif()

# Programs and their libraries, as opposed to liboltmgmt: hardened.
add_library(olt_program_flags INTERFACE)
target_link_libraries(olt_program_flags INTERFACE olt_flags)
target_compile_options(olt_program_flags INTERFACE -fstack-protector-strong)
target_link_options(olt_program_flags INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
if(NOT OLT_SANITIZE)
  target_compile_options(olt_program_flags INTERFACE
    -U_FORTIFY_SOURCE $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
endif()
