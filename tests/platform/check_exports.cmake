# Fails unless the library exports exactly the calls of its two headers.
set(expected
  IPC_Free ___FREE ___MALLOC log_log platmsg_syn_result
  olt_connect_through olt_run_dir olt_server_add olt_server_connect olt_server_count
  olt_server_create olt_server_destroy olt_server_run olt_server_stop olt_transport_text
  olt_watch_exchanges)

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
