# Fails unless the library exports exactly the platform's five calls and those in CALLS.
set(expected IPC_Free ___FREE ___MALLOC log_log platmsg_syn_result)
string(REPLACE " " ";" CALLS "${CALLS}")
list(APPEND expected ${CALLS})

execute_process(COMMAND ${NM} -D --defined-only --format=posix ${LIBRARY}
                OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+ [TWVBDRu] [^\n]+" lines "${symbols}")
set(found "")
foreach(line IN LISTS lines)
  string(REGEX REPLACE "[@ ].*" "" name "${line}")
  list(APPEND found ${name})
endforeach()

list(SORT found)
list(SORT expected)
if(NOT found STREQUAL expected)
  message(FATAL_ERROR "exported: ${found}\nexpected: ${expected}")
endif()
