# Each public header alone, in every language and with every compiler that is installed.
set(include_dir ${PROJECT_SOURCE_DIR}/include)
set(common_warnings -Wall -Wextra -Wpedantic -Werror)
set(gcc_warnings ${common_warnings}
  -Wshadow -Wconversion -Wsign-conversion -Wundef -Wcast-qual -Wredundant-decls)
set(gcc_c_warnings -Wc++-compat -Wstrict-prototypes -Wmissing-prototypes)
set(gcc_cxx_warnings -Wold-style-cast -Wuseless-cast -Wextra-semi)
# Nothing here is meant for C++98, and the platform determines the names of its calls.
set(clang_warnings ${common_warnings} -Weverything -Wno-reserved-identifier)
set(clang_c_warnings)
set(clang_cxx_warnings -Wno-c++98-compat -Wno-c++98-compat-pedantic)

foreach(compiler gcc clang)
  find_program(OLT_TEST_${compiler} ${compiler})
  if(NOT OLT_TEST_${compiler})
    continue()
  endif()
  foreach(standard c11 c++11 c++17 c++20)
    if(standard STREQUAL c11)
      set(language c)
      set(warnings ${${compiler}_warnings} ${${compiler}_c_warnings})
    else()
      set(language c++)
      set(warnings ${${compiler}_warnings} ${${compiler}_cxx_warnings})
    endif()
    # Included twice, as in programs with many files.
    foreach(header oltmgmt oltmock oltplatform)
      add_test(NAME abi.header.${header}.${compiler}.${standard}
        COMMAND ${OLT_TEST_${compiler}} -x ${language} -std=${standard} ${warnings}
          -I ${include_dir} -include ${header}.h
          -fsyntax-only ${CMAKE_CURRENT_SOURCE_DIR}/header_${header}.c)
    endforeach()
    add_test(NAME abi.records.${compiler}.${standard}
      COMMAND ${OLT_TEST_${compiler}} -x ${language} -std=${standard} ${common_warnings}
        -I ${include_dir} -fsyntax-only ${CMAKE_CURRENT_SOURCE_DIR}/records.c)
  endforeach()
endforeach()

find_program(OLT_TEST_mipsel_gcc mipsel-linux-gnu-gcc)
if(OLT_TEST_mipsel_gcc)
  add_test(NAME abi.records.mipsel.c11
    COMMAND ${OLT_TEST_mipsel_gcc} -std=c11 ${common_warnings} -I ${include_dir}
      -fsyntax-only ${CMAKE_CURRENT_SOURCE_DIR}/records.c)
endif()

# The assertions are complete, and a missing one is found.
set(check_records ${CMAKE_CURRENT_SOURCE_DIR}/check_records.sh ${include_dir}/oltmgmt.h)
add_test(NAME abi.records.complete
  COMMAND ${check_records} ${CMAKE_CURRENT_SOURCE_DIR}/records.c)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS records.c)
file(READ records.c assertions)
function(add_missing_assertion name assertion complaint)
  set(incomplete ${CMAKE_CURRENT_BINARY_DIR}/${name}.c)
  string(REPLACE "${assertion}" "" rest "${assertions}")
  file(WRITE ${incomplete} "${rest}")
  add_test(NAME abi.check_finds.${name}
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/expect_complaint.sh ${complaint}
      ${check_records} ${incomplete})
endfunction()
add_missing_assertion(record_without_assertion
  "ASSERT_RECORD(olt_rstp_bridge, " "no assertion of olt_rstp_bridge")
add_missing_assertion(field_without_assertion
  "ASSERT_FIELD(olt_rstp_brief, values, " "no assertion of olt_rstp_brief.values")
